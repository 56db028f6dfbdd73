// The library's one Unicode codec. It decides by the width of wchar_t, not
// by platform, so the same source gives the same bytes on both targets.
#include "qn_utf.h"

#include "core/boundary.h"

#include <cwchar>

namespace {

const bool kWide16 = sizeof(wchar_t) == 2;
const char32_t kReplacement = 0xFFFD;

bool IsHigh(char32_t u) { return u >= 0xD800 && u <= 0xDBFF; }
bool IsLow(char32_t u) { return u >= 0xDC00 && u <= 0xDFFF; }
bool IsSurrogate(char32_t u) { return u >= 0xD800 && u <= 0xDFFF; }

// wchar_t is signed on Linux: a negative value is taken as the large
// unsigned one, which is no character either.
char32_t Value(wchar_t c) { return static_cast<char32_t>(c); }

char32_t Join(char32_t high, char32_t low) { return 0x10000 + ((high - 0xD800) << 10) + (low - 0xDC00); }

size_t WideLength(const wchar_t* text, size_t length) {
  return length == static_cast<size_t>(-1) ? std::wcslen(text) : length;
}

char* PutUnit(char* out, char32_t unit) {
  out[0] = static_cast<char>(unit & 0xFF);
  out[1] = static_cast<char>((unit >> 8) & 0xFF);
  return out + 2;
}

void PutUtf8(std::string& out, char32_t c) {
  if (c < 0x80) {
    out += static_cast<char>(c);
  } else if (c < 0x800) {
    out += static_cast<char>(0xC0 | (c >> 6));
    out += static_cast<char>(0x80 | (c & 0x3F));
  } else if (c < 0x10000) {
    out += static_cast<char>(0xE0 | (c >> 12));
    out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (c & 0x3F));
  } else {
    out += static_cast<char>((0xF0 | (c >> 18)) & 0xFF);
    out += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
    out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (c & 0x3F));
  }
}

// Hands each decoded character to put until the input ends or put returns
// false.
template <class Put>
void DecodeUtf16le(const unsigned char* b, size_t size, unsigned flags, Put put) {
  const size_t units = size / 2;
  for (size_t i = 0; i < units; ++i) {
    char32_t u = b[2 * i] | (static_cast<char32_t>(b[2 * i + 1]) << 8);
    if (u == 0 && (flags & QN_UTF_STOP_AT_ZERO)) return;
    if (!kWide16 && IsSurrogate(u)) {
      if (IsHigh(u) && i + 1 < units) {
        const char32_t low = b[2 * i + 2] | (static_cast<char32_t>(b[2 * i + 3]) << 8);
        if (IsLow(low)) {
          u = Join(u, low);
          ++i;
        }
      }
      if (IsSurrogate(u) && (flags & QN_UTF_REPLACE_INVALID)) u = kReplacement;
    }
    if (!put(static_cast<wchar_t>(u))) return;
  }
}

}  // namespace

std::string qn_wide_to_utf16le(const wchar_t* text, size_t length, unsigned flags) {
  return qt::NoThrow<std::string>("qn_wide_to_utf16le", std::string(), [&]() -> std::string {
    std::string out;
    if (!text) return out;
    const size_t n = WideLength(text, length);
    // Sized once and written through a pointer: this sits on the paths of
    // stored records and log pieces.
    size_t units = n;
    if (!kWide16) {
      for (size_t i = 0; i < n; ++i) {
        const char32_t c = Value(text[i]);
        if (c > 0xFFFF && c <= 0x10FFFF) ++units;
      }
    }
    out.resize(2 * units);
    char* p = &out[0];
    for (size_t i = 0; i < n; ++i) {
      char32_t c = Value(text[i]);
      if (!kWide16) {
        if (c > 0x10FFFF || (IsSurrogate(c) && (flags & QN_UTF_REPLACE_INVALID))) {
          c = kReplacement;
        } else if (c > 0xFFFF) {
          p = PutUnit(p, 0xD800 | ((c - 0x10000) >> 10));
          p = PutUnit(p, 0xDC00 | ((c - 0x10000) & 0x3FF));
          continue;
        }
      }
      p = PutUnit(p, c);
    }
    return out;
  });
}

std::wstring qn_utf16le_to_wide(const void* bytes, size_t size, unsigned flags) {
  return qt::NoThrow<std::wstring>("qn_utf16le_to_wide", std::wstring(), [&]() -> std::wstring {
    std::wstring out;
    if (!bytes) return out;
    out.reserve(size / 2);
    DecodeUtf16le(static_cast<const unsigned char*>(bytes), size, flags, [&out](wchar_t c) {
      out += c;
      return true;
    });
    return out;
  });
}

