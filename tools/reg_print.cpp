#include "reg_print.h"

#include "cmd_reg_file.h"
#include "reg_values.h"
#include "settings/regstore.h"

namespace qt_regtool {

namespace {

const char kNotFound[] = "ERROR: The system was unable to find the specified registry key or value.\n";

const char kUsage[] =
    "usage:\n"
    "  quiltool reg query  KEY [/v NAME | /ve] [/s]\n"
    "  quiltool reg add    KEY [/v NAME | /ve] [/t TYPE] [/s SEPARATOR] [/d DATA] [/f]\n"
    "  quiltool reg delete KEY [/v NAME | /ve | /va] /f\n"
    "  quiltool reg export KEY FILE [/y]\n"
    "  quiltool reg import FILE\n"
    "  quiltool reg [OPERATION] /?   (or --help) shows this text\n"
    "KEY is ROOT\\path with ROOT one of HKCU, HKEY_CURRENT_USER, HKLM, HKEY_LOCAL_MACHINE.\n"
    "TYPE is REG_SZ (default), REG_EXPAND_SZ, REG_MULTI_SZ, REG_DWORD, REG_QWORD, REG_BINARY or REG_NONE.\n"
    "Options may be written /x or -x. Arguments and output are UTF-8.\n"
    "An import changes nothing unless the whole file is valid; on Linux it is one transaction.\n";

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

struct KeyCloser {
  HKEY key;
  ~KeyCloser() {
    if (key) qt_reg::CloseKey(key);
  }
};

}  // namespace

int Help(FILE* out) {
  std::fputs(kUsage, out);
  return 0;
}

int Usage(FILE* err, const std::string& problem) {
  if (!problem.empty()) std::fprintf(err, "quiltool reg: %s\n", problem.c_str());
  std::fputs(kUsage, err);
  return 2;
}

std::wstring FullName(HKEY root, const std::wstring& path) {
  std::wstring name = qt_regfile::RootName(root);
  if (!path.empty()) name += L"\\" + path;
  return name;
}

std::string Show(DWORD type, const std::vector<BYTE>& data) {
  char number[32];
  switch (type) {
    case REG_SZ:
    case REG_EXPAND_SZ:
      return ToUtf8(qt_reg::FromUtf16Bytes(data.data(), data.size()));
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
        out += ToUtf8(item);
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
  std::fprintf(out, "    %s    %s    %s\n", name.empty() ? "(Default)" : ToUtf8(name).c_str(), NameOfType(type).c_str(),
               Show(type, data).c_str());
}

void PrintKey(FILE* out, HKEY root, const std::wstring& path, HKEY key, bool recurse) {
  std::fprintf(out, "\n%s\n", ToUtf8(FullName(root, path)).c_str());
  std::wstring name;
  DWORD type = 0;
  std::vector<BYTE> data;
  for (DWORD i = 0; qt_reg::EnumValue(key, i, &name, &type, &data) == qt_reg::kOk; ++i) PrintValue(out, name, type, data);
  std::vector<std::wstring> children;
  for (DWORD i = 0; qt_reg::EnumKey(key, i, &name) == qt_reg::kOk; ++i) children.push_back(name);
  if (!recurse) {
    if (!children.empty()) std::fprintf(out, "\n");
    for (const std::wstring& c : children)
      std::fprintf(out, "%s\n", ToUtf8(FullName(root, path.empty() ? c : path + L"\\" + c)).c_str());
    return;
  }
  for (const std::wstring& c : children) {
    HKEY child = nullptr;
    if (qt_reg::OpenKey(key, c.c_str(), qt_reg::kKeyRead, &child) != qt_reg::kOk) continue;
    KeyCloser closer{child};
    PrintKey(out, root, path.empty() ? c : path + L"\\" + c, child, true);
  }
}

int Failure(FILE* err, const char* verb, HKEY root, long rc, const std::string& action) {
  const std::string problem = qt_reg::StoreProblem(root);
  if (!problem.empty()) {
    std::fprintf(err, "quiltool reg %s: %s\n", verb, problem.c_str());
  } else if (rc == qt_reg::kFileNotFound) {
    std::fputs(kNotFound, err);
  } else {
    std::fprintf(err, "quiltool reg %s: cannot %s (error %ld)\n", verb, action.c_str(), rc);
  }
  return 1;
}

}  // namespace qt_regtool
