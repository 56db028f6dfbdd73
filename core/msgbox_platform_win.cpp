#include <windows.h>

#include "core/msgbox_platform.h"

namespace qt {
namespace msgbox {
namespace platform {

namespace {
class Win32Presenter : public QnMessagePresenter {
 public:
  int showMessage(HWND owner, const wchar_t* text, const wchar_t* caption, unsigned int style) override {
    return MessageBoxW(owner, text, caption, style);
  }
  int showMessageA(HWND owner, const char* text, const char* caption, unsigned int style) override {
    return MessageBoxA(owner, text, caption, style);
  }
};
}  // namespace

QnMessagePresenter& DefaultPresenter() {
  static Win32Presenter presenter;
  return presenter;
}

HWND FocusedWindow() { return GetFocus(); }

void RestoreFocus(HWND previous) {
  if (previous && IsWindow(previous) && GetFocus() != previous) SetFocus(previous);
}

}  // namespace platform
}  // namespace msgbox
}  // namespace qt
