#include "reg_values.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>

#include "qn_utf.h"
#include "settings/regstore.h"

namespace qt_regtool {

namespace {

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

}  // namespace

std::wstring FromUtf8(const std::string& text) { return qn_utf8_to_wide(text.c_str(), text.size()); }
std::string ToUtf8(const std::wstring& text) { return qn_wide_to_utf8(text.c_str(), text.size()); }

std::string Lower(std::string text) {
  for (char& c : text) c = (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
  return text;
}

std::string NameOfType(DWORD type) {
  for (const TypeName& t : kTypes) {
    if (t.type == type) return t.name;
  }
  return "REG_UNKNOWN(" + std::to_string(type) + ")";
}

bool TypeOfName(const std::string& name, DWORD* type) {
  const std::string lower = Lower(name);
  for (const TypeName& t : kTypes) {
    if (Lower(t.name) == lower && (t.type <= REG_MULTI_SZ || t.type == REG_QWORD) && t.type != 5 && t.type != 6) {
      *type = t.type;
      return true;
    }
  }
  return false;
}

bool Encode(DWORD type, const std::string& text, const std::string& separator, std::vector<BYTE>* data,
            std::string* problem) {
  unsigned long long v = 0;
  switch (type) {
    case REG_SZ:
    case REG_EXPAND_SZ:
      *data = qt_reg::ToUtf16Bytes(FromUtf8(text), true);
      return true;
    case REG_MULTI_SZ: {
      data->clear();
      const std::wstring all = FromUtf8(text), sep = FromUtf8(separator);
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

}  // namespace qt_regtool
