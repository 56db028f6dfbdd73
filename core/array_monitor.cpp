#include "core/array_monitor.h"
#include "core/array_monitor_platform.h"

#include <cwchar>

#include "core/frame_state.h"
#include "gwarray.h"

namespace qt {
namespace array_monitor {
namespace {

// Process-wide and unlocked: arrays belong to the user-interface thread.
struct State {
  HWND window = nullptr;
  long count = 0;
};

State& Monitor() {
  static State state;
  return state;
}

}  // namespace

void ArrayInitialized() {
  State& m = Monitor();
  if (!m.window) return;
  ++m.count;
  qt::array_monitor::platform::ShowCount(m.window, m.count);
}

void ArrayReleased() {
  State& m = Monitor();
  if (!m.window) return;
  --m.count;
  qt::array_monitor::platform::ShowCount(m.window, m.count);
}

void FormatCount(long count, wchar_t* buffer, int size) {
  std::swprintf(buffer, static_cast<size_t>(size), L"Initialized arrays: %ld", count);
}

void WindowClosed(HWND window) {
  if (Monitor().window == window) Monitor().window = nullptr;
}

}  // namespace array_monitor
}  // namespace qt

HWND gwarray_debugwnd_create(HINSTANCE instance, int x, int y) {
  qt::array_monitor::State& m = qt::array_monitor::Monitor();
  if (m.window) return m.window;
  if (!instance) instance = qt::Frame().instance;
  m.window = qt::array_monitor::platform::OpenWindow(instance, x, y, m.count);
  return m.window;
}

long qt_array_monitor_count() { return qt::array_monitor::Monitor().count; }

HWND qt_array_monitor_window() { return qt::array_monitor::Monitor().window; }

void qt_array_monitor_close() {
  const HWND window = qt::array_monitor::Monitor().window;
  if (!window) return;
  qt::array_monitor::platform::DestroyMonitor(window);
  // A platform that did not report the close must not leave a dead handle.
  qt::array_monitor::WindowClosed(window);
}
