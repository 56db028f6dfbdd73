// quiltool reg: query, add, delete, export and import settings with the
// arguments of Windows' reg.exe, so that support staff use what they know
// on a Linux installation too. On Windows it works on the registry itself.
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <cwchar>
#include <map>
#include <new>
#include <set>
#include <string>
#include <vector>

#include "cmd_reg_file.h"
#include "command.h"
#include "settings/regstore.h"
#include "ustr.h"

namespace {

const char kNotFound[] = "ERROR: The system was unable to find the specified registry key or value.\n";
const char kDone[] = "The operation completed successfully.\n";

struct Args {
  std::vector<std::string> positional;
  std::map<std::string, std::string> values;  // "/v" -> name
  std::set<std::string> flags;                // "/f"
  bool has(const char* option) const { return flags.count(option) || values.count(option); }
};

std::string Lower(std::string s) {
  for (char& c : s) c = (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
  return s;
}

// reg.exe accepts "/x" and "-x"; only known option names count as options,
// so that a Linux path such as "/tmp/a.reg" stays a plain argument.
bool ParseArgs(const std::vector<std::string>& in, const std::set<std::string>& withValue,
               const std::set<std::string>& plain, Args* out, std::string* error) {
  for (size_t i = 0; i < in.size(); ++i) {
    const std::string& a = in[i];
    const std::string name = a.size() > 1 && (a[0] == '/' || a[0] == '-') ? "/" + Lower(a.substr(1)) : std::string();
    if (!name.empty() && withValue.count(name)) {
      if (out->has(name.c_str())) return *error = "option " + name + " given twice", false;
      if (i + 1 >= in.size()) return *error = "option " + name + " needs a value", false;
      out->values[name] = in[++i];
    } else if (!name.empty() && plain.count(name)) {
      if (out->has(name.c_str())) return *error = "option " + name + " given twice", false;
      out->flags.insert(name);
    } else {
      out->positional.push_back(a);
    }
  }
  return true;
}

std::wstring Wide(const std::string& s) { return qn_ansi_to_wide(s.c_str(), s.size()); }
std::string Narrow(const std::wstring& s) { return qn_wide_to_ansi(s.c_str(), s.size()); }

int Usage(FILE* err, const char* problem) {
  if (problem) std::fprintf(err, "quiltool reg: %s\n", problem);
  std::fprintf(err,
               "usage:\n"
               "  quiltool reg query  KEY [/v NAME | /ve] [/s]\n"
               "  quiltool reg add    KEY [/v NAME | /ve] [/t TYPE] [/s SEPARATOR] [/d DATA] [/f]\n"
               "  quiltool reg delete KEY [/v NAME | /ve | /va] /f\n"
               "  quiltool reg export KEY FILE [/y]\n"
               "  quiltool reg import FILE\n"
               "KEY is ROOT\\path with ROOT one of HKCU, HKEY_CURRENT_USER, HKLM, HKEY_LOCAL_MACHINE.\n"
               "TYPE is REG_SZ (default), REG_EXPAND_SZ, REG_MULTI_SZ, REG_DWORD, REG_QWORD, REG_BINARY or REG_NONE.\n");
  return 2;
}

bool KeyArg(const std::string& arg, HKEY* root, std::wstring* path) {
  return qt_regfile::SplitKeyName(Wide(arg), root, path);
}

std::wstring FullName(HKEY root, const std::wstring& path) {
  std::wstring name = qt_regfile::RootName(root);
  if (!path.empty()) name += L"\\" + path;
  return name;
}

struct TypeName {
  DWORD type;
  const char* name;
};
const TypeName kTypes[] = {
    {REG_NONE, "REG_NONE"},         {REG_SZ, "REG_SZ"},       {REG_EXPAND_SZ, "REG_EXPAND_SZ"},
    {REG_BINARY, "REG_BINARY"},     {REG_DWORD, "REG_DWORD"}, {5, "REG_DWORD_BIG_ENDIAN"},
    {6, "REG_LINK"},                {REG_MULTI_SZ, "REG_MULTI_SZ"}, {8, "REG_RESOURCE_LIST"},
    {9, "REG_FULL_RESOURCE_DESCRIPTOR"}, {10, "REG_RESOURCE_REQUIREMENTS_LIST"}, {REG_QWORD, "REG_QWORD"},
};

std::string NameOfType(DWORD type) {
  for (const TypeName& t : kTypes) {
    if (t.type == type) return t.name;
  }
  return "REG_UNKNOWN(" + std::to_string(type) + ")";
}

bool TypeOfName(const std::string& name, DWORD* type) {
  const std::string upper = Lower(name);
  for (const TypeName& t : kTypes) {
    if (Lower(t.name) == upper && (t.type <= REG_MULTI_SZ || t.type == REG_QWORD) && t.type != 5 && t.type != 6) {
      *type = t.type;
      return true;
    }
  }
  return false;
}

unsigned long long LittleEndian(const std::vector<BYTE>& data, size_t n) {
  unsigned long long v = 0;
  for (size_t i = n; i-- > 0;) v = (v << 8) | (i < data.size() ? data[i] : 0);
  return v;
}

std::string Hex(const std::vector<BYTE>& data) {
  std::string out;
  char byte[3];
  for (BYTE b : data) {
    std::snprintf(byte, sizeof byte, "%02X", b);
    out += byte;
  }
  return out;
}

// The data as reg.exe shows it.
std::string Show(DWORD type, const std::vector<BYTE>& data) {
  char number[32];
  switch (type) {
    case REG_SZ:
    case REG_EXPAND_SZ:
      return Narrow(qt_reg::FromUtf16Bytes(data.data(), data.size()));
    case REG_DWORD:
      if (data.size() != 4) break;
      std::snprintf(number, sizeof number, "0x%llx", LittleEndian(data, 4));
      return number;
    case REG_QWORD:
      if (data.size() != 8) break;
      std::snprintf(number, sizeof number, "0x%llx", LittleEndian(data, 8));
      return number;
    case REG_MULTI_SZ: {
      std::string out;
      size_t at = 0;
      while (at + 1 < data.size()) {
        const std::wstring item = qt_reg::FromUtf16Bytes(data.data() + at, data.size() - at);
        if (item.empty()) break;
        if (!out.empty()) out += "\\0";
        out += Narrow(item);
        at += 2 * (qt_reg::Utf16Length(item.c_str()) + 1);
      }
      return out;
    }
    default:
      break;
  }
  return Hex(data);
}

void PrintValue(FILE* out, const std::wstring& name, DWORD type, const std::vector<BYTE>& data) {
  std::fprintf(out, "    %s    %s    %s\n", name.empty() ? "(Default)" : Narrow(name).c_str(), NameOfType(type).c_str(),
               Show(type, data).c_str());
}

struct KeyCloser {
  HKEY key;
  ~KeyCloser() {
    if (key) qt_reg::CloseKey(key);
  }
};

// One key's block; with recurse the blocks of all keys below it follow.
long QueryKey(FILE* out, HKEY root, const std::wstring& path, HKEY key, bool recurse) {
  std::fprintf(out, "\n%s\n", Narrow(FullName(root, path)).c_str());
  std::wstring name;
  DWORD type = 0;
  std::vector<BYTE> data;
  for (DWORD i = 0; qt_reg::EnumValue(key, i, &name, &type, &data) == qt_reg::kOk; ++i) PrintValue(out, name, type, data);
  std::vector<std::wstring> children;
  for (DWORD i = 0; qt_reg::EnumKey(key, i, &name) == qt_reg::kOk; ++i) children.push_back(name);
  if (!recurse) {
    if (!children.empty()) std::fprintf(out, "\n");
    for (const std::wstring& c : children) std::fprintf(out, "%s\n", Narrow(FullName(root, path.empty() ? c : path + L"\\" + c)).c_str());
    return qt_reg::kOk;
  }
  for (const std::wstring& c : children) {
    HKEY child = nullptr;
    if (qt_reg::OpenKey(key, c.c_str(), qt_reg::kKeyRead, &child) != qt_reg::kOk) continue;
    KeyCloser closer{child};
    QueryKey(out, root, path.empty() ? c : path + L"\\" + c, child, true);
  }
  return qt_reg::kOk;
}

int Query(const std::vector<std::string>& argv, FILE* out, FILE* err) {
  Args args;
  std::string problem;
  if (!ParseArgs(argv, {"/v"}, {"/ve", "/s"}, &args, &problem)) return Usage(err, problem.c_str());
  HKEY root = nullptr;
  std::wstring path;
  if (args.positional.size() != 1) return Usage(err, "query takes one key name");
  if (!KeyArg(args.positional[0], &root, &path)) return Usage(err, "invalid key name");
  if (args.has("/v") && args.has("/ve")) return Usage(err, "/v and /ve exclude each other");
  HKEY key = nullptr;
  if (qt_reg::OpenKey(root, path.c_str(), qt_reg::kKeyRead, &key) != qt_reg::kOk) {
    std::fputs(kNotFound, err);
    return 1;
  }
  KeyCloser closer{key};
  if (args.has("/v") || args.has("/ve")) {
    const std::wstring name = args.has("/v") ? Wide(args.values["/v"]) : std::wstring();
    DWORD type = 0;
    std::vector<BYTE> data;
    if (qt_reg::ReadValue(key, name.c_str(), &type, &data) != qt_reg::kOk) {
      std::fputs(kNotFound, err);
      return 1;
    }
    std::fprintf(out, "\n%s\n", Narrow(FullName(root, path)).c_str());
    PrintValue(out, name, type, data);
    std::fprintf(out, "\n");
    return 0;
  }
  QueryKey(out, root, path, key, args.has("/s"));
  std::fprintf(out, "\n");
  return 0;
}

bool ParseUnsigned(const std::string& text, unsigned long long limit, unsigned long long* value) {
  if (text.empty()) return false;
  const bool hex = text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
  const char* digits = text.c_str() + (hex ? 2 : 0);
  if (!*digits || *digits == '-' || *digits == '+' || *digits == ' ') return false;
  char* end = nullptr;
  errno = 0;
  *value = std::strtoull(digits, &end, hex ? 16 : 10);
  return errno == 0 && *end == 0 && *value <= limit;
}

bool Encode(DWORD type, const std::string& text, const std::string& separator, std::vector<BYTE>* data,
            std::string* problem) {
  unsigned long long v = 0;
  switch (type) {
    case REG_SZ:
    case REG_EXPAND_SZ:
      *data = qt_reg::ToUtf16Bytes(Wide(text), true);
      return true;
    case REG_MULTI_SZ: {
      data->clear();
      const std::wstring all = Wide(text), sep = Wide(separator);
      if (sep.empty()) return *problem = "the separator of /s is empty", false;
      size_t from = 0;
      while (!all.empty()) {
        const size_t at = all.find(sep, from);
        const std::wstring item = all.substr(from, at == std::wstring::npos ? std::wstring::npos : at - from);
        if (item.empty()) return *problem = "REG_MULTI_SZ data holds an empty text", false;
        const std::vector<BYTE> bytes = qt_reg::ToUtf16Bytes(item, true);
        data->insert(data->end(), bytes.begin(), bytes.end());
        if (at == std::wstring::npos) break;
        from = at + sep.size();
      }
      data->push_back(0);
      data->push_back(0);
      return true;
    }
    case REG_DWORD:
    case REG_QWORD: {
      const size_t n = type == REG_DWORD ? 4 : 8;
      if (!text.empty() && !ParseUnsigned(text, n == 4 ? 0xFFFFFFFFull : ~0ull, &v))
        return *problem = "the data of " + NameOfType(type) + " must be a number (decimal or 0x hex) that fits", false;
      data->clear();
      for (size_t i = 0; i < n; ++i) data->push_back(static_cast<BYTE>(v >> (8 * i)));
      return true;
    }
    default: {
      if (text.size() % 2) return *problem = "binary data needs an even number of hex digits", false;
      data->clear();
      for (size_t i = 0; i < text.size(); i += 2) {
        const std::string pair = text.substr(i, 2);
        if (pair.find_first_not_of("0123456789abcdefABCDEF") != std::string::npos)
          return *problem = "binary data must be hex digits", false;
        data->push_back(static_cast<BYTE>(std::strtoul(pair.c_str(), nullptr, 16)));
      }
      return true;
    }
  }
}

int Add(const std::vector<std::string>& argv, FILE* out, FILE* err) {
  Args args;
  std::string problem;
  if (!ParseArgs(argv, {"/v", "/t", "/d", "/s"}, {"/ve", "/f"}, &args, &problem)) return Usage(err, problem.c_str());
  HKEY root = nullptr;
  std::wstring path;
  if (args.positional.size() != 1) return Usage(err, "add takes one key name");
  if (!KeyArg(args.positional[0], &root, &path)) return Usage(err, "invalid key name");
  if (args.has("/v") && args.has("/ve")) return Usage(err, "/v and /ve exclude each other");
  DWORD type = REG_SZ;
  if (args.has("/t") && !TypeOfName(args.values["/t"], &type)) return Usage(err, "unknown value type for /t");
  if (args.has("/s") && type != REG_MULTI_SZ) return Usage(err, "/s applies to REG_MULTI_SZ only");
  const bool setsValue = args.has("/v") || args.has("/ve") || args.has("/t") || args.has("/d");
  std::vector<BYTE> data;
  if (setsValue && !Encode(type, args.values["/d"], args.has("/s") ? args.values["/s"] : "\\0", &data, &problem))
    return Usage(err, problem.c_str());
  if (path.empty() && !setsValue) return Usage(err, "add needs a key below the root");
  HKEY key = nullptr;
  long rc = qt_reg::CreateKey(root, path.c_str(), qt_reg::kKeyAllAccess, &key);
  if (rc != qt_reg::kOk) {
    std::fprintf(err, "quiltool reg add: cannot create %s (error %ld)\n", Narrow(FullName(root, path)).c_str(), rc);
    return 1;
  }
  KeyCloser closer{key};
  if (setsValue) {
    const std::wstring name = args.has("/v") ? Wide(args.values["/v"]) : std::wstring();
    if (!args.has("/f") && qt_reg::QueryValue(key, name.c_str(), nullptr, nullptr, nullptr) == qt_reg::kOk) {
      std::fprintf(err, "quiltool reg add: value %s exists; add /f to overwrite it\n",
                   name.empty() ? "(Default)" : Narrow(name).c_str());
      return 1;
    }
    rc = qt_reg::SetValueExact(key, name.c_str(), type, data.data(), static_cast<DWORD>(data.size()));
    if (rc != qt_reg::kOk) {
      std::fprintf(err, "quiltool reg add: cannot write the value (error %ld)\n", rc);
      return 1;
    }
  }
  std::fputs(kDone, out);
  return 0;
}

int Delete(const std::vector<std::string>& argv, FILE* out, FILE* err) {
  Args args;
  std::string problem;
  if (!ParseArgs(argv, {"/v"}, {"/ve", "/va", "/f"}, &args, &problem)) return Usage(err, problem.c_str());
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
    if (rc == qt_reg::kFileNotFound) {
      std::fputs(kNotFound, err);
      return 1;
    }
    if (rc != qt_reg::kOk) {
      std::fprintf(err, "quiltool reg delete: cannot delete %s (error %ld)\n", Narrow(FullName(root, path)).c_str(), rc);
      return 1;
    }
    std::fputs(kDone, out);
    return 0;
  }
  HKEY key = nullptr;
  if (qt_reg::OpenKey(root, path.c_str(), qt_reg::kKeyAllAccess, &key) != qt_reg::kOk) {
    std::fputs(kNotFound, err);
    return 1;
  }
  KeyCloser closer{key};
  std::vector<std::wstring> names;
  if (args.has("/va")) {
    std::wstring name;
    for (DWORD i = 0; qt_reg::EnumValue(key, i, &name, nullptr, nullptr) == qt_reg::kOk; ++i) names.push_back(name);
  } else {
    names.push_back(args.has("/v") ? Wide(args.values["/v"]) : std::wstring());
  }
  for (const std::wstring& name : names) {
    const long rc = qt_reg::DeleteValue(key, name.c_str());
    if (rc == qt_reg::kFileNotFound && !args.has("/va")) {
      std::fputs(kNotFound, err);
      return 1;
    }
    if (rc != qt_reg::kOk && rc != qt_reg::kFileNotFound) {
      std::fprintf(err, "quiltool reg delete: cannot delete a value (error %ld)\n", rc);
      return 1;
    }
  }
  std::fputs(kDone, out);
  return 0;
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
  std::string problem;
  if (!ParseArgs(argv, {}, {"/y"}, &args, &problem)) return Usage(err, problem.c_str());
  if (args.positional.size() != 2) return Usage(err, "export takes a key name and a file name");
  HKEY root = nullptr;
  std::wstring path;
  if (!KeyArg(args.positional[0], &root, &path)) return Usage(err, "invalid key name");
  const std::string& file = args.positional[1];
  if (!args.has("/y")) {
    if (FILE* existing = std::fopen(file.c_str(), "rb")) {
      std::fclose(existing);
      std::fprintf(err, "quiltool reg export: %s exists; add /y to overwrite it\n", file.c_str());
      return 1;
    }
  }
  HKEY key = nullptr;
  if (qt_reg::OpenKey(root, path.c_str(), qt_reg::kKeyRead, &key) != qt_reg::kOk) {
    std::fputs(kNotFound, err);
    return 1;
  }
  qt_regfile::Document doc;
  long rc;
  {
    KeyCloser closer{key};
    rc = Collect(root, path, key, &doc);
  }
  if (rc != qt_reg::kOk) {
    std::fprintf(err, "quiltool reg export: cannot read %s (error %ld)\n", Narrow(FullName(root, path)).c_str(), rc);
    return 1;
  }
  const std::string bytes = qt_regfile::Format(doc);
  FILE* f = std::fopen(file.c_str(), "wb");
  if (!f) {
    std::fprintf(err, "quiltool reg export: cannot write %s: %s\n", file.c_str(), std::strerror(errno));
    return 1;
  }
  const bool written = std::fwrite(bytes.data(), 1, bytes.size(), f) == bytes.size();
  if (std::fclose(f) != 0 || !written) {
    std::fprintf(err, "quiltool reg export: cannot write %s\n", file.c_str());
    return 1;
  }
  std::fputs(kDone, out);
  return 0;
}

bool ReadWholeFile(const std::string& file, std::string* bytes) {
  FILE* f = std::fopen(file.c_str(), "rb");
  if (!f) return false;
  char buffer[65536];
  size_t n;
  while ((n = std::fread(buffer, 1, sizeof buffer, f)) > 0) bytes->append(buffer, n);
  const bool ok = !std::ferror(f);
  std::fclose(f);
  return ok;
}

int Import(const std::vector<std::string>& argv, FILE* out, FILE* err) {
  Args args;
  std::string problem;
  if (!ParseArgs(argv, {}, {}, &args, &problem)) return Usage(err, problem.c_str());
  if (args.positional.size() != 1) return Usage(err, "import takes one file name");
  const std::string& file = args.positional[0];
  std::string bytes;
  if (!ReadWholeFile(file, &bytes)) {
    std::fprintf(err, "quiltool reg import: cannot read %s: %s\n", file.c_str(), std::strerror(errno));
    return 1;
  }
  // The whole file is checked before the first change, so that a broken
  // file changes nothing.
  qt_regfile::Document doc;
  if (!qt_regfile::Parse(bytes, &doc, &problem)) {
    std::fprintf(err, "quiltool reg import: %s: %s\n", file.c_str(), problem.c_str());
    return 1;
  }
  for (const qt_regfile::Key& k : doc.keys) {
    if (k.remove && k.path.empty()) {
      std::fprintf(err, "quiltool reg import: %s: line %d: a root cannot be deleted\n", file.c_str(), k.line);
      return 1;
    }
  }
  for (const qt_regfile::Key& k : doc.keys) {
    const std::string name = Narrow(FullName(k.root, k.path));
    if (k.remove) {
      const long rc = qt_reg::DeleteTree(k.root, k.path.c_str());
      if (rc != qt_reg::kOk && rc != qt_reg::kFileNotFound) {
        std::fprintf(err, "quiltool reg import: cannot delete %s (error %ld)\n", name.c_str(), rc);
        return 1;
      }
      continue;
    }
    HKEY key = nullptr;
    long rc = qt_reg::CreateKey(k.root, k.path.c_str(), qt_reg::kKeyAllAccess, &key);
    if (rc != qt_reg::kOk) {
      std::fprintf(err, "quiltool reg import: cannot create %s (error %ld)\n", name.c_str(), rc);
      return 1;
    }
    KeyCloser closer{key};
    for (const qt_regfile::Value& v : k.values) {
      rc = v.remove ? qt_reg::DeleteValue(key, v.name.c_str())
                    : qt_reg::SetValueExact(key, v.name.c_str(), v.type, v.data.data(), static_cast<DWORD>(v.data.size()));
      if (rc != qt_reg::kOk && !(v.remove && rc == qt_reg::kFileNotFound)) {
        std::fprintf(err, "quiltool reg import: cannot write a value of %s (error %ld)\n", name.c_str(), rc);
        return 1;
      }
    }
  }
  std::fputs(kDone, out);
  return 0;
}

int RegMain(const std::vector<std::string>& args, FILE* out, FILE* err) {
  if (args.empty()) return Usage(err, "missing operation");
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
  return Usage(err, ("unknown operation '" + args[0] + "'").c_str());
}

const qt_tool::Registration kReg({"reg", "query and change settings as reg.exe does", RegMain});

}  // namespace
