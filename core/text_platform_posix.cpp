// Linux has no ANSI code page: 8-bit text is UTF-8.
#include <locale.h>
#include <wctype.h>

#include "core/text_platform.h"
#include "qn_utf.h"

namespace qt {
namespace text {
namespace platform {

namespace {

locale_t Utf8Locale() {
  static locale_t loc = newlocale(LC_CTYPE_MASK, "C.UTF-8", static_cast<locale_t>(0));
  return loc;
}

}  // namespace

wchar_t UpperCase(wchar_t c) {
  if (c < 0x80) return (c >= L'a' && c <= L'z') ? static_cast<wchar_t>(c - 32) : c;
  locale_t loc = Utf8Locale();
  return loc ? static_cast<wchar_t>(towupper_l(static_cast<wint_t>(c), loc)) : c;
}

wchar_t LowerCase(wchar_t c) {
  if (c < 0x80) return (c >= L'A' && c <= L'Z') ? static_cast<wchar_t>(c + 32) : c;
  locale_t loc = Utf8Locale();
  return loc ? static_cast<wchar_t>(towlower_l(static_cast<wint_t>(c), loc)) : c;
}

std::wstring AnsiToWide(const char* text, size_t length) { return qn_utf8_to_wide(text, length); }

std::string WideToAnsi(const wchar_t* text, size_t length) { return qn_wide_to_utf8(text, length); }

}  // namespace platform
}  // namespace text
}  // namespace qt
