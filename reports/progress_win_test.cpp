// The real progress dialogs under Windows: found, read and clicked from a
// watcher thread as a person would, while the dialog runs.
// ctest: RESOURCE_LOCK desktop
#include <windows.h>
#include <commctrl.h>

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>

#include "ProgressDlg.h"
#include "qt_test_win.h"
#include "reports/progress_resource.h"
#include "screenshot_win.h"

namespace {

typedef ProgressDlgThreaded::UserProcData Data;

std::wstring ItemText(HWND dialog, int id) {
  wchar_t buffer[256] = L"";
  GetDlgItemTextW(dialog, id, buffer, 256);
  return buffer;
}

RECT ItemRect(HWND dialog, int id) {
  RECT r = {};
  GetWindowRect(GetDlgItem(dialog, id), &r);
  MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&r), 2);
  return r;
}

// A click as the mouse makes it: pressed and released over the button.
void Click(HWND button) {
  RECT r = {};
  GetClientRect(button, &r);
  const LPARAM at = MAKELPARAM((r.right - r.left) / 2, (r.bottom - r.top) / 2);
  PostMessageW(button, WM_LBUTTONDOWN, MK_LBUTTON, at);
  PostMessageW(button, WM_LBUTTONUP, 0, at);
}

// The dialog with this caption once it is visible; null after the time.
HWND WaitVisible(const wchar_t* caption, int milliseconds = 5000) {
  for (int waited = 0; waited < milliseconds; waited += 10) {
    HWND dialog = qt_test::FindOwnWindow(L"#32770", caption);
    if (dialog && IsWindowVisible(dialog)) return dialog;
    Sleep(10);
  }
  return nullptr;
}

struct Shared {
  std::atomic<bool> release{false};
  std::atomic<DWORD> threadId{0};
  const wchar_t* caption = L"";
};

bool WaitForRelease(const Data* data) {
  Shared* shared = static_cast<Shared*>(data->GetAppData());
  shared->threadId = GetCurrentThreadId();
  data->SetDialogCaption(shared->caption);
  for (int i = 0; i < 1000 && !shared->release && !data->ShouldTerminate(); ++i) Sleep(10);
  return !data->ShouldTerminate();
}

bool IgnoreTheFlag(const Data* data) {
  Shared* shared = static_cast<Shared*>(data->GetAppData());
  shared->threadId = GetCurrentThreadId();
  data->SetDialogCaption(shared->caption);
  while (!shared->release) Sleep(10);
  return true;
}

BOOL CALLBACK NoteVisible(HWND window, LPARAM seen) {
  DWORD pid = 0;
  GetWindowThreadProcessId(window, &pid);
  if (pid == GetCurrentProcessId() && IsWindowVisible(window)) *reinterpret_cast<bool*>(seen) = true;
  return TRUE;
}

bool QuickWork(const Data* data) {
  data->SetDialogCaption(L"Quick progress");
  data->PbSetPos(0, 40);
  Sleep(400);
  return true;
}

}  // namespace

TEST(ProgressWindow, WorkWithinASecondNeverShowsAWindow) {
  std::atomic<bool> stop{false};
  bool found = false;
  bool visible = false;
  std::thread watcher([&] {
    while (!stop) {
      if (qt_test::FindOwnWindow(L"#32770", L"Quick progress")) found = true;
      EnumWindows(&NoteVisible, reinterpret_cast<LPARAM>(&visible));
      Sleep(2);
    }
  });
  ProgressDlgThreaded dialog(nullptr, L"Quick progress", L"", 1, true, &QuickWork, nullptr);
  const LONG_PTR result = dialog.StartModal();
  stop = true;
  watcher.join();
  EXPECT_EQ(1, result);
  EXPECT_TRUE(found);  // the watcher did see the dialog, hidden
  EXPECT_FALSE(visible);
}

namespace {

bool ThreeBars(const Data* data) {
  Shared* shared = static_cast<Shared*>(data->GetAppData());
  data->SetDialogCaption(L"Report");
  data->SetTitile(L"Writing the report");
  data->SetShowPercentage(true);
  data->PbSetRangeUpper(0, 3);
  data->PbSetRangeUpper(1, 4);
  data->PbSetRangeUpper(2, 10);
  data->PbSetPos(0, 1);
  data->PbSetText(0, L"Set 1 of 3: Lüftung");
  data->PbSetPos(1, 2);
  data->PbSetText(1, L"Record 2 of 4");
  data->PbSetPos(2, 5);
  data->PbSetText(2, L"Cells");
  for (int i = 0; i < 1000 && !shared->release; ++i) Sleep(10);
  return true;
}

struct Seen {
  bool shown = false;
  DWORD shownAfter = 0;
  std::wstring caption, header, labels[3], percents[3];
  int positions[3] = {-1, -1, -1};
  int gapToPercent = -1;
  LONG headerWeight = 0;
  bool screenshot = true;
};

}  // namespace

