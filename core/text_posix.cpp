// Linux has no ANSI code page: 8-bit text is UTF-8. Case mapping uses the
// C.UTF-8 locale, so it does not depend on the process's own locale.
#include <locale.h>
#include <wctype.h>

#include "core/text_platform.h"
#include "ustr.h"

namespace qt {
namespace platform {
const char* const kNarrowStringInWideFormat = "s";
const char* const kNarrowCharInWideFormat = "c";
}  // namespace platform
}  // namespace qt

namespace {

locale_t Utf8Locale() {
  static locale_t loc = newlocale(LC_CTYPE_MASK, "C.UTF-8", static_cast<locale_t>(0));
  return loc;
}

}  // namespace

wchar_t qn_charupper(wchar_t c) {
  if (c < 0x80) return (c >= L'a' && c <= L'z') ? static_cast<wchar_t>(c - 32) : c;
  locale_t loc = Utf8Locale();
  return loc ? static_cast<wchar_t>(towupper_l(static_cast<wint_t>(c), loc)) : c;
}

wchar_t qn_charlower(wchar_t c) {
  if (c < 0x80) return (c >= L'A' && c <= L'Z') ? static_cast<wchar_t>(c + 32) : c;
  locale_t loc = Utf8Locale();
  return loc ? static_cast<wchar_t>(towlower_l(static_cast<wint_t>(c), loc)) : c;
}

std::wstring qn_ansi_to_wide(const char* text, size_t length) {
  std::wstring out;
  if (!text) return out;
  const unsigned char* s = reinterpret_cast<const unsigned char*>(text);
  const size_t n = length == static_cast<size_t>(-1) ? std::char_traits<char>::length(text) : length;
  for (size_t i = 0; i < n;) {
    const unsigned c = s[i];
    const int extra = c >= 0xF0 ? 3 : c >= 0xE0 ? 2 : c >= 0xC0 ? 1 : 0;
    bool valid = extra > 0 && i + extra < n;
    for (int k = 1; valid && k <= extra; ++k) valid = (s[i + k] & 0xC0) == 0x80;
    if (!valid) {
      // ASCII, or a byte that starts no valid sequence: taken as it is.
      out += static_cast<wchar_t>(c);
      ++i;
      continue;
    }
    unsigned cp = c & (0x3Fu >> extra);
    for (int k = 1; k <= extra; ++k) cp = (cp << 6) | (s[i + k] & 0x3F);
    out += static_cast<wchar_t>(cp);
    i += 1 + extra;
  }
  return out;
}

std::string qn_wide_to_ansi(const wchar_t* text, size_t length) {
  std::string out;
  if (!text) return out;
  const size_t n = length == static_cast<size_t>(-1) ? std::char_traits<wchar_t>::length(text) : length;
  for (size_t i = 0; i < n; ++i) {
    const unsigned cp = static_cast<unsigned>(text[i]);
    if (cp < 0x80) {
      out += static_cast<char>(cp);
    } else if (cp < 0x800) {
      out += static_cast<char>(0xC0 | (cp >> 6));
      out += static_cast<char>(0x80 | (cp & 0x3F));
    } else if (cp < 0x10000) {
      out += static_cast<char>(0xE0 | (cp >> 12));
      out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
      out += static_cast<char>(0x80 | (cp & 0x3F));
    } else {
      out += static_cast<char>(0xF0 | (cp >> 18));
      out += static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
      out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
      out += static_cast<char>(0x80 | (cp & 0x3F));
    }
  }
  return out;
}
