// ctest: RESOURCE_LOCK desktop
#include <gtest/gtest.h>

#include <windows.h>

#include <string>

#include "core/array_monitor.h"
#include "gwarray.h"
#include "qt_test_win.h"

namespace {

std::wstring ShownLine(HWND monitor) {
  wchar_t text[128] = L"";
  for (HWND child = GetWindow(monitor, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) {
    if (GetWindowTextW(child, text, 128) > 0) return text;
  }
  return L"";
}

}  // namespace

TEST(ArrayMonitorWindow, IsARealToolWindowShowingTheCount) {
  HWND monitor = gwarray_debugwnd_create(nullptr, 40, 60);
  ASSERT_NE(nullptr, monitor);
  EXPECT_EQ(monitor, qt_test::FindOwnWindow(L"GWADEBWND", L"Gwarray - Debug monitor"));
  EXPECT_TRUE(GetWindowLongPtrW(monitor, GWL_EXSTYLE) & WS_EX_TOOLWINDOW);
  RECT r;
  GetWindowRect(monitor, &r);
  EXPECT_EQ(40, r.left);
  EXPECT_EQ(60, r.top);

  const long start = qt_array_monitor_count();
  EXPECT_EQ(L"Initialized arrays: " + std::to_wstring(start), ShownLine(monitor));
  gwarraytype a, b;
  gwarray_init(&a, 4);
  gwWszarray_init(&b);
  EXPECT_EQ(L"Initialized arrays: " + std::to_wstring(start + 2), ShownLine(monitor));
  gwarray_release(&a);
  EXPECT_EQ(L"Initialized arrays: " + std::to_wstring(start + 1), ShownLine(monitor));

  // Closed by the user (or anyone): the count stands still from then on.
  DestroyWindow(monitor);
  EXPECT_EQ(nullptr, qt_array_monitor_window());
  EXPECT_EQ(nullptr, qt_test::FindOwnWindow(L"GWADEBWND", L"Gwarray - Debug monitor"));
  gwWszarray_release(&b);
  EXPECT_EQ(start + 1, qt_array_monitor_count());

  // Another module may open it under its own instance.
  HWND again = gwarray_debugwnd_create(GetModuleHandleW(nullptr), 0, 0);
  ASSERT_NE(nullptr, again);
  EXPECT_EQ(again, qt_test::FindOwnWindow(L"GWADEBWND", L"Gwarray - Debug monitor"));
  DestroyWindow(again);
}
