#include <windows.h>

#include "core/text_platform.h"
#include "ustr.h"
#include "core/boundary.h"

namespace qt {
namespace platform {
const char* const kNarrowStringInWideFormat = "hs";
const char* const kNarrowCharInWideFormat = "hc";
}  // namespace platform
}  // namespace qt

wchar_t qn_charupper(wchar_t c) {
  // CharUpperW converts a single character when the high word is zero.
  return static_cast<wchar_t>(reinterpret_cast<ULONG_PTR>(CharUpperW(reinterpret_cast<LPWSTR>(static_cast<ULONG_PTR>(static_cast<unsigned short>(c))))));
}

wchar_t qn_charlower(wchar_t c) {
  return static_cast<wchar_t>(reinterpret_cast<ULONG_PTR>(CharLowerW(reinterpret_cast<LPWSTR>(static_cast<ULONG_PTR>(static_cast<unsigned short>(c))))));
}

std::wstring qn_ansi_to_wide(const char* text, size_t length) {
  return qt::NoThrow<std::wstring>("qn_ansi_to_wide", std::wstring(), [&]() -> std::wstring {
    if (!text) return std::wstring();
    const int n = length == static_cast<size_t>(-1) ? -1 : static_cast<int>(length);
    const int needed = MultiByteToWideChar(CP_ACP, 0, text, n, nullptr, 0);
    if (needed <= 0) return std::wstring();
    std::wstring out(static_cast<size_t>(needed), L'\0');
    MultiByteToWideChar(CP_ACP, 0, text, n, &out[0], needed);
    if (n == -1) out.resize(static_cast<size_t>(needed) - 1);
    return out;
  });
}

std::string qn_wide_to_ansi(const wchar_t* text, size_t length) {
  return qt::NoThrow<std::string>("qn_wide_to_ansi", std::string(), [&]() -> std::string {
    if (!text) return std::string();
    const int n = length == static_cast<size_t>(-1) ? -1 : static_cast<int>(length);
    const int needed = WideCharToMultiByte(CP_ACP, 0, text, n, nullptr, 0, nullptr, nullptr);
    if (needed <= 0) return std::string();
    std::string out(static_cast<size_t>(needed), '\0');
    WideCharToMultiByte(CP_ACP, 0, text, n, &out[0], needed, nullptr, nullptr);
    if (n == -1) out.resize(static_cast<size_t>(needed) - 1);
    return out;
  });
}
