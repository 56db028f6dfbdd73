// The real clipboard under Wine: the text put there is read back as the
// system holds it.
// ctest: RESOURCE_LOCK desktop
#include <windows.h>

#include <gtest/gtest.h>

#include <string>
#include <thread>

#include "core/clipboard.h"
#include "qn_clipboard.h"

namespace {

// A hidden window of this process to own the clipboard.
class OwnerWindow {
 public:
  OwnerWindow() : window_(CreateWindowExW(0, L"STATIC", L"clipboard owner", WS_POPUP, 0, 0, 1, 1, nullptr, nullptr,
                                          GetModuleHandleW(nullptr), nullptr)) {}
  ~OwnerWindow() {
    if (window_) DestroyWindow(window_);
  }
  HWND get() const { return window_; }

 private:
  HWND window_;
};

// The clipboard's CF_UNICODETEXT, or false when there is none.
bool ReadBack(HWND owner, std::wstring* text) {
  if (!OpenClipboard(owner)) return false;
  bool found = false;
  if (HANDLE data = GetClipboardData(CF_UNICODETEXT)) {
    if (const wchar_t* chars = static_cast<const wchar_t*>(GlobalLock(data))) {
      *text = chars;
      found = true;
      GlobalUnlock(data);
    }
  }
  CloseClipboard();
  return found;
}

}  // namespace

TEST(ClipboardWin, TextRoundTripsThroughTheSystemClipboard) {
  QnClipboardPresenter* previous = qn_set_clipboard_presenter(nullptr);
  OwnerWindow owner;
  ASSERT_NE(nullptr, owner.get());
  const std::wstring first = L"Room\tArea\r\nKitchen\t12.50 m\u00b2\r\n\U0001F600";
  ASSERT_TRUE(qt::clipboard::PutText(owner.get(), ustr(first.c_str())));
  std::wstring seen;
  ASSERT_TRUE(ReadBack(owner.get(), &seen));
  EXPECT_EQ(first, seen);

  // A second text replaces the first entirely, a shorter one included.
  ASSERT_TRUE(qt::clipboard::PutText(owner.get(), ustr(L"B")));
  ASSERT_TRUE(ReadBack(owner.get(), &seen));
  EXPECT_EQ(L"B", seen);
  qn_set_clipboard_presenter(previous);
}

TEST(ClipboardWin, ClipboardHeldByAnotherThreadIsAFailureAndKeepsItsText) {
  QnClipboardPresenter* previous = qn_set_clipboard_presenter(nullptr);
  OwnerWindow owner;
  ASSERT_NE(nullptr, owner.get());
  ASSERT_TRUE(qt::clipboard::PutText(owner.get(), ustr(L"kept")));

  HANDLE opened = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  HANDLE release = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  std::thread holder([&] {
    if (OpenClipboard(nullptr)) {
      SetEvent(opened);
      WaitForSingleObject(release, 10000);
      CloseClipboard();
    } else {
      SetEvent(opened);
    }
  });
  WaitForSingleObject(opened, 10000);
  const bool put = qt::clipboard::PutText(owner.get(), ustr(L"lost"));
  SetEvent(release);
  holder.join();
  CloseHandle(opened);
  CloseHandle(release);

  EXPECT_FALSE(put);
  std::wstring seen;
  ASSERT_TRUE(ReadBack(owner.get(), &seen));
  EXPECT_EQ(L"kept", seen);
  qn_set_clipboard_presenter(previous);
}
