#include "listview/recent_menu_platform.h"

#include "listview/recent_files_list.h"

namespace qt {
namespace recent_menu {
namespace platform {

ustr CompactPath(const ustr& path, int maxChars) { return qt::recent_files::CompactPath(path, maxChars); }
HMENU FillPopupMenu(HMENU, const std::vector<QnMenuItem>&) { return nullptr; }
bool MenuHasItem(HMENU, const wchar_t*) { return false; }
bool InsertSubMenu(HMENU, int, bool, UINT, HMENU, const wchar_t*) { return false; }
HWND CreateToolTip(HWND, HINSTANCE) { return nullptr; }
void DestroyToolTip(HWND) {}
void SetToolTipText(HWND, HWND, const wchar_t*) {}
void ShowToolTip(HWND, HWND, bool) {}
void PlaceToolTip(HWND, HWND, HMENU, UINT) {}
bool MenuClosed(UINT flags, HMENU menu) { return flags == 0xFFFF && !menu; }

}  // namespace platform
}  // namespace recent_menu
}  // namespace qt