TEST(ProgressWindow, ScreenshotThreeStackedBarsWithPercentages) {
  Shared shared;
  Seen seen;
  const DWORD start = GetTickCount();
  std::thread watcher([&] {
    HWND dialog = WaitVisible(L"Report");
    if (dialog) {
      seen.shown = true;
      seen.shownAfter = GetTickCount() - start;
      Sleep(200);  // the first paint
      wchar_t caption[64] = L"";
      GetWindowTextW(dialog, caption, 64);
      seen.caption = caption;
      seen.header = ItemText(dialog, IDC_PROGRESS_HEADER);
      for (int i = 0; i < 3; ++i) {
        seen.labels[i] = ItemText(dialog, IDC_PROGRESS_LABEL + i);
        seen.percents[i] = ItemText(dialog, IDC_PROGRESS_PERCENT + i);
        seen.positions[i] = static_cast<int>(SendDlgItemMessageW(dialog, IDC_PROGRESS_BAR + i, PBM_GETPOS, 0, 0));
      }
      seen.gapToPercent = ItemRect(dialog, IDC_PROGRESS_PERCENT).left - ItemRect(dialog, IDC_PROGRESS_BAR).right;
      HFONT font = reinterpret_cast<HFONT>(SendDlgItemMessageW(dialog, IDC_PROGRESS_HEADER, WM_GETFONT, 0, 0));
      LOGFONTW face = {};
      if (font && GetObjectW(font, sizeof face, &face)) seen.headerWeight = face.lfWeight;
      if (qt_test::ScreenshotsWanted()) seen.screenshot = qt_test::SaveWindowScreenshot(dialog, "progress_three_stacked_bars", 8);
    }
    shared.release = true;
  });
  ProgressDlgThreaded dialog(nullptr, L"Progress", L"", 3, true, &ThreeBars, &shared);
  EXPECT_EQ(1, dialog.StartModal());
  watcher.join();

  ASSERT_TRUE(seen.shown);
  EXPECT_GE(seen.shownAfter, 900u);
  EXPECT_EQ(L"Report", seen.caption);
  EXPECT_EQ(L"Writing the report", seen.header);
  EXPECT_EQ(700, seen.headerWeight);
  EXPECT_EQ(L"Set 1 of 3: Lüftung", seen.labels[0]);
  EXPECT_EQ(L"Record 2 of 4", seen.labels[1]);
  EXPECT_EQ(L"33%", seen.percents[0]);
  EXPECT_EQ(L"50%", seen.percents[1]);
  EXPECT_EQ(L"50%", seen.percents[2]);
  EXPECT_EQ(1, seen.positions[0]);
  EXPECT_EQ(2, seen.positions[1]);
  EXPECT_EQ(5, seen.positions[2]);
  EXPECT_EQ(5, seen.gapToPercent);
  EXPECT_TRUE(seen.screenshot);
}

TEST(ProgressWindow, CancelButtonAndWindowMenuAskTheWorkToStop) {
  for (int way = 0; way < 2; ++way) {
    Shared shared;
    shared.caption = L"Cancel me";
    bool pressed = false;
    std::thread watcher([&] {
      HWND dialog = WaitVisible(L"Cancel me");
      if (!dialog) return;
      pressed = true;
      if (way == 0) Click(GetDlgItem(dialog, IDCANCEL));
      else PostMessageW(dialog, WM_SYSCOMMAND, SC_CLOSE, 0);
    });
    ProgressDlgThreaded dialog(nullptr, L"Progress", L"", 1, true, &WaitForRelease, &shared);
    EXPECT_EQ(2, dialog.StartModal()) << way;
    watcher.join();
    EXPECT_TRUE(pressed) << way;
    shared.release = true;
  }
}

namespace {

bool LockedThenOpen(const Data* data) {
  Shared* shared = static_cast<Shared*>(data->GetAppData());
  data->SetDialogCaption(L"Locked");
  data->SetAllowCancel(false);
  while (!shared->release) Sleep(10);
  data->SetAllowCancel(true);
  for (int i = 0; i < 1000 && !data->ShouldTerminate(); ++i) Sleep(10);
  return !data->ShouldTerminate();
}

}  // namespace

