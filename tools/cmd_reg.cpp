// quiltool reg: query, add, delete, export and import settings with the
// arguments of Windows' reg.exe, so that support staff use what they know
// on a Linux installation too. On Windows it works on the registry itself.
#include <cstdio>
#include <new>
#include <string>
#include <vector>

#include "cmd_reg_file.h"
#include "command.h"
#include "core/fs.h"
#include "qn_utf.h"
#include "reg_args.h"
#include "reg_print.h"
#include "reg_values.h"
#include "settings/regstore.h"

namespace {

using namespace qt_regtool;

const char kDone[] = "The operation completed successfully.\n";

struct KeyCloser {
  HKEY key;
  ~KeyCloser() {
    if (key) qt_reg::CloseKey(key);
  }
};

// kArgs: go on; otherwise the exit code is in *code.
bool Arguments(const std::vector<std::string>& argv, const std::set<std::string>& withValue,
               const std::set<std::string>& plain, FILE* out, FILE* err, Args* args, int* code) {
  std::string problem;
  switch (ParseArgs(argv, withValue, plain, args, &problem)) {
    case Parsed::kArgs:
      return true;
    case Parsed::kHelp:
      *code = Help(out);
      return false;
    case Parsed::kBad:
      break;
  }
  *code = Usage(err, problem);
  return false;
}

int Query(const std::vector<std::string>& argv, FILE* out, FILE* err) {
  Args args;
  int code = 0;
  if (!Arguments(argv, {"/v"}, {"/ve", "/s"}, out, err, &args, &code)) return code;
  HKEY root = nullptr;
  std::wstring path;
  if (args.positional.size() != 1) return Usage(err, "query takes one key name");
  if (!KeyArg(args.positional[0], &root, &path)) return Usage(err, "invalid key name");
  if (args.has("/v") && args.has("/ve")) return Usage(err, "/v and /ve exclude each other");
  HKEY key = nullptr;
  long rc = qt_reg::OpenKey(root, path.c_str(), qt_reg::kKeyRead, &key);
  if (rc != qt_reg::kOk) return Failure(err, "query", root, rc, "open the key");
  KeyCloser closer{key};
  if (args.has("/v") || args.has("/ve")) {
    const std::wstring name = FromUtf8(args.value("/v"));
    DWORD type = 0;
    std::vector<BYTE> data;
    rc = qt_reg::ReadValue(key, name.c_str(), &type, &data);
    if (rc != qt_reg::kOk) return Failure(err, "query", root, rc, "read the value");
    std::fprintf(out, "\n%s\n", ToUtf8(FullName(root, path)).c_str());
    PrintValue(out, name, type, data);
    std::fprintf(out, "\n");
    return 0;
  }
  PrintKey(out, root, path, key, args.has("/s"));
  std::fprintf(out, "\n");
  return 0;
}

int Add(const std::vector<std::string>& argv, FILE* out, FILE* err) {
  Args args;
  int code = 0;
  if (!Arguments(argv, {"/v", "/t", "/d", "/s"}, {"/ve", "/f"}, out, err, &args, &code)) return code;
  HKEY root = nullptr;
  std::wstring path;
  if (args.positional.size() != 1) return Usage(err, "add takes one key name");
  if (!KeyArg(args.positional[0], &root, &path)) return Usage(err, "invalid key name");
  if (args.has("/v") && args.has("/ve")) return Usage(err, "/v and /ve exclude each other");
  DWORD type = REG_SZ;
  if (args.has("/t") && !TypeOfName(args.value("/t"), &type)) return Usage(err, "unknown value type for /t");
  if (args.has("/s") && type != REG_MULTI_SZ) return Usage(err, "/s applies to REG_MULTI_SZ only");
  const bool setsValue = args.has("/v") || args.has("/ve") || args.has("/t") || args.has("/d");
  std::vector<BYTE> data;
  std::string problem;
  if (setsValue && !Encode(type, args.value("/d"), args.has("/s") ? args.value("/s") : "\\0", &data, &problem))
    return Usage(err, problem);
  if (path.empty() && !setsValue) return Usage(err, "add needs a key below the root");
  HKEY key = nullptr;
  long rc = qt_reg::CreateKey(root, path.c_str(), qt_reg::kKeyAllAccess, &key);
  if (rc != qt_reg::kOk) return Failure(err, "add", root, rc, "create " + ToUtf8(FullName(root, path)));
  KeyCloser closer{key};
  if (setsValue) {
    const std::wstring name = FromUtf8(args.value("/v"));
    if (!args.has("/f") && qt_reg::QueryValue(key, name.c_str(), nullptr, nullptr, nullptr) == qt_reg::kOk) {
      std::fprintf(err, "quiltool reg add: value %s exists; add /f to overwrite it\n",
                   name.empty() ? "(Default)" : ToUtf8(name).c_str());
      return 1;
    }
    rc = qt_reg::SetValueExact(key, name.c_str(), type, data.data(), static_cast<DWORD>(data.size()));
    if (rc != qt_reg::kOk) return Failure(err, "add", root, rc, "write the value");
  }
  std::fputs(kDone, out);
  return 0;
}

int Delete(const std::vector<std::string>& argv, FILE* out, FILE* err) {
  Args args;
  int code = 0;
  if (!Arguments(argv, {"/v"}, {"/ve", "/va", "/f"}, out, err, &args, &code)) return code;
  HKEY root = nullptr;
  std::wstring path;
  if (args.positional.size() != 1) return Usage(err, "delete takes one key name");
  if (!KeyArg(args.positional[0], &root, &path)) return Usage(err, "invalid key name");
  if (args.has("/v") + args.has("/ve") + args.has("/va") > 1) return Usage(err, "/v, /ve and /va exclude each other");
  // There is no one to ask, so deleting has to be asked for outright.
  if (!args.has("/f")) return Usage(err, "delete asks for no confirmation: add /f");
  const bool values = args.has("/v") || args.has("/ve") || args.has("/va");
  if (!values) {
    if (path.empty()) return Usage(err, "a root cannot be deleted");
    const long rc = qt_reg::DeleteTree(root, path.c_str());
    if (rc != qt_reg::kOk) return Failure(err, "delete", root, rc, "delete " + ToUtf8(FullName(root, path)));
    std::fputs(kDone, out);
    return 0;
  }
  HKEY key = nullptr;
  long rc = qt_reg::OpenKey(root, path.c_str(), qt_reg::kKeyAllAccess, &key);
  if (rc != qt_reg::kOk) return Failure(err, "delete", root, rc, "open the key");
  KeyCloser closer{key};
  std::vector<std::wstring> names;
  if (args.has("/va")) {
    std::wstring name;
    for (DWORD i = 0; qt_reg::EnumValue(key, i, &name, nullptr, nullptr) == qt_reg::kOk; ++i) names.push_back(name);
  } else {
    names.push_back(FromUtf8(args.value("/v")));
  }
  for (const std::wstring& name : names) {
    rc = qt_reg::DeleteValue(key, name.c_str());
    if (rc == qt_reg::kOk || (rc == qt_reg::kFileNotFound && args.has("/va"))) continue;
    return Failure(err, "delete", root, rc, "delete a value");
  }
  std::fputs(kDone, out);
  return 0;
}

// File names come as UTF-8 on every system. Bytes that are no UTF-8 are
// refused rather than decoded with a stand-in character, which would read
// or write a file of another name.
bool FileName(const std::string& utf8, std::wstring* wide) {
  return qn_utf8_to_wide_strict(utf8.data(), utf8.size(), wide) && !wide->empty();
}

int FileFailure(FILE* err, const char* op, const char* verb, const std::string& file, qt::fs::FsError error) {
  std::fprintf(err, "quiltool reg %s: cannot %s %s: %s\n", op, verb, file.c_str(), qt::fs::FsErrorText(error));
  return 1;
}

long Collect(HKEY root, const std::wstring& path, HKEY key, qt_regfile::Document* doc) {
  qt_regfile::Key block;
  block.root = root;
  block.path = path;
  qt_regfile::Value value;
  long rc;
  for (DWORD i = 0; (rc = qt_reg::EnumValue(key, i, &value.name, &value.type, &value.data)) == qt_reg::kOk; ++i)
    block.values.push_back(value);
  if (rc != qt_reg::kNoMoreItems) return rc;
  doc->keys.push_back(block);
  std::vector<std::wstring> children;
  std::wstring name;
  for (DWORD i = 0; (rc = qt_reg::EnumKey(key, i, &name)) == qt_reg::kOk; ++i) children.push_back(name);
  if (rc != qt_reg::kNoMoreItems) return rc;
  for (const std::wstring& c : children) {
    HKEY child = nullptr;
    rc = qt_reg::OpenKey(key, c.c_str(), qt_reg::kKeyRead, &child);
    if (rc != qt_reg::kOk) return rc;
    KeyCloser closer{child};
    rc = Collect(root, path.empty() ? c : path + L"\\" + c, child, doc);
    if (rc != qt_reg::kOk) return rc;
  }
  return qt_reg::kOk;
}

int Export(const std::vector<std::string>& argv, FILE* out, FILE* err) {
  Args args;
  int code = 0;
  if (!Arguments(argv, {}, {"/y"}, out, err, &args, &code)) return code;
  if (args.positional.size() != 2) return Usage(err, "export takes a key name and a file name");
  HKEY root = nullptr;
  std::wstring path;
  if (!KeyArg(args.positional[0], &root, &path)) return Usage(err, "invalid key name");
  const std::string& file = args.positional[1];
  std::wstring wfile;
  if (!FileName(file, &wfile)) return FileFailure(err, "export", "write", file, qt::fs::FsError::kInvalidName);
  if (!args.has("/y") && qt::fs::Exists(wfile)) {
    std::fprintf(err, "quiltool reg export: %s exists; add /y to overwrite it\n", file.c_str());
    return 1;
  }
  HKEY key = nullptr;
  long rc = qt_reg::OpenKey(root, path.c_str(), qt_reg::kKeyRead, &key);
  if (rc != qt_reg::kOk) return Failure(err, "export", root, rc, "open the key");
  qt_regfile::Document doc;
  {
    KeyCloser closer{key};
    rc = Collect(root, path, key, &doc);
  }
  if (rc != qt_reg::kOk) return Failure(err, "export", root, rc, "read " + ToUtf8(FullName(root, path)));
  // Replaced whole, so that an export that fails half-way (a full disk)
  // leaves an earlier export under the name as it was.
  const qt::fs::FsError written = qt::fs::ReplaceWholeFile(wfile, qt_regfile::Format(doc));
  if (written != qt::fs::FsError::kOk) return FileFailure(err, "export", "write", file, written);
  std::fputs(kDone, out);
  return 0;
}

// The changes of a parsed file, in its order; stops at the first failure.
int Apply(const qt_regfile::Document& doc, FILE* err) {
  for (const qt_regfile::Key& k : doc.keys) {
    const std::string name = ToUtf8(FullName(k.root, k.path));
    if (k.remove) {
      const long rc = qt_reg::DeleteTree(k.root, k.path.c_str());
      if (rc != qt_reg::kOk && rc != qt_reg::kFileNotFound) return Failure(err, "import", k.root, rc, "delete " + name);
      continue;
    }
    HKEY key = nullptr;
    long rc = qt_reg::CreateKey(k.root, k.path.c_str(), qt_reg::kKeyAllAccess, &key);
    if (rc != qt_reg::kOk) return Failure(err, "import", k.root, rc, "create " + name);
    KeyCloser closer{key};
    for (const qt_regfile::Value& v : k.values) {
      rc = v.remove ? qt_reg::DeleteValue(key, v.name.c_str())
                    : qt_reg::SetValueExact(key, v.name.c_str(), v.type, v.data.data(), static_cast<DWORD>(v.data.size()));
      if (rc != qt_reg::kOk && !(v.remove && rc == qt_reg::kFileNotFound))
        return Failure(err, "import", k.root, rc, "write a value of " + name);
    }
  }
  return 0;
}

int Import(const std::vector<std::string>& argv, FILE* out, FILE* err) {
  Args args;
  int code = 0;
  if (!Arguments(argv, {}, {}, out, err, &args, &code)) return code;
  if (args.positional.size() != 1) return Usage(err, "import takes one file name");
  const std::string& file = args.positional[0];
  std::wstring wfile;
  if (!FileName(file, &wfile)) return FileFailure(err, "import", "read", file, qt::fs::FsError::kInvalidName);
  std::string bytes;
  const qt::fs::FsError read = qt::fs::ReadWholeFile(wfile, &bytes);
  if (read != qt::fs::FsError::kOk) return FileFailure(err, "import", "read", file, read);
  // The whole file is checked before the first change, so that a broken
  // file changes nothing; where the store has transactions, a change that
  // fails half-way takes back the ones before it too.
  qt_regfile::Document doc;
  std::string problem;
  if (!qt_regfile::Parse(bytes, &doc, &problem)) {
    std::fprintf(err, "quiltool reg import: %s: %s\n", file.c_str(), problem.c_str());
    return 1;
  }
  std::vector<HKEY> roots;
  for (const qt_regfile::Key& k : doc.keys) {
    if (k.remove && k.path.empty()) {
      std::fprintf(err, "quiltool reg import: %s: line %d: a root cannot be deleted\n", file.c_str(), k.line);
      return 1;
    }
    bool seen = false;
    for (HKEY r : roots) seen = seen || r == k.root;
    if (!seen) roots.push_back(k.root);
  }
  size_t begun = 0;
  code = 0;
  for (; begun < roots.size() && code == 0; ++begun) {
    const long rc = qt_reg::BeginWrite(roots[begun]);
    if (rc != qt_reg::kOk) code = Failure(err, "import", roots[begun], rc, "start writing");
  }
  if (code != 0) --begun;
  if (code == 0) code = Apply(doc, err);
  for (size_t i = 0; i < begun; ++i) {
    const long rc = qt_reg::EndWrite(roots[i], code == 0);
    if (rc != qt_reg::kOk && code == 0) code = Failure(err, "import", roots[i], rc, "commit the changes");
  }
  if (code == 0) std::fputs(kDone, out);
  return code;
}

int RegMain(const std::vector<std::string>& args, FILE* out, FILE* err) {
  if (args.empty()) return Usage(err, "missing operation");
  if (IsHelp(args[0])) return Help(out);
  const std::string op = Lower(args[0]);
  const std::vector<std::string> rest(args.begin() + 1, args.end());
  try {
    if (op == "query") return Query(rest, out, err);
    if (op == "add") return Add(rest, out, err);
    if (op == "delete") return Delete(rest, out, err);
    if (op == "export") return Export(rest, out, err);
    if (op == "import") return Import(rest, out, err);
  } catch (const std::bad_alloc&) {
    std::fprintf(err, "quiltool reg: out of memory\n");
    return 1;
  }
  return Usage(err, "unknown operation '" + args[0] + "'");
}

const qt_tool::Registration kReg({"reg", "query and change settings as reg.exe does", RegMain});

}  // namespace
