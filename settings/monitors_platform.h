// The real monitor functions and what the substitutes build on
// (monitors_platform_win.cpp / monitors_platform_posix.cpp).
//
// Windows looks the monitor functions up by name in "USER32" once, so that
// a system without them still loads the library. Linux has none: the
// lookup fails, and the substitutes' screen comes from the settings
// ("Software\\QuilTool\\Display", values "ScreenWidth" and "ScreenHeight",
// REG_DWORD, user before machine) or is 1920 x 1080.
#ifndef QUILTOOL_SETTINGS_MONITORS_PLATFORM_H
#define QUILTOOL_SETTINGS_MONITORS_PLATFORM_H

#include <string>

#include "settings/monitors.h"

namespace qt {
namespace monitors {
namespace platform {
// Looks up the real functions by name; false (and nothing kept) when any
// is missing.
bool ResolveRealFunctions();
int RealSystemMetrics(int index);
HMONITOR RealMonitorFromRect(const RECT* rect, DWORD flags);
HMONITOR RealMonitorFromPoint(POINT point, DWORD flags);
HMONITOR RealMonitorFromWindow(HWND window, DWORD flags);
bool RealMonitorInfo(HMONITOR monitor, MonitorInfo* info);
bool RealEnumDisplayMonitors(MonitorCallback callback, void* context);
bool RealEnumDisplayDevice(DWORD index, std::wstring* name);

// What the substitutes build on: the system's own metrics, the work area
// (SystemParametersInfoW(SPI_GETWORKAREA)) and a window's rectangle.
int BaseSystemMetrics(int index);
bool WorkArea(RECT* area);
bool WindowRect(HWND window, RECT* rect);
}  // namespace platform
}  // namespace monitors
}  // namespace qt

#endif
