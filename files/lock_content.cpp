#include "files/lock_content.h"

#include "qn_utf.h"

namespace qt {
namespace lockfile {

namespace {

unsigned UnitAt(const unsigned char* b, size_t at) { return b[at] | (static_cast<unsigned>(b[at + 1]) << 8); }

bool IsHigh(unsigned u) { return u >= 0xD800 && u <= 0xDBFF; }

}  // namespace

std::string LockContent(const wchar_t* user) {
  std::string bytes = qn_wide_to_utf16le(user);
  if (bytes.size() > kContentBytes) {
    bytes.resize(kContentBytes);
    // Never leave the first half of a pair without its second.
    if (IsHigh(UnitAt(reinterpret_cast<const unsigned char*>(bytes.data()), kContentBytes - 2))) bytes.resize(kContentBytes - 2);
  }
  while (bytes.size() < kContentBytes) bytes.append("*\0", 2);
  return bytes;
}

std::wstring HolderName(const void* bytes, size_t size) {
  const unsigned char* b = static_cast<const unsigned char*>(bytes);
  size_t end = 0;
  while (end + 1 < size && UnitAt(b, end) != '*' && UnitAt(b, end) != 0) end += 2;
  // A half pair is no character in UTF-32.
  return qn_utf16le_to_wide(b, end, QN_UTF_REPLACE_INVALID);
}

}  // namespace lockfile
}  // namespace qt
