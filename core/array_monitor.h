// The arrays' debug monitor: a process-wide count of initialized arrays that
// is kept only while the monitor exists, and the window that shows it
// (core/array_monitor_platform.h).
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

// The platform reports here that the monitor's window went, however it was
// closed.
void WindowClosed(HWND window);

}  // namespace array_monitor
}  // namespace qt

// For tests: the monitor's count, its handle (null when none), and closing it.
long qt_array_monitor_count();
HWND qt_array_monitor_window();
void qt_array_monitor_close();

#endif
