#include "settings/window_pos_platform.h"

namespace qt {
namespace window_pos {
namespace platform {

bool Exists(HWND window) { return window && IsWindow(window); }

bool HasSizingBorder(HWND window) { return (GetWindowLongW(window, GWL_STYLE) & WS_THICKFRAME) != 0; }

bool Place(HWND window, int x, int y, int width, int height, unsigned flags) {
  return SetWindowPos(window, nullptr, x, y, width, height, flags) != FALSE;
}

void Show(HWND window, int showCommand) { ShowWindow(window, showCommand); }

bool RestoredPlacement(HWND window, RECT* normal, int* showCommand) {
  WINDOWPLACEMENT placement;
  ZeroMemory(&placement, sizeof placement);
  placement.length = sizeof placement;
  if (!GetWindowPlacement(window, &placement)) return false;
  *normal = placement.rcNormalPosition;
  *showCommand = static_cast<int>(placement.showCmd);
  return true;
}

}  // namespace platform
}  // namespace window_pos
}  // namespace qt
