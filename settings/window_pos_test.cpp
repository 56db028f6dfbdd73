#include <gtest/gtest.h>

#include <string>

#include "Registry.h"
#include "settings/monitors.h"
#include "settings/reg_test_util.h"

namespace {

// The rules are checked against the single-screen substitutes, which
// answer alike on both targets; W x H is the screen they see.
class WindowPositions : public reg_test::AppKeyTest {
 protected:
  void SetUp() override {
    AppKeyTest::SetUp();
    wasForced_ = qt::monitors::ForceSubstitutes(true);
    W = qt::monitors::SystemMetrics(qt::monitors::kCxScreen);
    H = qt::monitors::SystemMetrics(qt::monitors::kCyScreen);
    cx = qt::monitors::SystemMetrics(qt::monitors::kCxDlgFrame) + 40;
    cy = qt::monitors::SystemMetrics(qt::monitors::kCyDlgFrame) + 40;
  }
  void TearDown() override {
    qt::monitors::ForceSubstitutes(wasForced_);
    AppKeyTest::TearDown();
  }
  void store(const wchar_t* name, const std::wstring& position, const wchar_t* second, const wchar_t* secondText) {
    ASSERT_TRUE(Registry::SetStringAtt(nullptr, (std::wstring(name) + L"/Position").c_str(), position.c_str()));
    if (second) {
      ASSERT_TRUE(Registry::SetStringAtt(nullptr, (std::wstring(name) + L"/" + second).c_str(), secondText));
    }
  }
  static std::wstring Numbers(int a, int b) { return std::to_wstring(a) + L" " + std::to_wstring(b); }
  static std::wstring Numbers(int a, int b, int c, int d) { return Numbers(a, b) + L" " + Numbers(c, d); }

