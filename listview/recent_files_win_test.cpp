// The recent-file list's real sub-menu under Wine: its items and command
// ids read back from the menu, the title inserted once, and the tool tip
// that shows the highlighted entry's full path.
// ctest: RESOURCE_LOCK desktop
#include <windows.h>
#include <commctrl.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <thread>

#include "QnRecentFileListManager.h"
#include "qt_test.h"
#include "qt_test_win.h"
#include "screenshot_win.h"
#include "settings/reg_test_util.h"

namespace {

const int kFirstCommand = 600;

LRESULT CALLBACK FrameProc(HWND w, UINT msg, WPARAM wp, LPARAM lp) {
  auto* m = reinterpret_cast<QnRecentFileListManager*>(GetWindowLongPtrW(w, GWLP_USERDATA));
  if (m && msg == WM_MENUSELECT) m->OnMenuSelect(LOWORD(wp), HIWORD(wp), reinterpret_cast<HMENU>(lp));
  return DefWindowProcW(w, msg, wp, lp);
}

// A frame with a menu bar "File" holding "Open..." and "Exit".
struct Frame {
  Frame() {
    WNDCLASSW wc = {};
    wc.lpfnWndProc = FrameProc;
    wc.hInstance = GetModuleHandleW(nullptr);
    wc.lpszClassName = L"QtRecentTestFrame";
    wc.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_WINDOW + 1);
    RegisterClassW(&wc);
    bar = CreateMenu();
    file = CreatePopupMenu();
    AppendMenuW(file, MF_STRING, 100, L"Open...");
    AppendMenuW(file, MF_STRING, 101, L"Exit");
    AppendMenuW(bar, MF_POPUP, reinterpret_cast<UINT_PTR>(file), L"File");
    window = CreateWindowExW(0, L"QtRecentTestFrame", L"Plant", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 60, 60, 520, 300,
                             nullptr, bar, GetModuleHandleW(nullptr), nullptr);
  }
  ~Frame() { DestroyWindow(window); }
  std::wstring Text(HMENU menu, int pos) {
    wchar_t text[260] = L"";
    GetMenuStringW(menu, pos, text, 260, MF_BYPOSITION);
    return text;
  }
  HWND window = nullptr;
  HMENU bar = nullptr;
  HMENU file = nullptr;
};

class RealRecentMenu : public reg_test::AppKeyTest {
 protected:
  std::wstring File(const std::string& name) {
    const std::string path = dir_.file(name);
    FILE* f = std::fopen(path.c_str(), "wb");
    if (f) std::fclose(f);
    return qt_test::Widen(path);
  }
  qt_test::TempDir dir_;
};

TEST_F(RealRecentMenu, SubMenuItemsAndCommandsReadBackFromTheMenu) {
  Frame f;
  QnRecentFileListManager m;
  ASSERT_TRUE(m.Attach(f.window, GetModuleHandleW(nullptr), f.file, 1, true, kFirstCommand));
  // "Open...", "Recent files", separator, "Exit"; a second insert does nothing.
  ASSERT_EQ(4, GetMenuItemCount(f.file));
  EXPECT_EQ(L"Recent files", f.Text(f.file, 1));
  EXPECT_TRUE(GetMenuState(f.file, 2, MF_BYPOSITION) & MF_SEPARATOR);
  EXPECT_FALSE(m.InsertPopupMenu(f.file, 0, false, 0));
  EXPECT_EQ(4, GetMenuItemCount(f.file));

  HMENU sub = GetSubMenu(f.file, 1);
  ASSERT_NE(nullptr, sub);
  ASSERT_EQ(1, GetMenuItemCount(sub));
  EXPECT_EQ(L"Empty", f.Text(sub, 0));
  EXPECT_TRUE(GetMenuState(sub, 0, MF_BYPOSITION) & MF_GRAYED);

  const std::wstring a = File("a.qdb");
  const std::wstring deep = File(std::string(40, 'n') + ".qdb");
  m.SetLastUsed(a.c_str());
  m.SetLastUsed(deep.c_str());
  ASSERT_EQ(2, GetMenuItemCount(sub));
  const std::wstring first = f.Text(sub, 0);
  EXPECT_EQ(L"1 ", first.substr(0, 2));
  EXPECT_LE(first.size(), 52u);
  EXPECT_NE(std::wstring::npos, first.find(L"..."));  // the long path was shortened
  const std::wstring second = f.Text(sub, 1);
  EXPECT_EQ(L"2 ", second.substr(0, 2));
  EXPECT_LE(second.size(), 52u);
  EXPECT_EQ(L"\\a.qdb", second.substr(second.size() - 6));
  EXPECT_EQ(static_cast<UINT>(kFirstCommand + 1), GetMenuItemID(sub, 1));
  EXPECT_EQ(a, std::wstring(m.SetLastUsed(kFirstCommand + 1).c_str()));

  // Highlighting an entry puts its full path into the tool tip.
  m.OnMenuSelect(kFirstCommand, MF_HILITE, sub);
  HWND tip = m.GetToolTipWindow();
  ASSERT_NE(nullptr, tip);
  wchar_t text[512] = L"";
  TTTOOLINFOW info = {};
  info.cbSize = sizeof(info);
  info.hwnd = f.window;
  info.uId = reinterpret_cast<UINT_PTR>(f.window);
  info.lpszText = text;
  SendMessageW(tip, TTM_GETTEXTW, 512, reinterpret_cast<LPARAM>(&info));
  EXPECT_EQ(deep, std::wstring(text));
  EXPECT_TRUE(IsWindowVisible(tip));
  m.OnMenuSelect(0, 0xFFFF, nullptr);  // the menu closed
  EXPECT_FALSE(IsWindowVisible(tip));
}

