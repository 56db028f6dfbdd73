// The monitor functions the window positions rely on. The real ones come
// from the platform (settings/monitors_platform.h); when any is missing,
// and always on Linux, which has no windows, single-screen substitutes
// answer instead.
#ifndef QUILTOOL_SETTINGS_MONITORS_H
#define QUILTOOL_SETTINGS_MONITORS_H

#include <string>

#include "qn_wintypes.h"

namespace qt {
namespace monitors {

// The handle the substitutes give the one screen.
inline HMONITOR PrimaryMonitor() { return reinterpret_cast<HMONITOR>(static_cast<ULONG_PTR>(0x12340042)); }

// MONITOR_DEFAULTTO* flags.
const DWORD kDefaultToNull = 0;
const DWORD kDefaultToPrimary = 1;
const DWORD kDefaultToNearest = 2;

// GetSystemMetrics indexes.
enum {
  kCxScreen = 0,
  kCyScreen = 1,
  kCxDlgFrame = 7,
  kCyDlgFrame = 8,
  kXVirtualScreen = 76,
  kYVirtualScreen = 77,
  kCxVirtualScreen = 78,
  kCyVirtualScreen = 79,
  kMonitorCount = 80,
  kSameDisplayFormat = 81,
};

const DWORD kPrimaryFlag = 1;  // MONITORINFOF_PRIMARY

struct MonitorInfo {
  RECT monitor;
  RECT work;
  DWORD flags;
  std::wstring device;
};

int SystemMetrics(int index);
HMONITOR RectMonitor(const RECT* rect, DWORD flags);
HMONITOR PointMonitor(POINT point, DWORD flags);
HMONITOR WindowMonitor(HWND window, DWORD flags);
bool MonitorInfoOf(HMONITOR monitor, MonitorInfo* info);
// Calls back once per monitor with its rectangle; false from the callback
// stops the walk.
typedef bool (*MonitorCallback)(HMONITOR monitor, const RECT& rect, void* context);
bool EnumMonitors(MonitorCallback callback, void* context);
// The name of display device index, false past the last.
bool DisplayDevice(DWORD index, std::wstring* name);

// Makes the substitutes answer even where the real functions exist, so
// that their rules can be checked on Windows too; returns the old setting.
bool ForceSubstitutes(bool force);
bool UsingSubstitutes();

}  // namespace monitors
}  // namespace qt

#endif
