// What the writers leave in the registry, as other programs see it.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "Registry.h"
#include "settings/monitors.h"
#include "settings/reg_test_util.h"

namespace {

class RegistryOnWindows : public reg_test::AppKeyTest {};

TEST_F(RegistryOnWindows, AdvapiSeesTheTextWithoutItsTerminator) {
  ASSERT_TRUE(Registry::SetStringAtt(nullptr, L"Developer/ShowStringIDs", L"yesplease"));
  HKEY key = nullptr;
  ASSERT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, under(L"Developer").c_str(), 0, KEY_QUERY_VALUE, &key), ERROR_SUCCESS);
  DWORD type = 0, size = 0;
  EXPECT_EQ(RegQueryValueExW(key, L"ShowStringIDs", nullptr, &type, nullptr, &size), ERROR_SUCCESS);
  EXPECT_EQ(type, static_cast<DWORD>(REG_SZ));
  EXPECT_EQ(size, 18u);
  // RegGetValueW adds the terminator the stored bytes lack.
  wchar_t text[16] = {0};
  DWORD bytes = sizeof text;
  EXPECT_EQ(RegGetValueW(key, nullptr, L"ShowStringIDs", RRF_RT_REG_SZ, nullptr, text, &bytes), ERROR_SUCCESS);
  EXPECT_STREQ(text, L"yesplease");
  RegCloseKey(key);
}

TEST_F(RegistryOnWindows, RegExeReadsWhatTheWritersStored) {
  ASSERT_TRUE(Registry::SetStringAtt(nullptr, L"Developer/ShowStringIDs", L"yesplease"));
  ASSERT_TRUE(Registry::SetIntAtt(nullptr, L"Developer/Count", 42));
  const std::wstring command = L"reg query \"HKCU\\" + under(L"Developer") + L"\" 2>&1";
  FILE* pipe = _wpopen(command.c_str(), L"r");
  ASSERT_NE(pipe, nullptr);
  std::string output;
  char buffer[512];
  while (std::fgets(buffer, sizeof buffer, pipe)) output += buffer;
  _pclose(pipe);
  EXPECT_NE(output.find("ShowStringIDs    REG_SZ    yesplease"), std::string::npos) << output;
  EXPECT_NE(output.find("Count    REG_DWORD    0x2a"), std::string::npos) << output;
}

TEST(MonitorsOnWindows, UserThirtyTwoHasThemAll) {
  EXPECT_FALSE(qt::monitors::UsingSubstitutes());
  const int width = GetSystemMetrics(SM_CXSCREEN);
  EXPECT_EQ(qt::monitors::SystemMetrics(SM_CXSCREEN), width);
  EXPECT_EQ(qt::monitors::SystemMetrics(SM_CMONITORS), GetSystemMetrics(SM_CMONITORS));
  const RECT inside = {10, 10, 20, 20}, offScreen = {width + 5000, 0, width + 5100, 100};
  EXPECT_EQ(qt::monitors::RectMonitor(&inside, MONITOR_DEFAULTTONULL), MonitorFromRect(&inside, MONITOR_DEFAULTTONULL));
  EXPECT_NE(qt::monitors::RectMonitor(&inside, MONITOR_DEFAULTTONULL), nullptr);
  EXPECT_EQ(qt::monitors::RectMonitor(&offScreen, MONITOR_DEFAULTTONULL), nullptr);
  qt::monitors::MonitorInfo info;
  ASSERT_TRUE(qt::monitors::MonitorInfoOf(qt::monitors::RectMonitor(&inside, MONITOR_DEFAULTTONULL), &info));
  EXPECT_EQ(info.monitor.right - info.monitor.left, width);
  EXPECT_FALSE(info.device.empty());
}

}  // namespace