void MoveMouse(POINT p, DWORD extra = 0) {
  const int cx = GetSystemMetrics(SM_CXSCREEN) - 1, cy = GetSystemMetrics(SM_CYSCREEN) - 1;
  INPUT in[2] = {};
  in[0].type = in[1].type = INPUT_MOUSE;
  in[0].mi.dx = in[1].mi.dx = p.x * 65535 / cx;
  in[0].mi.dy = in[1].mi.dy = p.y * 65535 / cy;
  in[0].mi.dwFlags = MOUSEEVENTF_MOVE | MOUSEEVENTF_ABSOLUTE;
  in[1].mi.dwFlags = extra | MOUSEEVENTF_ABSOLUTE;
  SendInput(extra ? 2 : 1, in, sizeof(INPUT));
}

POINT Middle(const RECT& r) { return POINT{(r.left + r.right) / 2, (r.top + r.bottom) / 2}; }

// Opens File, moves onto "Recent files" and its first entry as a person
// would, takes the picture, and closes the menus again.
TEST_F(RealRecentMenu, ScreenshotOfTheRecentFilesSubMenuWithItsToolTip) {
  Frame f;
  QnRecentFileListManager m;
  SetWindowLongPtrW(f.window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(&m));
  ASSERT_TRUE(m.Attach(f.window, GetModuleHandleW(nullptr), f.file, 1, true, kFirstCommand));
  m.SetLastUsed(File("Hospital North - ventilation, storey 3 - supply air ducts.qdb").c_str());
  m.SetLastUsed(File("plant.qdb").c_str());
  SetForegroundWindow(f.window);

  bool tipShown = false;
  std::thread user([&] {
    Sleep(300);
    RECT r;
    GetMenuItemRect(f.window, f.bar, 0, &r);
    MoveMouse(Middle(r), MOUSEEVENTF_LEFTDOWN);
    MoveMouse(Middle(r), MOUSEEVENTF_LEFTUP);
    Sleep(400);
    GetMenuItemRect(f.window, f.file, 1, &r);
    MoveMouse(Middle(r));
    Sleep(700);
    HMENU sub = GetSubMenu(f.file, 1);
    GetMenuItemRect(f.window, sub, 1, &r);
    MoveMouse(Middle(r));
    Sleep(500);
    MoveMouse(Middle(r));
    Sleep(500);
    HWND tip = m.GetToolTipWindow();
    tipShown = tip && IsWindowVisible(tip);
    if (qt_test::ScreenshotsWanted()) {
      RECT frame, tipRect, area;
      GetWindowRect(f.window, &frame);
      area = frame;
      if (tip && GetWindowRect(tip, &tipRect)) UnionRect(&area, &frame, &tipRect);
      qt_test::SaveScreenshot(area, "recent_files_submenu_with_tooltip");
    }
    for (int i = 0; i < 3; ++i) {
      keybd_event(VK_ESCAPE, 0, 0, 0);
      keybd_event(VK_ESCAPE, 0, KEYEVENTF_KEYUP, 0);
      Sleep(100);
    }
  });
  MSG msg;
  const DWORD until = GetTickCount() + 4500;
  while (GetTickCount() < until) {
    while (PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE)) {
      TranslateMessage(&msg);
      DispatchMessageW(&msg);
    }
    Sleep(10);
  }
  user.join();
  EXPECT_TRUE(tipShown);
}

}  // namespace
