#include <windows.h>

#include "core/window_class_platform.h"

namespace qt {
namespace window_class {
namespace platform {

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
}  // namespace window_class
}  // namespace qt
