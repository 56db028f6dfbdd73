// The platform step of the recent-file list: its sub-menu and tool tip.
// Windows uses the real menu and a "tooltips_class32" window; Linux has
// neither, so menus are null, tool tips absent, and paths are shortened by
// the library's own rule.
#ifndef QUILTOOL_LISTVIEW_RECENT_MENU_PLATFORM_H
#define QUILTOOL_LISTVIEW_RECENT_MENU_PLATFORM_H

#include <vector>

#include "qn_menu_presenter.h"
#include "qn_wintypes.h"
#include "ustr.h"

namespace qt {
namespace recent_menu {
namespace platform {

ustr CompactPath(const ustr& path, int maxChars);
// Empties an existing menu, or makes a new pop-up menu; then appends items.
HMENU FillPopupMenu(HMENU existing, const std::vector<QnMenuItem>& items);
bool MenuHasItem(HMENU menu, const wchar_t* text);
bool InsertSubMenu(HMENU menu, int position, bool separatorAfter, UINT flags, HMENU sub, const wchar_t* text);
HWND CreateToolTip(HWND owner, HINSTANCE instance);
void DestroyToolTip(HWND tip);
void SetToolTipText(HWND tip, HWND owner, const wchar_t* text);
void ShowToolTip(HWND tip, HWND owner, bool show);
// Places the tip at the menu item's rectangle (item: a command) and keeps
// it above the menu.
void PlaceToolTip(HWND tip, HWND owner, HMENU menu, UINT item);
// Whether a WM_MENUSELECT's flags say the menu closed.
bool MenuClosed(UINT flags, HMENU menu);

}  // namespace platform
}  // namespace recent_menu
}  // namespace qt

#endif
