// Case mapping and the 8-bit code page (text_platform_win.cpp /
// text_platform_posix.cpp). The exported qn_* functions in text.cpp hand
// every text here after checking it.
#ifndef QUILTOOL_CORE_TEXT_PLATFORM_H
#define QUILTOOL_CORE_TEXT_PLATFORM_H

#include <cstddef>
#include <string>

namespace qt {
namespace text {
namespace platform {

// One character upper- or lower-cased. Windows: CharUpperW / CharLowerW.
// Linux: ASCII by hand, the rest by towupper_l / towlower_l in the C.UTF-8
// locale, so that the process's own locale plays no part.
wchar_t UpperCase(wchar_t c);
wchar_t LowerCase(wchar_t c);
// length characters of 8-bit text (never null) as wide text, and back.
// Windows: the ANSI code page (MultiByteToWideChar / WideCharToMultiByte
// with CP_ACP; what has no form there becomes the code page's default
// character). Linux: UTF-8 through the library's codec, ill-formed input
// as U+FFFD.
std::wstring AnsiToWide(const char* text, size_t length);
std::string WideToAnsi(const wchar_t* text, size_t length);

}  // namespace platform
}  // namespace text
}  // namespace qt

#endif
