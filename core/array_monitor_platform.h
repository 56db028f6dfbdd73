// The window of the arrays' debug monitor (array_monitor_platform_win.cpp /
// array_monitor_platform_posix.cpp).
#ifndef QUILTOOL_CORE_ARRAY_MONITOR_PLATFORM_H
#define QUILTOOL_CORE_ARRAY_MONITOR_PLATFORM_H

#include "core/array_monitor.h"

namespace qt {
namespace array_monitor {
namespace platform {

// Opens the monitor, null when it could not be opened. Windows: a topmost
// tool window whose class is registered for whichever instance asks (a
// class already there is no error). Linux has no windows: a pseudo handle
// that stands for one, so that the counting is the same.
HWND OpenWindow(HINSTANCE instance, int x, int y, long count);
// Shows a changed count (a static child's text on Windows; nothing on
// Linux).
void ShowCount(HWND window, long count);
// Closes the monitor: DestroyWindow on Windows, whose WM_DESTROY calls
// WindowClosed; Linux calls it at once.
void DestroyMonitor(HWND window);

}  // namespace platform
}  // namespace array_monitor
}  // namespace qt

#endif