TEST(ProgressWindow, CancelCanBeTakenAwayAndGivenBack) {
  Shared shared;
  bool buttonOff = false, menuGrey = false, buttonOn = false, menuOn = false;
  std::thread watcher([&] {
    HWND dialog = WaitVisible(L"Locked");
    if (!dialog) return;
    HWND button = GetDlgItem(dialog, IDCANCEL);
    buttonOff = !IsWindowEnabled(button);
    menuGrey = (GetMenuState(GetSystemMenu(dialog, FALSE), SC_CLOSE, MF_BYCOMMAND) & MF_GRAYED) != 0;
    // A press of the greyed command does nothing.
    PostMessageW(dialog, WM_SYSCOMMAND, SC_CLOSE, 0);
    Sleep(100);
    shared.release = true;
    for (int i = 0; i < 200 && !IsWindowEnabled(button); ++i) Sleep(10);
    buttonOn = IsWindowEnabled(button) != FALSE;
    menuOn = (GetMenuState(GetSystemMenu(dialog, FALSE), SC_CLOSE, MF_BYCOMMAND) & MF_GRAYED) == 0;
    Click(button);
  });
  ProgressDlgThreaded dialog(nullptr, L"Progress", L"", 1, true, &LockedThenOpen, &shared);
  EXPECT_EQ(2, dialog.StartModal());
  watcher.join();
  EXPECT_TRUE(buttonOff);
  EXPECT_TRUE(menuGrey);
  EXPECT_TRUE(buttonOn);
  EXPECT_TRUE(menuOn);
}

TEST(ProgressWindow, WorkerThatIgnoresCancelIsKilledAfterHalfASecond) {
  Shared shared;
  shared.caption = L"Deaf";
  DWORD clicked = 0;
  std::thread watcher([&] {
    HWND dialog = WaitVisible(L"Deaf");
    if (!dialog) return;
    clicked = GetTickCount();
    Click(GetDlgItem(dialog, IDCANCEL));
  });
  HANDLE worker = nullptr;
  {
    ProgressDlgThreaded dialog(nullptr, L"Progress", L"", 1, true, &IgnoreTheFlag, &shared);
    dialog.SetAllowKillThread(true);
    EXPECT_EQ(65538, dialog.StartModal());
    const DWORD ended = GetTickCount();
    watcher.join();
    ASSERT_NE(0u, clicked);
    EXPECT_GE(ended - clicked, 450u);
    worker = OpenThread(SYNCHRONIZE | THREAD_QUERY_INFORMATION, FALSE, shared.threadId);
    ASSERT_NE(nullptr, worker);
    EXPECT_EQ(static_cast<DWORD>(WAIT_TIMEOUT), WaitForSingleObject(worker, 0));
  }
  // The destructor's stop routine ended it.
  EXPECT_EQ(static_cast<DWORD>(WAIT_OBJECT_0), WaitForSingleObject(worker, 2000));
  DWORD code = 0;
  EXPECT_TRUE(GetExitCodeThread(worker, &code));
  EXPECT_EQ(2u, code);
  CloseHandle(worker);
}

TEST(ProgressWindow, CallerLoopDialogHandlesOneMessagePerUpdate) {
  ProgressDlg dialog(nullptr, 1, true);
  ASSERT_TRUE(dialog.SetTitleText(L"Caller loop"));
  ASSERT_TRUE(dialog.Show());
  HWND window = qt_test::FindOwnWindow(L"#32770", L"Caller loop");
  ASSERT_NE(nullptr, window);
  EXPECT_TRUE(IsWindowVisible(window));

  // Percentage and marquee change the bar's layout and style.
  ASSERT_TRUE(dialog.PbInit(0, 0, 3, 1, true, false));
  EXPECT_TRUE(IsWindowVisible(GetDlgItem(window, IDC_PROGRESS_PERCENT)));
  EXPECT_EQ(5, ItemRect(window, IDC_PROGRESS_PERCENT).left - ItemRect(window, IDC_PROGRESS_BAR).right);
  ASSERT_TRUE(dialog.PbStepIt(0));
  EXPECT_EQ(L"33%", ItemText(window, IDC_PROGRESS_PERCENT));
  ASSERT_TRUE(dialog.PbInit(0, 0, 3, 1, false, true));
  EXPECT_FALSE(IsWindowVisible(GetDlgItem(window, IDC_PROGRESS_PERCENT)));
  EXPECT_EQ(ItemRect(window, IDC_PROGRESS_PERCENT).right, ItemRect(window, IDC_PROGRESS_BAR).right);
  EXPECT_NE(0, GetWindowLongPtrW(GetDlgItem(window, IDC_PROGRESS_BAR), GWL_STYLE) & PBS_MARQUEE);
  EXPECT_FALSE(dialog.PbSetPos(1, 0));

  // Whatever is pending is taken first, one message per update.
  MSG pending;
  for (int i = 0; i < 200 && PeekMessageW(&pending, window, 0, 0, PM_NOREMOVE); ++i) dialog.PbSetPos(0, 0);
  Click(GetDlgItem(window, IDCANCEL));
  EXPECT_TRUE(dialog.IsRunning());
  dialog.PbSetPos(0, 1);  // the press
  EXPECT_TRUE(dialog.IsRunning());
  dialog.PbSetPos(0, 2);  // the release, which clicks
  EXPECT_FALSE(dialog.IsRunning());
}
