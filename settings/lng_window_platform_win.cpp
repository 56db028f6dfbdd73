// The real window operations.
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>

#include "settings/lng_window_platform.h"

namespace qt {
namespace lng_window {
namespace platform {

namespace {

class Win32WindowPresenter : public QnWindowPresenter {
 public:
  void setSmallIcon(HWND window, HICON icon) override {
    SendMessageW(window, WM_SETICON, ICON_SMALL, reinterpret_cast<LPARAM>(icon));
  }
  void setWindowText(HWND window, const wchar_t* text) override {
    SendMessageW(window, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text ? text : L""));
  }
  void setDialogItemText(HWND dialog, int controlId, const wchar_t* text) override {
    SetDlgItemTextW(dialog, controlId, text ? text : L"");
  }
  LONG_PTR dialogUserValue(HWND dialog) override { return GetWindowLongPtrW(dialog, DWLP_USER); }
};

}  // namespace

QnWindowPresenter& DefaultWindowPresenter() {
  static Win32WindowPresenter presenter;
  return presenter;
}

HICON AppSmallIcon() { return nullptr; }

}  // namespace platform
}  // namespace lng_window
}  // namespace qt
