// `quiltool reg import` into a private settings store. Afterwards the
// store holds exactly what the file says, applied in file order (the last
// value of a name wins, a removed key takes everything below it); a file
// that is refused, or fails midway, leaves the store as it was.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "cmd_reg_file.h"
#include "command.h"
#include "fuzz_support.h"
#include "qn_utf.h"
#include "settings/regstore.h"
#include "ustr.h"

namespace {

// Names compare as the registry compares them, upper-cased one character
// at a time.
std::wstring Fold(const std::wstring& name) {
  std::wstring f(name);
  for (wchar_t& c : f) c = qn_charupper(c);
  return f;
}

struct Node {
  std::map<std::wstring, Node> keys;
  std::map<std::wstring, std::pair<DWORD, std::vector<BYTE>>> values;
  bool operator==(const Node& o) const { return keys == o.keys && values == o.values; }
};

std::vector<std::wstring> Parts(const std::wstring& path) {
  std::vector<std::wstring> parts;
  if (path.empty()) return parts;
  size_t from = 0;
  for (;;) {
    const size_t at = path.find(L'\\', from);
    parts.push_back(Fold(path.substr(from, at == std::wstring::npos ? std::wstring::npos : at - from)));
    if (at == std::wstring::npos) return parts;
    from = at + 1;
  }
}

// What the file should leave: the document applied to an empty store.
void Apply(const qt_regfile::Document& doc, std::map<HKEY, Node>* roots) {
  for (const qt_regfile::Key& k : doc.keys) {
    Node* node = &(*roots)[k.root];
    const std::vector<std::wstring> parts = Parts(k.path);
    if (k.remove) {
      for (size_t i = 0; node && i + 1 < parts.size(); ++i) {
        auto it = node->keys.find(parts[i]);
        node = it == node->keys.end() ? nullptr : &it->second;
      }
      if (node && !parts.empty()) node->keys.erase(parts.back());
      continue;
    }
    for (const std::wstring& p : parts) node = &node->keys[p];
    for (const qt_regfile::Value& v : k.values) {
      if (v.remove) {
        node->values.erase(Fold(v.name));
      } else {
        node->values[Fold(v.name)] = {v.type, v.data};
      }
    }
  }
}

// What the store holds below key.
Node Read(HKEY key) {
  Node node;
  std::wstring name;
  DWORD type = 0;
  std::vector<BYTE> data;
  for (DWORD i = 0; qt_reg::EnumValue(key, i, &name, &type, &data) == qt_reg::kOk; ++i) {
    node.values[Fold(name)] = {type, data};
  }
  for (DWORD i = 0; qt_reg::EnumKey(key, i, &name) == qt_reg::kOk; ++i) {
    HKEY child = nullptr;
    QT_FUZZ_CHECK(qt_reg::OpenKey(key, name.c_str(), qt_reg::kKeyAllAccess, &child) == qt_reg::kOk,
                  "a listed key cannot be opened: " + qt_fuzz::Printable(name));
    node.keys[Fold(name)] = Read(child);
    qt_reg::CloseKey(child);
  }
  return node;
}

void Empty(HKEY root) {
  std::wstring name;
  while (qt_reg::EnumKey(root, 0, &name) == qt_reg::kOk) {
    QT_FUZZ_CHECK(qt_reg::DeleteTree(root, name.c_str()) == qt_reg::kOk, "cannot empty the store");
  }
  DWORD type = 0;
  std::vector<BYTE> data;
  while (qt_reg::EnumValue(root, 0, &name, &type, &data) == qt_reg::kOk) {
    QT_FUZZ_CHECK(qt_reg::DeleteValue(root, name.c_str()) == qt_reg::kOk, "cannot empty the store");
  }
}

std::string Describe(const Node& node, const std::string& indent = "   ") {
  std::string s;
  for (const auto& v : node.values) {
    s += indent + "\"" + qt_fuzz::Printable(v.first) + "\" type " + std::to_string(v.second.first) + " " +
         qt_fuzz::Printable(std::string(v.second.second.begin(), v.second.second.end()), 40) + "\n";
  }
  for (const auto& k : node.keys) s += indent + "[" + qt_fuzz::Printable(k.first) + "]\n" + Describe(k.second, indent + "  ");
  return s;
}

const HKEY kRoots[] = {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE};

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  // The stores live in this process's scratch folder; nothing outside it
  // is touched.
  const std::string user = qt_fuzz::ScratchFile("hkcu"), machine = qt_fuzz::ScratchFile("hklm");
  setenv("QUILTOOL_HKCU_DIR", user.c_str(), 1);
  setenv("QUILTOOL_HKLM_DIR", machine.c_str(), 1);
  // The machine store would flush every commit to the disk.
  setenv("QUILTOOL_STORE_JOURNAL", "wal", 1);
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  for (HKEY root : kRoots) Empty(root);
  // Something already there, which a refused file must leave alone.
  HKEY before = nullptr;
  QT_FUZZ_CHECK(qt_reg::CreateKey(HKEY_CURRENT_USER, L"Software\\Before", qt_reg::kKeyAllAccess, &before) == qt_reg::kOk,
                "cannot prepare the store");
  const BYTE one[4] = {1, 0, 0, 0};
  qt_reg::SetValueExact(before, L"kept", REG_DWORD, one, 4);
  qt_reg::CloseKey(before);
  std::map<HKEY, Node> was;
  for (HKEY root : kRoots) was[root] = Read(root);

  const std::string path = qt_fuzz::ScratchFile("import.reg");
  QT_FUZZ_CHECK(qt_fuzz::WriteFile(path, data, size), "cannot write " + path);
  FILE* sink = std::fopen("/dev/null", "w");
  const int rc = qt_tool::Run({"reg", "import", path}, sink, sink);
  std::fclose(sink);

  std::map<HKEY, Node> expected = was;
  qt_regfile::Document doc;
  std::string error;
  const bool parsed = qt_regfile::Parse(std::string(reinterpret_cast<const char*>(data), size), &doc, &error);
  if (rc == 0) {
    QT_FUZZ_CHECK(parsed, "imported a file the parser refuses: " + error);
    Apply(doc, &expected);
  }
  for (HKEY root : kRoots) {
    const Node now = Read(root);
    QT_FUZZ_CHECK(now == expected[root],
                  std::string(rc == 0 ? "after the import" : "after a failed import (exit " + std::to_string(rc) + ")") +
                      ", " + qt_fuzz::Narrow(qt_regfile::RootName(root)) + " holds\n" + Describe(now) +
                      "   instead of\n" + Describe(expected[root]));
  }
  return 0;
}
