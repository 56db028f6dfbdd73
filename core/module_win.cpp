#include <windows.h>

#include "core/platform.h"

namespace qt {
namespace platform {

bool ModuleFileName(HMODULE module, std::wstring* name) {
  wchar_t buffer[MAX_PATH];
  const DWORD n = GetModuleFileNameW(module, buffer, MAX_PATH);
  if (n == 0) return false;
  name->assign(buffer, n);
  return true;
}

HMODULE LoadedModule(const wchar_t* name) { return GetModuleHandleW(name); }

wchar_t PathSeparator() { return L'\\'; }

namespace {
LRESULT CALLBACK ListHeaderProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  return DefWindowProcW(window, message, wParam, lParam);
}
}  // namespace

void RegisterListHeaderClass(HMODULE instance) {
  WNDCLASSW wc{};
  wc.style = CS_HREDRAW | CS_VREDRAW;
  wc.lpfnWndProc = ListHeaderProc;
  wc.hInstance = instance;
  wc.hCursor = LoadCursorW(nullptr, reinterpret_cast<LPCWSTR>(IDC_ARROW));
  wc.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_BTNFACE + 1);
  wc.lpszClassName = L"GWLBHEADER";
  RegisterClassW(&wc);
}

}  // namespace platform
}  // namespace qt
