// Helpers of the locking tests: a presenter that records instead of showing,
// and the child processes that hold locks.
#ifndef QUILTOOL_FILES_FILES_TEST_SUPPORT_H
#define QUILTOOL_FILES_FILES_TEST_SUPPORT_H

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "qn_presenter.h"
#include "qt_test.h"

namespace files_test {

struct Shown {
  std::wstring text;     // wide boxes
  std::wstring caption;
  std::string textA;     // 8-bit boxes
  unsigned int style;
  bool wide;
};

class RecordingPresenter : public QnMessagePresenter {
 public:
  RecordingPresenter() { previous_ = qn_set_message_presenter(this); }
  ~RecordingPresenter() override { qn_set_message_presenter(previous_); }
  int showMessage(HWND, const wchar_t* text, const wchar_t* caption, unsigned int style) override {
    shown.push_back({text ? text : L"", caption ? caption : L"", "", style, true});
    return IDOK;
  }
  int showMessageA(HWND, const char* text, const char*, unsigned int style) override {
    shown.push_back({L"", L"", text ? text : "", style, false});
    return IDOK;
  }
  std::vector<Shown> shown;

 private:
  QnMessagePresenter* previous_ = nullptr;
};

// Starts a child entry point that takes a lock and reports "locked <result>"
// before waiting; returns the result it reported, or 99 when it never did.
inline int StartHolder(qt_test::ChildProcess& child, const std::string& entry, const std::vector<std::string>& args) {
  if (!child.start(entry, args)) return 99;
  const std::string line = child.readLine(60000);
  if (line.compare(0, 7, "locked ") != 0) return 99;
  return std::stoi(line.substr(7));
}

// Contents a held lock file may be found with that are no lock file's
// (8-bit text, odd length, half surrogate pairs, control characters,
// padding that is not '*'); each must read as "unreadable", never as a name.
inline std::vector<std::string> ForeignLockContents() {
  const std::string pad = std::string("*\0", 2);
  return {
      "hello world\n",
      std::string("A\0B", 3),
      std::string("\0\xD8", 2) + pad + pad,
      std::string("A\0\0\xDC", 4) + pad,
      std::string("\x07\0A\0", 4) + pad,
      std::string("A\0", 2) + pad + std::string("B\0", 2),
  };
}

}  // namespace files_test

#endif
