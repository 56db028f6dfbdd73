// Window positions kept as text under the window's name, and the check
// that a restored window lands on a connected monitor.
#include <cwchar>

#include "Registry.h"
#include "gwframe.h"
#include "settings/monitors.h"
#include "settings/reg_internal.h"
#include "settings/window_pos_platform.h"

namespace wp = qt::window_pos::platform;

namespace {

const int kNameChars = 80;
const DWORD kTextBytes = 80;
const int kTextChars = kTextBytes / 2 + 1;
// Room kept between a restored window and the screen's edges.
const int kMargin = 40;

// "<name>\<value>", the name cut to 80 characters.
void ValuePath(wchar_t* path, size_t size, const wchar_t* name, const wchar_t* value) {
  wchar_t cut[kNameChars + 1];
  QN_wcscpy_s(cut, kNameChars + 1, name ? name : L"");
  QN_swprintf_s(path, size, L"%s\\%s", cut, value);
}

bool ReadText(HKEY root, const wchar_t* name, const wchar_t* value, wchar_t* text) {
  wchar_t path[kNameChars + 16];
  ValuePath(path, kNameChars + 16, name, value);
  return qt_registry::ReadLimitedText(root, path, kTextBytes, text, kTextChars);
}

bool WriteText(HKEY root, const wchar_t* name, const wchar_t* value, const wchar_t* text) {
  wchar_t path[kNameChars + 16];
  ValuePath(path, kNameChars + 16, name, value);
  return Registry::SetStringAtt(root, path, text);
}

bool ReadNumber(HKEY root, const wchar_t* name, const wchar_t* value, int* number) {
  wchar_t text[kTextChars] = {0};
  return ReadText(root, name, value, text) && std::swscanf(text, L"%d", number) == 1;
}

// The dialog frame plus the margin on each side, or false when the system
// reports no frame.
bool FrameMargins(int* cx, int* cy) {
  const int frameX = qt::monitors::SystemMetrics(qt::monitors::kCxDlgFrame);
  const int frameY = qt::monitors::SystemMetrics(qt::monitors::kCyDlgFrame);
  if (frameX == 0 || frameY == 0) return false;
  *cx = frameX + kMargin;
  *cy = frameY + kMargin;
  return true;
}

bool OnSomeMonitor(const RECT& rect) {
  return qt::monitors::RectMonitor(&rect, qt::monitors::kDefaultToNull) != nullptr;
}

}  // namespace

bool Reg_GetWindowPos(HKEY root, const wchar_t* name, HWND window, RECT* rect, int* showCommand, bool checkMonitor) {
  wchar_t text[kTextChars] = {0};
  int left = 0, top = 0, width = 0, height = 0;
  if (!ReadText(root, name, L"Position", text)) return false;
  if (std::swscanf(text, L"%d %d %d %d", &left, &top, &width, &height) != 4) return false;
  if (rect) {
    rect->left = left;
    rect->top = top;
    rect->right = left + width;
    rect->bottom = top + height;
  }
  int show = 0;
  if (!ReadNumber(root, name, L"Show", &show)) return false;
  if (showCommand) *showCommand = show;
  if (checkMonitor) {
    int cx = 0, cy = 0;
    if (!FrameMargins(&cx, &cy)) return false;
    // Only the inner part has to be visible: a window may hang over the
    // edge by its frame and the margin.
    const RECT inner = {left + cx, top + cy, left + width - cx, top + height - cy};
    if (!OnSomeMonitor(inner)) return false;
  }
  if (!window) return true;
  if (!wp::Exists(window)) return false;
  unsigned flags = wp::kNoZOrder | wp::kNoActivate | wp::kNoOwnerZOrder;
  if (!wp::HasSizingBorder(window)) flags |= wp::kNoSize;
  wp::Place(window, left, top, width, height, flags);
  wp::Show(window, show);
  return true;
}

bool Reg_GetWindowPosOnly(HKEY root, const wchar_t* name, HWND window, bool* minMax) {
  if (minMax) *minMax = true;
  wchar_t text[kTextChars] = {0};
  int x = 0, y = 0;
  if (!ReadText(root, name, L"Position", text)) return false;
  if (std::swscanf(text, L"%d %d", &x, &y) != 2) return false;
  int minMaxNumber = 0;
  if (!ReadNumber(root, name, L"MinMax", &minMaxNumber)) return false;
  if (minMax) *minMax = minMaxNumber != 0;
  int cx = 0, cy = 0;
  if (!FrameMargins(&cx, &cy)) return false;
  // Built inside out (left beyond right, top below bottom); the suite's
  // saved positions have always been judged by this rectangle.
  const RECT around = {x + cx, y + cy, x - cx, y - cy};
  if (!OnSomeMonitor(around)) return false;
  if (!window) return true;
  if (!wp::Exists(window)) return false;
  wp::Place(window, x, y, 0, 0,
                   wp::kNoSize | wp::kNoZOrder | wp::kNoActivate | wp::kNoOwnerZOrder);
  return true;
}

bool Reg_SetWindowPos(HKEY root, const wchar_t* name, HWND window) {
  RECT normal;
  int show = 0;
  if (!wp::Exists(window) || !wp::RestoredPlacement(window, &normal, &show)) return false;
  wchar_t text[64];
  QN_swprintf_s(text, 64, L"%d %d %d %d", static_cast<int>(normal.left), static_cast<int>(normal.top),
                static_cast<int>(normal.right - normal.left), static_cast<int>(normal.bottom - normal.top));
  const bool position = WriteText(root, name, L"Position", text);
  QN_swprintf_s(text, 64, L"%d", show);
  const bool showSaved = WriteText(root, name, L"Show", text);
  return position && showSaved;
}

bool Reg_SetWindowPosOnly(HKEY root, const wchar_t* name, HWND window, bool minMax) {
  RECT normal;
  int show = 0;
  if (!wp::Exists(window) || !wp::RestoredPlacement(window, &normal, &show)) return false;
  wchar_t text[64];
  QN_swprintf_s(text, 64, L"%d %d", static_cast<int>(normal.left), static_cast<int>(normal.top));
  const bool position = WriteText(root, name, L"Position", text);
  QN_swprintf_s(text, 64, L"%d", minMax ? 1 : 0);
  const bool minMaxSaved = WriteText(root, name, L"MinMax", text);
  return position && minMaxSaved;
}
