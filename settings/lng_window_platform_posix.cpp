// Without windows, each window operation becomes a line on stderr.
#include <cstdio>

#include "settings/lng_window_platform.h"
#include "settings/qlg_utf8.h"

namespace qt {
namespace lng_window {
namespace platform {

namespace {

std::string Utf8(const wchar_t* text) {
  return text ? qlg::WideToUtf8(text, std::char_traits<wchar_t>::length(text)) : std::string();
}

class StderrWindowPresenter : public QnWindowPresenter {
 public:
  void setSmallIcon(HWND window, HICON icon) override {
    std::fprintf(stderr, "[window %p] small icon %p\n", static_cast<void*>(window), static_cast<void*>(icon));
  }
  void setWindowText(HWND window, const wchar_t* text) override {
    std::fprintf(stderr, "[window %p] title: %s\n", static_cast<void*>(window), Utf8(text).c_str());
  }
  void setDialogItemText(HWND dialog, int controlId, const wchar_t* text) override {
    std::fprintf(stderr, "[window %p] item %d: %s\n", static_cast<void*>(dialog), controlId, Utf8(text).c_str());
  }
  LONG_PTR dialogUserValue(HWND) override { return 0; }
};

}  // namespace

QnWindowPresenter& DefaultWindowPresenter() {
  static StderrWindowPresenter presenter;
  return presenter;
}

HICON AppSmallIcon() { return nullptr; }

}  // namespace platform
}  // namespace lng_window
}  // namespace qt
