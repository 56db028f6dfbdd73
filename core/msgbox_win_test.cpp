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

TEST(RealMessageBox, YesNoQuestionIsShownAndAnswered) {
  qt_test::SeenBox seen;
  std::thread watcher = qt_test::PressWhenShown(L"Quillon", IDNO, &seen);
  const int answer = gwyesnomsg(nullptr, L"Delete the storey?");
  watcher.join();
  ASSERT_TRUE(seen.found);
  EXPECT_EQ(IDNO, answer);
  EXPECT_EQ(L"Quillon", seen.caption);
  EXPECT_EQ(L"Delete the storey?", seen.text);
}

TEST(RealMessageBox, ApplicationCaptionAndNarrowCaption) {
  qt_test::SeenBox seen;
  std::thread watcher = qt_test::PressWhenShown(L"Quillon-R", IDYES, &seen);
  EXPECT_EQ(IDYES, gwyesnomsg(nullptr, Lng::APP_QNR, L"Rebuild rooms?"));
  watcher.join();
  EXPECT_TRUE(seen.found);

  qt_test::SeenBox narrow;
  watcher = qt_test::PressWhenShown(L"Q", IDOK, &narrow);
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

  qt_test::SeenBox seen;
  std::thread watcher = qt_test::PressWhenShown(L"Quillon", IDOK, &seen);
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
  qt_test::SeenBox seen;
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
