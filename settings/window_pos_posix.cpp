// No windows on Linux: every handle names no window, so the readers only
// read and check, and the writers have nothing to save.
#include "settings/window_pos.h"

namespace qt_window {

bool Exists(HWND) { return false; }
bool HasSizingBorder(HWND) { return false; }
bool Place(HWND, int, int, int, int, unsigned) { return false; }
void Show(HWND, int) {}
bool RestoredPlacement(HWND, RECT*, int*) { return false; }

}  // namespace qt_window