size_t qn_utf16le_to_wide(const void* bytes, size_t size, wchar_t* out, size_t outChars, unsigned flags) {
  if (!out || outChars == 0) return 0;
  size_t n = 0;
  if (bytes) {
    DecodeUtf16le(static_cast<const unsigned char*>(bytes), size, flags, [&](wchar_t c) {
      if (n + 1 >= outChars) return false;
      out[n++] = c;
      return true;
    });
  }
  out[n] = 0;
  return n;
}

std::string qn_wide_to_utf8(const wchar_t* text, size_t length, unsigned flags) {
  return qt::NoThrow<std::string>("qn_wide_to_utf8", std::string(), [&]() -> std::string {
    std::string out;
    if (!text) return out;
    const size_t n = WideLength(text, length);
    out.reserve(n);
    for (size_t i = 0; i < n; ++i) {
      char32_t c = Value(text[i]);
      if (kWide16 && IsHigh(c) && i + 1 < n && IsLow(Value(text[i + 1]))) {
        c = Join(c, Value(text[++i]));
      } else if ((IsSurrogate(c) || c > 0x10FFFF) && (flags & QN_UTF_REPLACE_INVALID)) {
        c = kReplacement;
      }
      PutUtf8(out, c);
    }
    return out;
  });
}

namespace {

// Lowest and highest second byte a lead byte allows; zero for a byte that
// starts nothing. The narrow ranges after E0, ED, F0 and F4 keep out
// overlong forms, surrogates and values beyond U+10FFFF.
void SecondByteRange(unsigned char lead, unsigned char* low, unsigned char* high) {
  *low = 0x80;
  *high = 0xBF;
  if (lead == 0xE0) *low = 0xA0;
  if (lead == 0xED) *high = 0x9F;
  if (lead == 0xF0) *low = 0x90;
  if (lead == 0xF4) *high = 0x8F;
  if (lead < 0xC2 || lead > 0xF4) *low = *high = 0;
}

void PutWide(std::wstring& out, char32_t cp) {
  if (kWide16 && cp > 0xFFFF) {
    out += static_cast<wchar_t>(0xD800 | ((cp - 0x10000) >> 10));
    out += static_cast<wchar_t>(0xDC00 | ((cp - 0x10000) & 0x3FF));
  } else {
    out += static_cast<wchar_t>(cp);
  }
}

// Decodes well-formed UTF-8; each maximal ill-formed part (a byte that
// starts nothing, or the longest start of a sequence that breaks off)
// becomes one U+FFFD. Returns how many parts were ill-formed.
size_t DecodeUtf8(const unsigned char* s, size_t n, std::wstring& out) {
  size_t bad = 0;
  out.reserve(n);
  for (size_t i = 0; i < n;) {
    const unsigned char lead = s[i];
    if (lead < 0x80) {
      out += static_cast<wchar_t>(lead);
      ++i;
      continue;
    }
    const int extra = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : 1;
    unsigned char low = 0, high = 0;
    SecondByteRange(lead, &low, &high);
    char32_t cp = lead & (0x3Fu >> extra);
    size_t j = i + 1;
    int taken = 0;
    for (; taken < extra && j < n; ++taken, ++j) {
      const unsigned char b = s[j];
      if (taken == 0 ? (b < low || b > high) : (b & 0xC0) != 0x80) break;
      cp = (cp << 6) | (b & 0x3F);
    }
    if (high == 0 || taken < extra) {
      out += static_cast<wchar_t>(kReplacement);
      ++bad;
      i = high == 0 ? i + 1 : j;
      continue;
    }
    PutWide(out, cp);
    i = j;
  }
  return bad;
}

size_t Utf8Length(const char* text, size_t length) {
  return length == static_cast<size_t>(-1) ? std::char_traits<char>::length(text) : length;
}

}  // namespace

std::wstring qn_utf8_to_wide(const char* text, size_t length) {
  return qt::NoThrow<std::wstring>("qn_utf8_to_wide", std::wstring(), [&]() -> std::wstring {
    std::wstring out;
    if (!text) return out;
    DecodeUtf8(reinterpret_cast<const unsigned char*>(text), Utf8Length(text, length), out);
    return out;
  });
}

bool qn_utf8_to_wide_strict(const char* text, size_t length, std::wstring* out) {
  return qt::NoThrow<bool>("qn_utf8_to_wide_strict", false, [&]() -> bool {
    if (!out) return false;
    out->clear();
    if (!text) return true;
    std::wstring decoded;
    if (DecodeUtf8(reinterpret_cast<const unsigned char*>(text), Utf8Length(text, length), decoded) != 0) return false;
    out->swap(decoded);
    return true;
  });
}
