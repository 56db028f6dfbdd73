// The few window operations the window positions need
// (window_pos_platform_win.cpp / window_pos_platform_posix.cpp). Windows
// answers them with user32; Linux has no windows, so every handle names no
// window: the readers only read and check, and the writers have nothing to
// save.
#ifndef QUILTOOL_SETTINGS_WINDOW_POS_PLATFORM_H
#define QUILTOOL_SETTINGS_WINDOW_POS_PLATFORM_H

#include "qn_wintypes.h"

namespace qt {
namespace window_pos {
namespace platform {

// SetWindowPos flags.
const unsigned kNoSize = 0x0001;
const unsigned kNoZOrder = 0x0004;
const unsigned kNoActivate = 0x0010;
const unsigned kNoOwnerZOrder = 0x0200;

bool Exists(HWND window);                        // IsWindow
bool HasSizingBorder(HWND window);               // WS_THICKFRAME in the style
bool Place(HWND window, int x, int y, int width, int height, unsigned flags);  // SetWindowPos
void Show(HWND window, int showCommand);         // ShowWindow
// GetWindowPlacement: the restored rectangle and the show command.
bool RestoredPlacement(HWND window, RECT* normal, int* showCommand);

}  // namespace platform
}  // namespace window_pos
}  // namespace qt

#endif
