#include "screenshot_win.h"

#include <cstdlib>
#include <string>
#include <vector>

#include "png_writer.h"

namespace qt_test {
namespace {

// The folder as the Windows side sees it; scripts/screenshots.sh passes a
// Windows path.
std::string ScreenshotDir() {
  const char* dir = std::getenv("QUILTOOL_SCREENSHOT_DIR");
  return dir ? dir : "";
}

// Paints pending changes before the screen is read, or the picture shows
// the state before the last message.
void FlushPainting() {
  MSG msg;
  for (int i = 0; i < 20; ++i) {
    while (PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE)) {
      TranslateMessage(&msg);
      DispatchMessageW(&msg);
    }
    Sleep(10);
  }
}

}  // namespace

bool ScreenshotsWanted() { return !ScreenshotDir().empty(); }

bool SaveScreenshot(const RECT& screenRect, const char* name) {
  if (!ScreenshotsWanted()) return false;
  FlushPainting();
  RECT screen = {0, 0, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)};
  RECT r;
  if (!IntersectRect(&r, &screenRect, &screen)) return false;
  int width = r.right - r.left, height = r.bottom - r.top;

  HDC screenDc = GetDC(nullptr);
  HDC memDc = CreateCompatibleDC(screenDc);
  BITMAPINFO info = {};
  info.bmiHeader.biSize = sizeof(info.bmiHeader);
  info.bmiHeader.biWidth = width;
  info.bmiHeader.biHeight = -height;  // top row first
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = 32;
  info.bmiHeader.biCompression = BI_RGB;
  void* bits = nullptr;
  HBITMAP bitmap = CreateDIBSection(screenDc, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
  bool ok = false;
  if (bitmap && memDc) {
    HGDIOBJ old = SelectObject(memDc, bitmap);
    ok = BitBlt(memDc, 0, 0, width, height, screenDc, r.left, r.top, SRCCOPY) != FALSE;
    GdiFlush();
    SelectObject(memDc, old);
  }
  std::vector<unsigned char> rgb;
  if (ok) {
    const unsigned char* p = static_cast<const unsigned char*>(bits);
    rgb.reserve(static_cast<size_t>(width) * height * 3);
    for (int i = 0; i < width * height; ++i, p += 4) {
      rgb.push_back(p[2]);
      rgb.push_back(p[1]);
      rgb.push_back(p[0]);
    }
  }
  if (bitmap) DeleteObject(bitmap);
  if (memDc) DeleteDC(memDc);
  ReleaseDC(nullptr, screenDc);
  return ok && WritePng(ScreenshotDir() + "\\" + name + ".png", width, height, rgb);
}

bool SaveWindowScreenshot(HWND window, const char* name, int margin) {
  RECT r;
  if (!GetWindowRect(window, &r)) return false;
  InflateRect(&r, margin, margin);
  return SaveScreenshot(r, name);
}

}  // namespace qt_test
