#include <windows.h>

#include <climits>

#include "core/text_platform.h"

namespace qt {
namespace text {
namespace platform {

wchar_t UpperCase(wchar_t c) {
  // CharUpperW converts a single character when the high word is zero.
  return static_cast<wchar_t>(reinterpret_cast<ULONG_PTR>(CharUpperW(reinterpret_cast<LPWSTR>(static_cast<ULONG_PTR>(static_cast<unsigned short>(c))))));
}

wchar_t LowerCase(wchar_t c) {
  return static_cast<wchar_t>(reinterpret_cast<ULONG_PTR>(CharLowerW(reinterpret_cast<LPWSTR>(static_cast<ULONG_PTR>(static_cast<unsigned short>(c))))));
}

std::wstring AnsiToWide(const char* text, size_t length) {
  if (length == 0 || length > INT_MAX) return std::wstring();
  const int n = static_cast<int>(length);
  const int needed = MultiByteToWideChar(CP_ACP, 0, text, n, nullptr, 0);
  if (needed <= 0) return std::wstring();
  std::wstring out(static_cast<size_t>(needed), L'\0');
  MultiByteToWideChar(CP_ACP, 0, text, n, &out[0], needed);
  return out;
}

std::string WideToAnsi(const wchar_t* text, size_t length) {
  if (length == 0 || length > INT_MAX) return std::string();
  const int n = static_cast<int>(length);
  const int needed = WideCharToMultiByte(CP_ACP, 0, text, n, nullptr, 0, nullptr, nullptr);
  if (needed <= 0) return std::string();
  std::string out(static_cast<size_t>(needed), '\0');
  WideCharToMultiByte(CP_ACP, 0, text, n, &out[0], needed, nullptr, nullptr);
  return out;
}

}  // namespace platform
}  // namespace text
}  // namespace qt
