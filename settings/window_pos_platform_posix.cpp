// No windows on Linux: every handle names no window, so the readers only
// read and check, and the writers have nothing to save.
#include "settings/window_pos_platform.h"

namespace qt {
namespace window_pos {
namespace platform {

bool Exists(HWND) { return false; }
bool HasSizingBorder(HWND) { return false; }
bool Place(HWND, int, int, int, int, unsigned) { return false; }
void Show(HWND, int) {}
bool RestoredPlacement(HWND, RECT*, int*) { return false; }

}  // namespace platform
}  // namespace window_pos
}  // namespace qt
