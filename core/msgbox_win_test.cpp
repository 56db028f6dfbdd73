// Real message boxes under Wine: a watcher thread finds the box, reads its
// caption and text and presses a button, as a person would.
// ctest: RESOURCE_LOCK desktop
#include <windows.h>

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>

#include "gwframe.h"
#include "qt_test_win.h"
#include "screenshot_win.h"

namespace {

struct SeenBox {
  bool found = false;
  std::wstring caption;
  std::wstring text;
};

// Waits for a dialog-class window with this caption, reads it and presses
// the button `button`.
std::thread PressWhenShown(const wchar_t* caption, int button, SeenBox* seen) {
  return std::thread([=] {
    for (int i = 0; i < 300 && !seen->found; ++i) {
      HWND box = qt_test::FindOwnWindow(L"#32770", caption);
      if (!box) {
        Sleep(50);
        continue;
      }
      wchar_t buffer[512];
      GetWindowTextW(box, buffer, 512);
      seen->caption = buffer;
      // A message box's text is its static control 0xFFFF.
      GetDlgItemTextW(box, 0xFFFF, buffer, 512);
      seen->text = buffer;
      seen->found = true;
      PostMessageW(box, WM_COMMAND, MAKEWPARAM(button, BN_CLICKED), reinterpret_cast<LPARAM>(GetDlgItem(box, button)));
    }
  });
}

}  // namespace

TEST(RealMessageBox, YesNoQuestionIsShownAndAnswered) {
  SeenBox seen;
  std::thread watcher = PressWhenShown(L"Quillon", IDNO, &seen);
  const int answer = gwyesnomsg(nullptr, L"Delete the storey?");
  watcher.join();
  ASSERT_TRUE(seen.found);
  EXPECT_EQ(IDNO, answer);
  EXPECT_EQ(L"Quillon", seen.caption);
  EXPECT_EQ(L"Delete the storey?", seen.text);
}

TEST(RealMessageBox, ApplicationCaptionAndNarrowCaption) {
  SeenBox seen;
  std::thread watcher = PressWhenShown(L"Quillon-R", IDYES, &seen);
  EXPECT_EQ(IDYES, gwyesnomsg(nullptr, Lng::APP_QNR, L"Rebuild rooms?"));
  watcher.join();
  EXPECT_TRUE(seen.found);

  SeenBox narrow;
  watcher = PressWhenShown(L"Q", IDOK, &narrow);
  gwmsg(nullptr, "I/O - error");
  watcher.join();
  ASSERT_TRUE(narrow.found);
  EXPECT_EQ(L"I/O - error", narrow.text);
}

TEST(RealMessageBox, FocusGoesBackToTheWindowThatHadIt) {
  HWND frame = CreateWindowExW(0, L"STATIC", L"owner", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 10, 10, 300, 200, nullptr,
                               nullptr, GetModuleHandleW(nullptr), nullptr);
  ASSERT_NE(nullptr, frame);
  HWND edit = CreateWindowExW(0, L"EDIT", L"", WS_CHILD | WS_VISIBLE | WS_TABSTOP, 10, 10, 100, 20, frame, nullptr,
                              GetModuleHandleW(nullptr), nullptr);
  ASSERT_NE(nullptr, edit);
  SetForegroundWindow(frame);
  SetFocus(edit);
  ASSERT_EQ(edit, GetFocus());

  SeenBox seen;
  std::thread watcher = PressWhenShown(L"Quillon", IDOK, &seen);
  gwmsg(frame, L"Saved.");
  watcher.join();
  EXPECT_TRUE(seen.found);
  EXPECT_EQ(edit, GetFocus());
  DestroyWindow(frame);
}

// The picture is taken from the screen while the box is up, then the box
// is answered; the text and buttons are checked either way.
TEST(RealMessageBox, ScreenshotOfTheYesNoQuestion) {
  std::atomic<bool> shot{false};
  SeenBox seen;
  std::thread watcher([&] {
    for (int i = 0; i < 300 && !seen.found; ++i) {
      HWND box = qt_test::FindOwnWindow(L"#32770", L"Quillon");
      if (!box || !IsWindowVisible(box)) {
        Sleep(50);
        continue;
      }
      Sleep(200);  // let the box paint itself
      wchar_t buffer[512];
      GetDlgItemTextW(box, 0xFFFF, buffer, 512);
      seen.text = buffer;
      seen.found = GetDlgItem(box, IDYES) && GetDlgItem(box, IDNO);
      if (qt_test::ScreenshotsWanted()) shot = qt_test::SaveWindowScreenshot(box, "message_box_yes_no_question");
      PostMessageW(box, WM_COMMAND, MAKEWPARAM(IDYES, BN_CLICKED), reinterpret_cast<LPARAM>(GetDlgItem(box, IDYES)));
      return;
    }
  });
  EXPECT_EQ(IDYES, gwyesnomsg(nullptr, L"Overwrite the layout of \"Ducts\"?"));
  watcher.join();
  EXPECT_TRUE(seen.found);
  EXPECT_EQ(L"Overwrite the layout of \"Ducts\"?", seen.text);
  if (qt_test::ScreenshotsWanted()) {
    EXPECT_TRUE(shot.load());
  }
}
