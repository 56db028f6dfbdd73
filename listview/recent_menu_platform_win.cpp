#include "listview/recent_menu_platform.h"

#include <windows.h>
#include <commctrl.h>
#include <shlwapi.h>

#include <vector>

namespace qt {
namespace recent_menu {
namespace platform {

ustr CompactPath(const ustr& path, int maxChars) {
  std::vector<wchar_t> out(static_cast<size_t>(maxChars) + 1, L'\0');
  // The size counts the terminator.
  if (!PathCompactPathExW(out.data(), path.c_str(), static_cast<UINT>(maxChars + 1), 0)) return path;
  return ustr(out.data());
}

HMENU FillPopupMenu(HMENU existing, const std::vector<QnMenuItem>& items) {
  HMENU menu = existing && IsMenu(existing) ? existing : ::CreatePopupMenu();
  if (!menu) return nullptr;
  while (GetMenuItemCount(menu) > 0) DeleteMenu(menu, 0, MF_BYPOSITION);
  for (const QnMenuItem& item : items) {
    if (item.separator) {
      AppendMenuW(menu, MF_SEPARATOR, 0, nullptr);
    } else {
      AppendMenuW(menu, MF_STRING | (item.greyed ? MF_GRAYED : 0) | (item.checked ? MF_CHECKED : 0),
                  static_cast<UINT_PTR>(item.command), item.text.c_str());
    }
  }
  return menu;
}

bool MenuHasItem(HMENU menu, const wchar_t* text) {
  const int count = menu ? GetMenuItemCount(menu) : 0;
  for (int i = 0; i < count; ++i) {
    wchar_t buffer[256] = L"";
    if (GetMenuStringW(menu, static_cast<UINT>(i), buffer, 256, MF_BYPOSITION) > 0 && lstrcmpW(buffer, text) == 0) {
      return true;
    }
  }
  return false;
}

bool InsertSubMenu(HMENU menu, int position, bool separatorAfter, UINT flags, HMENU sub, const wchar_t* text) {
  if (!menu || !sub) return false;
  const UINT at = static_cast<UINT>(position);
  if (separatorAfter) {
    // Inserting the separator first leaves the sub-menu before it.
    if (!InsertMenuW(menu, at, MF_BYPOSITION | MF_SEPARATOR, 0, nullptr)) return false;
    return InsertMenuW(menu, at, MF_BYPOSITION | MF_POPUP | flags, reinterpret_cast<UINT_PTR>(sub), text) != FALSE;
  }
  if (!InsertMenuW(menu, at, MF_BYPOSITION | MF_POPUP | flags, reinterpret_cast<UINT_PTR>(sub), text)) return false;
  return InsertMenuW(menu, at, MF_BYPOSITION | MF_SEPARATOR, 0, nullptr) != FALSE;
}

namespace {

TTTOOLINFOW ToolInfo(HWND owner, const wchar_t* text) {
  TTTOOLINFOW info = {};
  info.cbSize = sizeof(info);
  info.uFlags = TTF_TRACK | TTF_ABSOLUTE | TTF_IDISHWND;
  info.hwnd = owner;
  info.uId = reinterpret_cast<UINT_PTR>(owner);
  info.lpszText = const_cast<wchar_t*>(text);
  return info;
}

}  // namespace

HWND CreateToolTip(HWND owner, HINSTANCE instance) {
  INITCOMMONCONTROLSEX icc = {sizeof(icc), ICC_WIN95_CLASSES};
  InitCommonControlsEx(&icc);
  HWND tip = CreateWindowExW(WS_EX_TOPMOST, L"tooltips_class32", nullptr, WS_POPUP | TTS_NOPREFIX | TTS_ALWAYSTIP,
                             CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, owner, nullptr, instance,
                             nullptr);
  if (!tip) return nullptr;
  TTTOOLINFOW info = ToolInfo(owner, const_cast<wchar_t*>(L""));
  SendMessageW(tip, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&info));
  SendMessageW(tip, TTM_SETMAXTIPWIDTH, 0, 1000);
  return tip;
}

void DestroyToolTip(HWND tip) {
  if (tip) DestroyWindow(tip);
}

void SetToolTipText(HWND tip, HWND owner, const wchar_t* text) {
  if (!tip) return;
  TTTOOLINFOW info = ToolInfo(owner, text);
  SendMessageW(tip, TTM_UPDATETIPTEXTW, 0, reinterpret_cast<LPARAM>(&info));
}

void ShowToolTip(HWND tip, HWND owner, bool show) {
  if (!tip) return;
  TTTOOLINFOW info = ToolInfo(owner, nullptr);
  SendMessageW(tip, TTM_TRACKACTIVATE, show ? TRUE : FALSE, reinterpret_cast<LPARAM>(&info));
}

void PlaceToolTip(HWND tip, HWND owner, HMENU menu, UINT item) {
  if (!tip || !menu) return;
  const int count = GetMenuItemCount(menu);
  for (int i = 0; i < count; ++i) {
    if (GetMenuItemID(menu, i) != item) continue;
    RECT r;
    if (GetMenuItemRect(owner, menu, static_cast<UINT>(i), &r)) {
      SendMessageW(tip, TTM_TRACKPOSITION, 0, MAKELPARAM(r.right, r.top));
      SetWindowPos(tip, HWND_TOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    }
    return;
  }
}

bool MenuClosed(UINT flags, HMENU menu) { return flags == 0xFFFF && !menu; }

}  // namespace platform
}  // namespace recent_menu
}  // namespace qt
