// ctest: RESOURCE_LOCK desktop
#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "core/clipboard.h"
#include "qn_clipboard.h"

namespace {

struct RecordingPresenter : QnClipboardPresenter {
  explicit RecordingPresenter(bool answer) : answer(answer) {}
  bool putText(HWND owner, const wchar_t* text) override {
    ++calls;
    seenOwner = owner;
    seenText = text;
    return answer;
  }
  bool answer;
  int calls = 0;
  HWND seenOwner = nullptr;
  std::wstring seenText;
};

// Installs a presenter for one scope and gives back the one before.
class Installed {
 public:
  explicit Installed(QnClipboardPresenter* p) : previous_(qn_set_clipboard_presenter(p)) {}
  ~Installed() { qn_set_clipboard_presenter(previous_); }

 private:
  QnClipboardPresenter* previous_;
};

}  // namespace

TEST(Clipboard, PresenterGetsTheExactTextAndDecides) {
  RecordingPresenter taking(true);
  Installed installed(&taking);
  HWND owner = reinterpret_cast<HWND>(static_cast<intptr_t>(0x1234));
  const ustr text(L"Room\tArea\r\nKitchen\t12.50 m\u00b2\r\n\U0001F600");
  EXPECT_TRUE(qt::clipboard::PutText(owner, text));
  EXPECT_EQ(1, taking.calls);
  EXPECT_EQ(owner, taking.seenOwner);
  EXPECT_EQ(text.str(), taking.seenText);

  RecordingPresenter refusing(false);
  qn_set_clipboard_presenter(&refusing);
  EXPECT_FALSE(qt::clipboard::PutText(nullptr, ustr(L"")));
  EXPECT_EQ(1, refusing.calls);
  EXPECT_EQ(L"", refusing.seenText);
  EXPECT_EQ(1, taking.calls);
}

TEST(Clipboard, InstallingAnswersThePreviousPresenter) {
  RecordingPresenter first(true), second(true);
  Installed installed(&first);
  EXPECT_EQ(&first, qn_set_clipboard_presenter(&second));
  EXPECT_EQ(&second, qn_set_clipboard_presenter(nullptr));
  EXPECT_EQ(nullptr, qn_set_clipboard_presenter(&first));
  // With the default back, neither presenter hears of the text.
  qn_set_clipboard_presenter(nullptr);
  qt::clipboard::PutText(nullptr, ustr(L"to the system"));
  EXPECT_EQ(0, first.calls + second.calls);
}

struct ThrowingPresenter : QnClipboardPresenter {
  bool putText(HWND, const wchar_t*) override { throw std::string("host failure"); }
};

TEST(Clipboard, APresentersExceptionIsAFailure) {
  ThrowingPresenter throwing;
  Installed installed(&throwing);
  bool result = true;
  EXPECT_NO_THROW(result = qt::clipboard::PutText(nullptr, ustr(L"x")));
  EXPECT_FALSE(result);
}
