// Saving and restoring a real window.
// ctest: RESOURCE_LOCK desktop
#include <gtest/gtest.h>

#include <string>

#include "Registry.h"
#include "settings/reg_test_util.h"

namespace {

HWND MakeWindow(DWORD style, int x, int y, int width, int height) {
  static bool registered = false;
  if (!registered) {
    WNDCLASSW wc = {};
    wc.lpfnWndProc = DefWindowProcW;
    wc.hInstance = GetModuleHandleW(nullptr);
    wc.lpszClassName = L"QtWindowPosTest";
    registered = RegisterClassW(&wc) != 0;
  }
  return CreateWindowExW(0, L"QtWindowPosTest", L"position", style, x, y, width, height, nullptr, nullptr,
                         GetModuleHandleW(nullptr), nullptr);
}

RECT WindowRect(HWND window) {
  RECT r = {0, 0, 0, 0};
  GetWindowRect(window, &r);
  return r;
}

class RealWindows : public reg_test::AppKeyTest {};

TEST_F(RealWindows, ASavedWindowGoesBackWhereItWas) {
  HWND window = MakeWindow(WS_OVERLAPPEDWINDOW, 50, 60, 400, 300);
  ASSERT_NE(window, nullptr);
  ShowWindow(window, SW_SHOWNORMAL);
  ASSERT_TRUE(Reg_SetWindowPos(nullptr, L"Main", window));
  EXPECT_EQ(Registry::GetStringAtt(nullptr, L"Main/Position", ustr(L"")).str(), L"50 60 400 300");
  EXPECT_EQ(Registry::GetStringAtt(nullptr, L"Main/Show", ustr(L"")).str(), L"1");

  SetWindowPos(window, nullptr, 200, 210, 500, 350, SWP_NOZORDER);
  RECT rect;
  int show = 0;
  ASSERT_TRUE(Reg_GetWindowPos(nullptr, L"Main", window, &rect, &show, true));
  const RECT now = WindowRect(window);
  EXPECT_EQ(now.left, 50);
  EXPECT_EQ(now.top, 60);
  EXPECT_EQ(now.right - now.left, 400);
  EXPECT_EQ(now.bottom - now.top, 300);
  EXPECT_EQ(rect.right, 450);
  EXPECT_EQ(show, SW_SHOWNORMAL);

  // Only the point: the size stays.
  SetWindowPos(window, nullptr, 70, 80, 0, 0, SWP_NOZORDER | SWP_NOSIZE);
  ASSERT_TRUE(Reg_SetWindowPosOnly(nullptr, L"Point", window, true));
  EXPECT_EQ(Registry::GetStringAtt(nullptr, L"Point/Position", ustr(L"")).str(), L"70 80");
  EXPECT_EQ(Registry::GetStringAtt(nullptr, L"Point/MinMax", ustr(L"")).str(), L"1");
  SetWindowPos(window, nullptr, 300, 310, 250, 200, SWP_NOZORDER);
  bool minMax = false;
  ASSERT_TRUE(Reg_GetWindowPosOnly(nullptr, L"Point", window, &minMax));
  EXPECT_TRUE(minMax);
  const RECT moved = WindowRect(window);
  EXPECT_EQ(moved.left, 70);
  EXPECT_EQ(moved.top, 80);
  EXPECT_EQ(moved.right - moved.left, 250);

  DestroyWindow(window);
  EXPECT_FALSE(Reg_GetWindowPos(nullptr, L"Main", window, nullptr, nullptr, false)) << "no such window any more";
  EXPECT_TRUE(Reg_GetWindowPos(nullptr, L"Main", nullptr, nullptr, nullptr, false));
  EXPECT_FALSE(Reg_SetWindowPos(nullptr, L"Gone", window));
  EXPECT_EQ(Registry::GetStringAtt(nullptr, L"Gone/Position", ustr(L"none")).str(), L"none");
}

TEST_F(RealWindows, AWindowWithoutSizingBorderKeepsItsSize) {
  HWND window = MakeWindow(WS_POPUP | WS_CAPTION | WS_SYSMENU, 40, 40, 300, 200);
  ASSERT_NE(window, nullptr);
  ASSERT_TRUE(Registry::SetStringAtt(nullptr, L"Fixed/Position", L"90 100 640 480"));
  ASSERT_TRUE(Registry::SetStringAtt(nullptr, L"Fixed/Show", L"0"));
  ASSERT_TRUE(Reg_GetWindowPos(nullptr, L"Fixed", window, nullptr, nullptr, true));
  const RECT r = WindowRect(window);
  EXPECT_EQ(r.left, 90);
  EXPECT_EQ(r.top, 100);
  EXPECT_EQ(r.right - r.left, 300);
  EXPECT_EQ(r.bottom - r.top, 200);
  EXPECT_FALSE(IsWindowVisible(window)) << "shown with the stored command";

  // Off every monitor: the real MonitorFromRect refuses, the window stays.
  const int width = GetSystemMetrics(SM_CXVIRTUALSCREEN) + GetSystemMetrics(SM_XVIRTUALSCREEN);
  ASSERT_TRUE(Registry::SetStringAtt(nullptr, L"Fixed/Position", (std::to_wstring(width + 100) + L" 10 300 200").c_str()));
  EXPECT_FALSE(Reg_GetWindowPos(nullptr, L"Fixed", window, nullptr, nullptr, true));
  EXPECT_EQ(WindowRect(window).left, 90);
  DestroyWindow(window);
}

}  // namespace