  bool wasForced_ = false;
  int W = 0, H = 0, cx = 0, cy = 0;
};

TEST_F(WindowPositions, ReadsTheStoredRectangleAndShowCommand) {
  store(L"Dlg", L"10 20 300 400", L"Show", L"3");
  RECT rect = {0, 0, 0, 0};
  int show = -1;
  ASSERT_TRUE(Reg_GetWindowPos(nullptr, L"Dlg", nullptr, &rect, &show, false));
  EXPECT_EQ(rect.left, 10);
  EXPECT_EQ(rect.top, 20);
  EXPECT_EQ(rect.right, 310);
  EXPECT_EQ(rect.bottom, 420);
  EXPECT_EQ(show, 3);
  EXPECT_TRUE(Reg_GetWindowPos(nullptr, L"Dlg", nullptr, nullptr, nullptr, false)) << "out parameters are optional";

  // The window name is cut to 80 characters before it becomes a key.
  const std::wstring longName = std::wstring(80, L'n') + L"-ignored-tail";
  store(std::wstring(80, L'n').c_str(), L"1 2 3 4", L"Show", L"1");
  EXPECT_TRUE(Reg_GetWindowPos(nullptr, longName.c_str(), nullptr, &rect, &show, false));
  EXPECT_EQ(rect.right, 4);
}

TEST_F(WindowPositions, AnythingButFourNumbersAndAShowCommandRestoresNothing) {
  RECT rect = {-1, -1, -1, -1};
  store(L"Three", L"10 20 300", L"Show", L"1");
  EXPECT_FALSE(Reg_GetWindowPos(nullptr, L"Three", nullptr, &rect, nullptr, false));
  EXPECT_EQ(rect.left, -1) << "nothing is handed out";
  store(L"Words", L"left top width height", L"Show", L"1");
  EXPECT_FALSE(Reg_GetWindowPos(nullptr, L"Words", nullptr, &rect, nullptr, false));
  store(L"NoShow", L"10 20 300 400", nullptr, nullptr);
  EXPECT_FALSE(Reg_GetWindowPos(nullptr, L"NoShow", nullptr, nullptr, nullptr, false));
  store(L"BadShow", L"10 20 300 400", L"Show", L"normal");
  EXPECT_FALSE(Reg_GetWindowPos(nullptr, L"BadShow", nullptr, nullptr, nullptr, false));
  EXPECT_FALSE(Reg_GetWindowPos(nullptr, L"NeverSaved", nullptr, nullptr, nullptr, false));
}

TEST_F(WindowPositions, TheShrunkenRectangleMustMeetTheScreen) {
  // Shrunk by frame + 40 on every side, the rectangle must reach into the
  // screen: left and top below W and H, right and bottom at least 1.
  store(L"AtRight", Numbers(W - cx - 1, 100, 400, 300), L"Show", L"1");
  EXPECT_TRUE(Reg_GetWindowPos(nullptr, L"AtRight", nullptr, nullptr, nullptr, true));
  store(L"PastRight", Numbers(W - cx, 100, 400, 300), L"Show", L"1");
  EXPECT_FALSE(Reg_GetWindowPos(nullptr, L"PastRight", nullptr, nullptr, nullptr, true));
  EXPECT_TRUE(Reg_GetWindowPos(nullptr, L"PastRight", nullptr, nullptr, nullptr, false)) << "no check asked for";
  store(L"PastBottom", Numbers(100, H - cy, 400, 300), L"Show", L"1");
  EXPECT_FALSE(Reg_GetWindowPos(nullptr, L"PastBottom", nullptr, nullptr, nullptr, true));
  // Off to the left: the shrunken right edge ends before column 1.
  store(L"OffLeft", Numbers(-400, 100, 400 + cx, 300), L"Show", L"1");
  EXPECT_FALSE(Reg_GetWindowPos(nullptr, L"OffLeft", nullptr, nullptr, nullptr, true));
  store(L"JustIn", Numbers(-400, 100, 401 + cx, 300), L"Show", L"1");
  EXPECT_TRUE(Reg_GetWindowPos(nullptr, L"JustIn", nullptr, nullptr, nullptr, true));
}

TEST_F(WindowPositions, PositionOnlyChecksItsInsideOutRectangle) {
  bool minMax = false;
  store(L"Pt", Numbers(100, 100), L"MinMax", L"0");
  EXPECT_TRUE(Reg_GetWindowPosOnly(nullptr, L"Pt", nullptr, &minMax));
  EXPECT_FALSE(minMax);
  store(L"Pt", Numbers(100, 100), L"MinMax", L"1");
  EXPECT_TRUE(Reg_GetWindowPosOnly(nullptr, L"Pt", nullptr, &minMax));
  EXPECT_TRUE(minMax);

  // left = x + cx, right = x - cx: x must lie in (cx, W - cx).
  store(L"Edge", Numbers(cx + 1, H / 2), L"MinMax", L"0");
  EXPECT_TRUE(Reg_GetWindowPosOnly(nullptr, L"Edge", nullptr, &minMax));
  store(L"Edge", Numbers(cx, H / 2), L"MinMax", L"0");
  EXPECT_FALSE(Reg_GetWindowPosOnly(nullptr, L"Edge", nullptr, &minMax));
  store(L"Edge", Numbers(W - cx - 1, H / 2), L"MinMax", L"0");
  EXPECT_TRUE(Reg_GetWindowPosOnly(nullptr, L"Edge", nullptr, &minMax));
  store(L"Edge", Numbers(W - cx, H / 2), L"MinMax", L"0");
  EXPECT_FALSE(Reg_GetWindowPosOnly(nullptr, L"Edge", nullptr, &minMax));
  store(L"Edge", Numbers(W / 2, cy), L"MinMax", L"0");
  EXPECT_FALSE(Reg_GetWindowPosOnly(nullptr, L"Edge", nullptr, &minMax));

  // The flag starts out true and keeps that on any failure before MinMax.
  minMax = false;
  store(L"One", L"5", L"MinMax", L"0");
  EXPECT_FALSE(Reg_GetWindowPosOnly(nullptr, L"One", nullptr, &minMax));
  EXPECT_TRUE(minMax);
  minMax = false;
  store(L"NoFlag", Numbers(100, 100), nullptr, nullptr);
  EXPECT_FALSE(Reg_GetWindowPosOnly(nullptr, L"NoFlag", nullptr, &minMax));
  EXPECT_TRUE(minMax);
}

TEST_F(WindowPositions, ExplicitRootsAreUsedAsGiven) {
  const std::wstring name = base_ + L"\\Rooted";
  ASSERT_TRUE(Registry::SetStringAtt(HKEY_CURRENT_USER, (name + L"\\Position").c_str(), L"1 2 3 4"));
  ASSERT_TRUE(Registry::SetStringAtt(HKEY_CURRENT_USER, (name + L"\\Show").c_str(), L"5"));
  int show = 0;
  EXPECT_TRUE(Reg_GetWindowPos(HKEY_CURRENT_USER, name.c_str(), nullptr, nullptr, &show, false));
  EXPECT_EQ(show, 5);
  EXPECT_FALSE(Reg_GetWindowPos(HKEY_LOCAL_MACHINE, name.c_str(), nullptr, nullptr, &show, false));
}

class MonitorSubstitutes : public ::testing::Test {
 protected:
  void SetUp() override { wasForced_ = qt::monitors::ForceSubstitutes(true); }
  void TearDown() override { qt::monitors::ForceSubstitutes(wasForced_); }
  bool wasForced_ = false;
};

TEST_F(MonitorSubstitutes, OneScreenAnswersForEverything) {
  using namespace qt::monitors;
  EXPECT_TRUE(UsingSubstitutes());
  const int W = SystemMetrics(kCxScreen), H = SystemMetrics(kCyScreen);
  ASSERT_GT(W, 0);
  ASSERT_GT(H, 0);
  EXPECT_EQ(SystemMetrics(kXVirtualScreen), 0);
  EXPECT_EQ(SystemMetrics(kYVirtualScreen), 0);
  EXPECT_EQ(SystemMetrics(kCxVirtualScreen), W);
  EXPECT_EQ(SystemMetrics(kCyVirtualScreen), H);
  EXPECT_EQ(SystemMetrics(kMonitorCount), 1);
  EXPECT_EQ(SystemMetrics(kSameDisplayFormat), 1);

  const HMONITOR primary = PrimaryMonitor();
  EXPECT_EQ(reinterpret_cast<ULONG_PTR>(primary), static_cast<ULONG_PTR>(0x12340042));
  const RECT corner = {0, 0, 1, 1}, beforeLeft = {-10, 0, 0, 10}, atRight = {W, 0, W + 10, 10},
             atBottom = {0, H, 10, H + 10};
  EXPECT_EQ(RectMonitor(&corner, kDefaultToNull), primary);
  EXPECT_EQ(RectMonitor(&beforeLeft, kDefaultToNull), nullptr);
  EXPECT_EQ(RectMonitor(&atRight, kDefaultToNull), nullptr);
  EXPECT_EQ(RectMonitor(&atBottom, kDefaultToNull), nullptr);
  EXPECT_EQ(RectMonitor(&atRight, kDefaultToPrimary), primary);
  EXPECT_EQ(RectMonitor(&atRight, kDefaultToNearest), primary);
  EXPECT_EQ(PointMonitor(POINT{W - 1, H - 1}, kDefaultToNull), primary);
  EXPECT_EQ(PointMonitor(POINT{W, 0}, kDefaultToNull), nullptr);
  EXPECT_EQ(PointMonitor(POINT{-1, 0}, kDefaultToNearest), primary);

  MonitorInfo info;
  ASSERT_TRUE(MonitorInfoOf(primary, &info));
  EXPECT_EQ(info.monitor.right, W);
  EXPECT_EQ(info.monitor.bottom, H);
  EXPECT_EQ(info.flags, kPrimaryFlag);
  EXPECT_EQ(info.device, L"DISPLAY");
  EXPECT_LE(info.work.right, W);
  EXPECT_FALSE(MonitorInfoOf(reinterpret_cast<HMONITOR>(static_cast<ULONG_PTR>(0x1234)), &info));

  int calls = 0;
  EnumMonitors([](HMONITOR m, const RECT& r, void* c) {
    ++*static_cast<int*>(c);
    return m == PrimaryMonitor() && r.left == 0 && r.top == 0;
  }, &calls);
  EXPECT_EQ(calls, 1);
  std::wstring device;
  EXPECT_TRUE(DisplayDevice(0, &device));
  EXPECT_EQ(device, L"DISPLAY");
  EXPECT_FALSE(DisplayDevice(1, &device));
}

}  // namespace
