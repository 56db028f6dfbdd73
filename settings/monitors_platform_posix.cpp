// Linux has no windows and no monitor functions: the single-screen
// substitutes always answer, for a screen whose size comes from the
// settings ("Software\QuilTool\Display", values "ScreenWidth" and
// "ScreenHeight", REG_DWORD, user before machine) or is 1920 x 1080.
#include "settings/monitors_platform.h"
#include "settings/regstore.h"

namespace qt {
namespace monitors {
namespace platform {

namespace {

const int kDefaultWidth = 1920;
const int kDefaultHeight = 1080;
// What Windows reports for SM_CXDLGFRAME / SM_CYDLGFRAME.
const int kDialogFrame = 3;

int ScreenSetting(const wchar_t* name, int fallback) {
  for (HKEY root : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE}) {
    HKEY key = nullptr;
    if (qt_reg::OpenKey(root, L"Software\\QuilTool\\Display", qt_reg::kKeyQueryValue, &key) != qt_reg::kOk) continue;
    DWORD type = 0, size = 4;
    BYTE bytes[4] = {0, 0, 0, 0};
    const long rc = qt_reg::QueryValue(key, name, &type, bytes, &size);
    qt_reg::CloseKey(key);
    if (rc != qt_reg::kOk || type != REG_DWORD || size != 4) continue;
    const int value = static_cast<int>(bytes[0] | (bytes[1] << 8) | (bytes[2] << 16) | (static_cast<unsigned>(bytes[3]) << 24));
    if (value > 0) return value;
  }
  return fallback;
}

}  // namespace

bool ResolveRealFunctions() { return false; }

// Never called: without real functions the substitutes answer.
int RealSystemMetrics(int index) { return BaseSystemMetrics(index); }
HMONITOR RealMonitorFromRect(const RECT*, DWORD) { return nullptr; }
HMONITOR RealMonitorFromPoint(POINT, DWORD) { return nullptr; }
HMONITOR RealMonitorFromWindow(HWND, DWORD) { return nullptr; }
bool RealMonitorInfo(HMONITOR, MonitorInfo*) { return false; }
bool RealEnumDisplayMonitors(MonitorCallback, void*) { return false; }
bool RealEnumDisplayDevice(DWORD, std::wstring*) { return false; }

int BaseSystemMetrics(int index) {
  switch (index) {
    case kCxScreen:
      return ScreenSetting(L"ScreenWidth", kDefaultWidth);
    case kCyScreen:
      return ScreenSetting(L"ScreenHeight", kDefaultHeight);
    case kCxDlgFrame:
    case kCyDlgFrame:
      return kDialogFrame;
    default:
      return 0;
  }
}

bool WorkArea(RECT* area) {
  area->left = 0;
  area->top = 0;
  area->right = BaseSystemMetrics(kCxScreen);
  area->bottom = BaseSystemMetrics(kCyScreen);
  return true;
}

bool WindowRect(HWND, RECT*) { return false; }

}  // namespace platform
}  // namespace monitors
}  // namespace qt
