#include "files/lock_content.h"

#include <vector>

namespace qt {
namespace lockfile {

namespace {

std::vector<unsigned> ToUnits(const wchar_t* text) {
  std::vector<unsigned> units;
  for (const wchar_t* p = text; p && *p; ++p) {
    const unsigned long c = static_cast<unsigned long>(*p);
    if (sizeof(wchar_t) > 2 && c > 0xFFFF && c <= 0x10FFFF) {
      units.push_back(0xD800 | static_cast<unsigned>((c - 0x10000) >> 10));
      units.push_back(0xDC00 | static_cast<unsigned>((c - 0x10000) & 0x3FF));
    } else {
      units.push_back(c > 0xFFFF ? 0xFFFD : static_cast<unsigned>(c));
    }
  }
  return units;
}

bool IsHigh(unsigned u) { return u >= 0xD800 && u <= 0xDBFF; }
bool IsLow(unsigned u) { return u >= 0xDC00 && u <= 0xDFFF; }

}  // namespace

std::string LockContent(const wchar_t* user) {
  std::vector<unsigned> units = ToUnits(user);
  if (units.size() > kContentUnits) {
    units.resize(kContentUnits);
    if (IsHigh(units.back())) units.pop_back();
  }
  units.resize(kContentUnits, '*');
  std::string bytes;
  bytes.reserve(kContentBytes);
  for (unsigned u : units) {
    bytes += static_cast<char>(u & 0xFF);
    bytes += static_cast<char>(u >> 8);
  }
  return bytes;
}

std::wstring HolderName(const void* bytes, size_t size) {
  const unsigned char* b = static_cast<const unsigned char*>(bytes);
  std::vector<unsigned> units;
  for (size_t i = 0; i + 1 < size; i += 2) {
    const unsigned u = b[i] | (static_cast<unsigned>(b[i + 1]) << 8);
    if (u == '*' || u == 0) break;
    units.push_back(u);
  }
  std::wstring name;
  for (size_t i = 0; i < units.size(); ++i) {
    const unsigned u = units[i];
    if (sizeof(wchar_t) > 2 && IsHigh(u) && i + 1 < units.size() && IsLow(units[i + 1])) {
      name += static_cast<wchar_t>(0x10000 + ((u - 0xD800) << 10) + (units[i + 1] - 0xDC00));
      ++i;
    } else if (sizeof(wchar_t) > 2 && (IsHigh(u) || IsLow(u))) {
      name += static_cast<wchar_t>(0xFFFD);  // a half pair is no character in UTF-32
    } else {
      name += static_cast<wchar_t>(u);
    }
  }
  return name;
}

}  // namespace lockfile
}  // namespace qt
