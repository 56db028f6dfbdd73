#include "project/qb_text.h"

#include <cwchar>

namespace qb {

namespace {

const char32_t kReplacement = 0xFFFD;

// One code point from wide text at i, advancing i.
char32_t NextCodePoint(const wchar_t* text, size_t len, size_t* i) {
  const char32_t c = static_cast<char32_t>(text[*i]) & (sizeof(wchar_t) == 2 ? 0xFFFFu : 0xFFFFFFFFu);
  ++*i;
  if (sizeof(wchar_t) == 2 && c >= 0xD800 && c <= 0xDBFF && *i < len) {
    const char32_t low = static_cast<char32_t>(text[*i]) & 0xFFFFu;
    if (low >= 0xDC00 && low <= 0xDFFF) {
      ++*i;
      return 0x10000 + ((c - 0xD800) << 10) + (low - 0xDC00);
    }
  }
  if (c > 0x10FFFF) return kReplacement;
  return c;
}

// Writes one UTF-16 unit little-endian at out; returns the next position.
char* PutUnit(char* out, unsigned unit) {
  out[0] = static_cast<char>(unit & 0xFF);
  out[1] = static_cast<char>((unit >> 8) & 0xFF);
  return out + 2;
}

}  // namespace

std::string WideToUtf16le(const wchar_t* text, size_t len) {
  // At most two units per character: sized once, trimmed at the end.
  std::string out(len * (sizeof(wchar_t) == 2 ? 2 : 4), '\0');
  char* p = &out[0];
  if (sizeof(wchar_t) == 2) {
    // Already UTF-16: copied unit by unit so that the byte order is fixed.
    for (size_t i = 0; i < len; ++i) p = PutUnit(p, static_cast<unsigned>(text[i]) & 0xFFFF);
  } else {
    for (size_t i = 0; i < len;) {
      char32_t c = NextCodePoint(text, len, &i);
      if (c >= 0xD800 && c <= 0xDFFF) c = kReplacement;
      if (c >= 0x10000) {
        c -= 0x10000;
        p = PutUnit(p, 0xD800 + static_cast<unsigned>(c >> 10));
        p = PutUnit(p, 0xDC00 + static_cast<unsigned>(c & 0x3FF));
      } else {
        p = PutUnit(p, static_cast<unsigned>(c));
      }
    }
  }
  out.resize(static_cast<size_t>(p - out.data()));
  return out;
}

std::wstring Utf16leToWide(const unsigned char* bytes, size_t size) {
  std::wstring out;
  const size_t units = size / 2;
  out.reserve(units);
  for (size_t i = 0; i < units; ++i) {
    const unsigned u = bytes[2 * i] | (bytes[2 * i + 1] << 8);
    if (sizeof(wchar_t) == 2) {
      out.push_back(static_cast<wchar_t>(u));
      continue;
    }
    if (u >= 0xD800 && u <= 0xDBFF && i + 1 < units) {
      const unsigned low = bytes[2 * i + 2] | (bytes[2 * i + 3] << 8);
      if (low >= 0xDC00 && low <= 0xDFFF) {
        out.push_back(static_cast<wchar_t>(0x10000 + ((u - 0xD800) << 10) + (low - 0xDC00)));
        ++i;
        continue;
      }
    }
    out.push_back(static_cast<wchar_t>((u >= 0xD800 && u <= 0xDFFF) ? kReplacement : u));
  }
  return out;
}

std::string WideToUtf8(const wchar_t* text) {
  std::string out;
  if (!text) return out;
  const size_t len = std::wcslen(text);
  for (size_t i = 0; i < len;) {
    char32_t c = NextCodePoint(text, len, &i);
    if (c >= 0xD800 && c <= 0xDFFF) c = kReplacement;
    if (c < 0x80) {
      out.push_back(static_cast<char>(c));
    } else if (c < 0x800) {
      out.push_back(static_cast<char>(0xC0 | (c >> 6)));
      out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
    } else if (c < 0x10000) {
      out.push_back(static_cast<char>(0xE0 | (c >> 12)));
      out.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
      out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
    } else {
      out.push_back(static_cast<char>(0xF0 | (c >> 18)));
      out.push_back(static_cast<char>(0x80 | ((c >> 12) & 0x3F)));
      out.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
      out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
    }
  }
  return out;
}

}  // namespace qb
