#include <cstring>
#include <cwchar>

#include "core/text_platform.h"
#include "core/boundary.h"
#include "ustr.h"

wchar_t qn_charupper(wchar_t c) { return qt::text::platform::UpperCase(c); }

wchar_t qn_charlower(wchar_t c) { return qt::text::platform::LowerCase(c); }

// The default length means "up to the first zero", which is left out.
std::wstring qn_ansi_to_wide(const char* text, size_t length) {
  return qt::NoThrow<std::wstring>("qn_ansi_to_wide", std::wstring(), [&]() -> std::wstring {
    if (!text) return std::wstring();
    return qt::text::platform::AnsiToWide(text, length == static_cast<size_t>(-1) ? std::strlen(text) : length);
  });
}

std::string qn_wide_to_ansi(const wchar_t* text, size_t length) {
  return qt::NoThrow<std::string>("qn_wide_to_ansi", std::string(), [&]() -> std::string {
    if (!text) return std::string();
    return qt::text::platform::WideToAnsi(text, length == static_cast<size_t>(-1) ? std::wcslen(text) : length);
  });
}
