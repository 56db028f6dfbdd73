#include <windows.h>

#include "core/array_monitor_platform.h"

namespace qt {
namespace array_monitor {
namespace platform {
namespace {

const wchar_t kClassName[] = L"GWADEBWND";
const wchar_t kTitle[] = L"Gwarray - Debug monitor";
const int kCountLabelId = 100;

// The count is shown in a static child, which repaints itself whenever its
// text changes, and which anyone can read back with GetWindowTextW.
void SetLabel(HWND window, long count) {
  wchar_t text[64];
  FormatCount(count, text, 64);
  SetWindowTextW(GetDlgItem(window, kCountLabelId), text);
}

LRESULT CALLBACK MonitorProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_CREATE: {
      const CREATESTRUCTW* cs = reinterpret_cast<const CREATESTRUCTW*>(lParam);
      RECT client;
      GetClientRect(window, &client);
      CreateWindowExW(0, L"STATIC", L"", WS_CHILD | WS_VISIBLE | SS_LEFT, 8, 8, client.right - 16, 20, window,
                      reinterpret_cast<HMENU>(static_cast<INT_PTR>(kCountLabelId)), cs->hInstance, nullptr);
      HFONT font = static_cast<HFONT>(GetStockObject(DEFAULT_GUI_FONT));
      SendDlgItemMessageW(window, kCountLabelId, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
      return 0;
    }
    case WM_DESTROY:
      WindowClosed(window);
      return 0;
    default:
      return DefWindowProcW(window, message, wParam, lParam);
  }
}

// A class belongs to the module that registered it, so it is registered for
// whichever instance asks; a second request for the same one is no error.
bool Register(HINSTANCE instance) {
  WNDCLASSW wc{};
  wc.lpfnWndProc = MonitorProc;
  wc.hInstance = instance;
  wc.hCursor = LoadCursorW(nullptr, reinterpret_cast<LPCWSTR>(IDC_ARROW));
  wc.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_BTNFACE + 1);
  wc.lpszClassName = kClassName;
  return RegisterClassW(&wc) != 0 || GetLastError() == ERROR_CLASS_ALREADY_EXISTS;
}

}  // namespace

HWND OpenWindow(HINSTANCE instance, int x, int y, long count) {
  if (!Register(instance)) return nullptr;
  HWND window = CreateWindowExW(WS_EX_TOOLWINDOW | WS_EX_TOPMOST, kClassName, kTitle,
                                WS_POPUP | WS_CAPTION | WS_SYSMENU | WS_VISIBLE, x, y, 260, 70, nullptr, nullptr,
                                instance, nullptr);
  if (window) SetLabel(window, count);
  return window;
}

void ShowCount(HWND window, long count) { SetLabel(window, count); }

void DestroyMonitor(HWND window) { DestroyWindow(window); }

}  // namespace platform
}  // namespace array_monitor
}  // namespace qt
