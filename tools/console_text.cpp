#include "console_text.h"

#include "qn_utf.h"
#include "ustr.h"

namespace qt_tool {

namespace {

// The length of the well-formed sequence at p (Unicode's table of
// well-formed byte sequences), 0 when there is none; *truncated tells
// whether the bytes so far could still become one.
size_t SequenceAt(const unsigned char* p, size_t left, bool* truncated) {
  *truncated = false;
  const unsigned char c = p[0];
  if (c < 0x80) return 1;
  size_t n;
  unsigned char lo = 0x80, hi = 0xBF;
  if (c >= 0xC2 && c <= 0xDF) {
    n = 2;
  } else if (c >= 0xE0 && c <= 0xEF) {
    n = 3;
    if (c == 0xE0) lo = 0xA0;
    if (c == 0xED) hi = 0x9F;
  } else if (c >= 0xF0 && c <= 0xF4) {
    n = 4;
    if (c == 0xF0) lo = 0x90;
    if (c == 0xF4) hi = 0x8F;
  } else {
    return 0;
  }
  for (size_t i = 1; i < n; ++i) {
    if (i >= left) {
      *truncated = true;
      return 0;
    }
    const unsigned char min = i == 1 ? lo : 0x80, max = i == 1 ? hi : 0xBF;
    if (p[i] < min || p[i] > max) return 0;
  }
  return n;
}

}  // namespace

size_t CompleteUtf8Prefix(const char* data, size_t size) {
  const unsigned char* p = reinterpret_cast<const unsigned char*>(data);
  size_t i = 0;
  while (i < size) {
    bool truncated = false;
    const size_t n = SequenceAt(p + i, size - i, &truncated);
    if (truncated) return i;
    i += n ? n : 1;
  }
  return size;
}

std::string SanitizeUtf8(const std::string& bytes) {
  const unsigned char* p = reinterpret_cast<const unsigned char*>(bytes.data());
  std::string out;
  out.reserve(bytes.size());
  size_t i = 0;
  while (i < bytes.size()) {
    bool truncated = false;
    const size_t n = SequenceAt(p + i, bytes.size() - i, &truncated);
    if (n) {
      out.append(bytes, i, n);
      i += n;
      continue;
    }
    out += "\xEF\xBF\xBD";
    // A maximal ill-formed part: its lead byte and the continuation bytes
    // that were still acceptable.
    ++i;
    while (i < bytes.size() && (p[i] & 0xC0) == 0x80 && !truncated) ++i;
    if (truncated) break;
  }
  return out;
}

std::string EightBitToUtf8(const std::string& bytes) {
  // Where the 8-bit encoding is UTF-8, its conversion is forgiving (stray
  // bytes pass as Latin-1), which would hide damage; check it strictly.
  static const bool kUtf8 = qn_wide_to_ansi(L"\u00e9") == "\xc3\xa9";
  if (kUtf8) return SanitizeUtf8(bytes);
  const std::wstring wide = qn_ansi_to_wide(bytes.data(), bytes.size());
  return qn_wide_to_utf8(wide.data(), wide.size(), QN_UTF_REPLACE_INVALID);
}

}  // namespace qt_tool
