// Linux has no windows: the monitor is a token that stands for one, so that
// the counting is the same as on Windows.
#include "core/array_monitor_platform.h"

namespace qt {
namespace array_monitor {
namespace platform {
namespace {
char g_pseudoWindow;
}  // namespace

HWND OpenWindow(HINSTANCE, int, int, long) { return reinterpret_cast<HWND>(&g_pseudoWindow); }

void ShowCount(HWND, long) {}

void DestroyMonitor(HWND window) { WindowClosed(window); }

}  // namespace platform
}  // namespace array_monitor
}  // namespace qt
