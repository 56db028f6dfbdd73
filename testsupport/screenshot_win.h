// Screenshots of what a person would see, taken by the Windows tests whose
// names contain "Screenshot" when scripts/screenshots.sh runs them. The
// picture is read from the screen, so popups, balloons and menus over the
// window are in it too.
#ifndef QUILTOOL_SCREENSHOT_WIN_H
#define QUILTOOL_SCREENSHOT_WIN_H

#include <windows.h>

namespace qt_test {

// True when QUILTOOL_SCREENSHOT_DIR names the folder to write to.
bool ScreenshotsWanted();

// Writes the screen's rectangle (in screen coordinates) to
// <QUILTOOL_SCREENSHOT_DIR>/<name>.png. Name the file after what it shows.
bool SaveScreenshot(const RECT& screenRect, const char* name);

// The window's rectangle grown by margin pixels on every side (a balloon
// or a drop-down reaches past its owner).
bool SaveWindowScreenshot(HWND window, const char* name, int margin = 0);

}  // namespace qt_test

#endif
