// Takes the library's message boxes off the screen for a test: each one is
// recorded and answered with a chosen button, for as long as the object
// lives.
#ifndef QUILTOOL_MESSAGE_RECORDER_H
#define QUILTOOL_MESSAGE_RECORDER_H

#include <string>
#include <vector>

#include "qn_presenter.h"
#include "qn_utf.h"

namespace qt_test {

class MessageRecorder : public QnMessagePresenter {
 public:
  struct Box {
    std::wstring text;
    std::wstring caption;
  };

  explicit MessageRecorder(int reply = IDOK) : answer(reply) { previous_ = qn_set_message_presenter(this); }
  ~MessageRecorder() override { qn_set_message_presenter(previous_); }
  MessageRecorder(const MessageRecorder&) = delete;
  MessageRecorder& operator=(const MessageRecorder&) = delete;

  int showMessage(HWND, const wchar_t* text, const wchar_t* caption, unsigned int) override {
    boxes.push_back({text ? text : L"", caption ? caption : L""});
    return answer;
  }
  // 8-bit boxes are kept as UTF-8 read back to wide text.
  int showMessageA(HWND, const char* text, const char* caption, unsigned int) override {
    boxes.push_back({qn_utf8_to_wide(text ? text : ""), qn_utf8_to_wide(caption ? caption : "")});
    return answer;
  }
  // Every text shown so far, one a line.
  std::wstring AllText() const {
    std::wstring all;
    for (const Box& b : boxes) all += b.text + L"\n";
    return all;
  }

  std::vector<Box> boxes;
  int answer;

 private:
  QnMessagePresenter* previous_ = nullptr;
};

}  // namespace qt_test

#endif
