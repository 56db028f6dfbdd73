#include "settings/qlg_utf8.h"

#include <cstdint>
#include <cstring>

namespace qt {
namespace qlg {

namespace {

inline bool IsContinuation(unsigned char c) { return (c & 0xC0) == 0x80; }

// Decodes one valid sequence at p; returns its length (0 when invalid).
size_t DecodeOne(const unsigned char* p, size_t left, char32_t* cp) {
  const unsigned char c = p[0];
  if (c < 0x80) {
    *cp = c;
    return 1;
  }
  if (c >= 0xC2 && c <= 0xDF) {
    if (left < 2 || !IsContinuation(p[1])) return 0;
    *cp = (char32_t(c & 0x1F) << 6) | (p[1] & 0x3F);
    return 2;
  }
  if (c >= 0xE0 && c <= 0xEF) {
    if (left < 3 || !IsContinuation(p[1]) || !IsContinuation(p[2])) return 0;
    const char32_t v = (char32_t(c & 0x0F) << 12) | (char32_t(p[1] & 0x3F) << 6) | (p[2] & 0x3F);
    if (v < 0x800 || (v >= 0xD800 && v <= 0xDFFF)) return 0;
    *cp = v;
    return 3;
  }
  if (c >= 0xF0 && c <= 0xF4) {
    if (left < 4 || !IsContinuation(p[1]) || !IsContinuation(p[2]) || !IsContinuation(p[3])) return 0;
    const char32_t v = (char32_t(c & 0x07) << 18) | (char32_t(p[1] & 0x3F) << 12) | (char32_t(p[2] & 0x3F) << 6) |
                       (p[3] & 0x3F);
    if (v < 0x10000 || v > 0x10FFFF) return 0;
    *cp = v;
    return 4;
  }
  return 0;
}

void AppendUtf8(char32_t cp, std::string* out) {
  if (cp < 0x80) {
    out->push_back(static_cast<char>(cp));
  } else if (cp < 0x800) {
    out->push_back(static_cast<char>(0xC0 | (cp >> 6)));
    out->push_back(static_cast<char>(0x80 | (cp & 0x3F)));
  } else if (cp < 0x10000) {
    out->push_back(static_cast<char>(0xE0 | (cp >> 12)));
    out->push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
    out->push_back(static_cast<char>(0x80 | (cp & 0x3F)));
  } else {
    out->push_back(static_cast<char>(0xF0 | (cp >> 18)));
    out->push_back(static_cast<char>(0x80 | ((cp >> 12) & 0x3F)));
    out->push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
    out->push_back(static_cast<char>(0x80 | (cp & 0x3F)));
  }
}

}  // namespace

size_t ValidUtf8Prefix(const char* data, size_t size) {
  const unsigned char* p = reinterpret_cast<const unsigned char*>(data);
  size_t i = 0;
  while (i < size) {
    // Texts are mostly ASCII: skip it eight bytes at a time.
    while (i + 8 <= size) {
      uint64_t word;
      std::memcpy(&word, p + i, 8);
      if (word & 0x8080808080808080ull) break;
      i += 8;
    }
    if (i >= size) break;
    if (p[i] < 0x80) {
      ++i;
      continue;
    }
    char32_t cp;
    const size_t n = DecodeOne(p + i, size - i, &cp);
    if (n == 0) return i;
    i += n;
  }
  return size;
}

size_t Utf8ToWideInto(const char* data, size_t size, wchar_t* out) {
  wchar_t* w = out;
  const unsigned char* p = reinterpret_cast<const unsigned char*>(data);
  size_t i = 0;
  while (i < size) {
    if (p[i] < 0x80) {
      *w++ = static_cast<wchar_t>(p[i++]);
      continue;
    }
    char32_t cp;
    const size_t n = DecodeOne(p + i, size - i, &cp);
    if (n == 0) {
      *w++ = static_cast<wchar_t>(0xFFFD);
      ++i;
      continue;
    }
    // A four-byte sequence gives at most two units.
    if (sizeof(wchar_t) == 2 && cp >= 0x10000) {
      cp -= 0x10000;
      *w++ = static_cast<wchar_t>(0xD800 + (cp >> 10));
      *w++ = static_cast<wchar_t>(0xDC00 + (cp & 0x3FF));
    } else {
      *w++ = static_cast<wchar_t>(cp);
    }
    i += n;
  }
  return static_cast<size_t>(w - out);
}

void AppendUtf8AsWide(const char* data, size_t size, std::wstring* out) {
  const size_t start = out->size();
  out->resize(start + size);
  out->resize(start + Utf8ToWideInto(data, size, &(*out)[0] + start));
}

std::wstring Utf8ToWide(const std::string& utf8) {
  std::wstring out;
  out.reserve(utf8.size());
  AppendUtf8AsWide(utf8.data(), utf8.size(), &out);
  return out;
}

std::string WideToUtf8(const wchar_t* text, size_t length) {
  std::string out;
  out.reserve(length);
  for (size_t i = 0; i < length; ++i) {
    char32_t cp = static_cast<char32_t>(text[i]);
    if (sizeof(wchar_t) == 2) cp &= 0xFFFF;
    if (cp >= 0xD800 && cp <= 0xDBFF && i + 1 < length) {
      const char32_t low = static_cast<char32_t>(text[i + 1]) & 0xFFFF;
      if (low >= 0xDC00 && low <= 0xDFFF) {
        cp = 0x10000 + ((cp - 0xD800) << 10) + (low - 0xDC00);
        ++i;
      }
    }
    if ((cp >= 0xD800 && cp <= 0xDFFF) || cp > 0x10FFFF) cp = 0xFFFD;
    AppendUtf8(cp, &out);
  }
  return out;
}

std::string WideToUtf8(const std::wstring& text) { return WideToUtf8(text.data(), text.size()); }

}  // namespace qlg
}  // namespace qt
