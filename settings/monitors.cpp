// Dispatch between the real monitor functions and the single-screen
// substitutes, and the substitutes themselves.
#include "settings/monitors.h"
#include "settings/monitors_platform.h"

namespace qt {
namespace monitors {

namespace {

bool g_forced = false;

bool Real() {
  static const bool resolved = platform::ResolveRealFunctions();
  return resolved && !g_forced;
}

int ScreenWidth() { return platform::BaseSystemMetrics(kCxScreen); }
int ScreenHeight() { return platform::BaseSystemMetrics(kCyScreen); }

RECT WholeScreen() {
  RECT r = {0, 0, ScreenWidth(), ScreenHeight()};
  return r;
}

}  // namespace

bool ForceSubstitutes(bool force) {
  const bool old = g_forced;
  g_forced = force;
  return old;
}

bool UsingSubstitutes() { return !Real(); }

int SystemMetrics(int index) {
  if (Real()) return platform::RealSystemMetrics(index);
  switch (index) {
    case kXVirtualScreen:
    case kYVirtualScreen:
      return 0;
    case kCxVirtualScreen:
      return ScreenWidth();
    case kCyVirtualScreen:
      return ScreenHeight();
    case kMonitorCount:
    case kSameDisplayFormat:
      return 1;
    default:
      return platform::BaseSystemMetrics(index);
  }
}

HMONITOR RectMonitor(const RECT* rect, DWORD flags) {
  if (Real()) return platform::RealMonitorFromRect(rect, flags);
  if (flags != kDefaultToNull) return PrimaryMonitor();
  if (rect && rect->right >= 1 && rect->bottom >= 1 && rect->left < ScreenWidth() && rect->top < ScreenHeight())
    return PrimaryMonitor();
  return nullptr;
}

HMONITOR PointMonitor(POINT point, DWORD flags) {
  if (Real()) return platform::RealMonitorFromPoint(point, flags);
  if (flags != kDefaultToNull) return PrimaryMonitor();
  if (point.x >= 0 && point.y >= 0 && point.x < ScreenWidth() && point.y < ScreenHeight()) return PrimaryMonitor();
  return nullptr;
}

HMONITOR WindowMonitor(HWND window, DWORD flags) {
  if (Real()) return platform::RealMonitorFromWindow(window, flags);
  if (flags != kDefaultToNull) return PrimaryMonitor();
  RECT rect;
  if (!platform::WindowRect(window, &rect)) return nullptr;
  return RectMonitor(&rect, flags);
}

bool MonitorInfoOf(HMONITOR monitor, MonitorInfo* info) {
  if (!info) return false;
  if (Real()) return platform::RealMonitorInfo(monitor, info);
  if (monitor != PrimaryMonitor()) return false;
  info->monitor = WholeScreen();
  if (!platform::WorkArea(&info->work)) info->work = info->monitor;
  info->flags = kPrimaryFlag;
  info->device = L"DISPLAY";
  return true;
}

bool EnumMonitors(MonitorCallback callback, void* context) {
  if (!callback) return false;
  if (Real()) return platform::RealEnumDisplayMonitors(callback, context);
  callback(PrimaryMonitor(), WholeScreen(), context);
  return true;
}

bool DisplayDevice(DWORD index, std::wstring* name) {
  if (!name) return false;
  if (Real()) return platform::RealEnumDisplayDevice(index, name);
  if (index != 0) return false;
  *name = L"DISPLAY";
  return true;
}

}  // namespace monitors
}  // namespace qt
