#include "files/lock_content.h"

#include "qn_utf.h"

namespace qt {
namespace lock_file {

namespace {

unsigned UnitAt(const unsigned char* b, size_t at) { return b[at] | (static_cast<unsigned>(b[at + 1]) << 8); }

bool IsHigh(unsigned u) { return u >= 0xD800 && u <= 0xDBFF; }
bool IsLow(unsigned u) { return u >= 0xDC00 && u <= 0xDFFF; }

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

bool HolderName(const void* bytes, size_t size, std::wstring* name) {
  name->clear();
  if (size % 2 != 0) return false;
  const unsigned char* b = static_cast<const unsigned char*>(bytes);
  size_t end = 0;
  for (; end < size; end += 2) {
    const unsigned u = UnitAt(b, end);
    if (u == '*' || u == 0) break;
    if (u < 0x20 || (u >= 0x7F && u <= 0x9F)) return false;
    if (IsHigh(u)) {
      if (end + 2 >= size) {
        // A full read that ends inside a pair was cut by the reader, not
        // written so: the name is what came before the pair.
        if (size < kHolderReadBytes) return false;
        *name = qn_utf16le_to_wide(b, end);
        return true;
      }
      if (!IsLow(UnitAt(b, end + 2))) return false;
      end += 2;
    } else if (IsLow(u)) {
      return false;
    }
  }
  // Only a name that fills everything read may go without its padding.
  if (end == size && size != 0 && size < kHolderReadBytes) return false;
  for (size_t at = end; at < size; at += 2) {
    const unsigned u = UnitAt(b, at);
    if (u != '*' && u != 0) return false;
  }
  *name = qn_utf16le_to_wide(b, end);
  return true;
}

}  // namespace lock_file
}  // namespace qt
