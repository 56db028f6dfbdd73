// The arrays' debug monitor: a process-wide count of initialized arrays that
// is kept only while the monitor exists, and the platform window that shows
// it (array_monitor_win.cpp: a real tool window; array_monitor_posix.cpp: a
// pseudo handle with nothing to draw).
#ifndef QUILTOOL_CORE_ARRAY_MONITOR_H
#define QUILTOOL_CORE_ARRAY_MONITOR_H

#include "qn_wintypes.h"

namespace qt {
namespace array_monitor {

// Called by every array init and release.
void ArrayInitialized();
void ArrayReleased();

// The text the monitor shows for a count.
void FormatCount(long count, wchar_t* buffer, int size);

// --- platform seam ---
// Opens the monitor (registering its window class on first use); null when
// it could not be opened. The platform calls WindowClosed when it goes.
HWND OpenWindow(HINSTANCE instance, int x, int y, long count);
// Shows a changed count.
void ShowCount(HWND window, long count);
// Closes the monitor (DestroyWindow on Windows).
void DestroyMonitor(HWND window);
void WindowClosed(HWND window);

}  // namespace array_monitor
}  // namespace qt

// For tests: the monitor's count, its handle (null when none), and closing it.
long qt_array_monitor_count();
HWND qt_array_monitor_window();
void qt_array_monitor_close();

#endif
