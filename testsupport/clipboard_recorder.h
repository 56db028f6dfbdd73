// Takes the library's clipboard off the system for a test: each text put
// there is kept (the last one wins), for as long as the object lives.
#ifndef QUILTOOL_CLIPBOARD_RECORDER_H
#define QUILTOOL_CLIPBOARD_RECORDER_H

#include <string>

#include "qn_clipboard.h"

namespace qt_test {

class ClipboardRecorder : public QnClipboardPresenter {
 public:
  ClipboardRecorder() : previous_(qn_set_clipboard_presenter(this)) {}
  ~ClipboardRecorder() override { qn_set_clipboard_presenter(previous_); }
  ClipboardRecorder(const ClipboardRecorder&) = delete;
  ClipboardRecorder& operator=(const ClipboardRecorder&) = delete;

  bool putText(HWND, const wchar_t* value) override {
    text = value ? value : L"";
    return true;
  }

  std::wstring text;

 private:
  QnClipboardPresenter* previous_;
};

}  // namespace qt_test

#endif
