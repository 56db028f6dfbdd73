// The platform step of a list-view control's header, as the column manager
// needs it. Windows sends the list-view and header messages; Linux has no
// control: there are no columns, changes fail and no event is decoded.
#ifndef QUILTOOL_LISTVIEW_LIST_HEADER_PLATFORM_H
#define QUILTOOL_LISTVIEW_LIST_HEADER_PLATFORM_H

#include <vector>

#include "qn_wintypes.h"
#include "ustr.h"

namespace qt {
namespace list_header {

// What a notification or message forwarded by the owner means to the
// manager.
struct HeaderEvent {
  enum Kind { None, RightClick, Resized, Reordered, ItemClick } kind = None;
  int column = -1;
  POINT screenPoint = {0, 0};
};

namespace platform {

int ColumnCount(HWND list);
int ColumnWidth(HWND list, int column);
bool SetColumnWidth(HWND list, int column, int width, bool redraw);
ustr ColumnName(HWND list, int column);
std::vector<int> ColumnOrder(HWND list);
bool SetColumnOrder(HWND list, const std::vector<int>& order);
int ClientWidth(HWND list);
bool SizeColumnToFit(HWND list, int column);
int HitTest(HWND list, POINT listClientPoint);
void Repaint(HWND list);
// WM_NOTIFY from the list or its header, and WM_CONTEXTMENU over the header.
HeaderEvent DecodeNotify(HWND list, LPARAM lParam);
HeaderEvent DecodeContextMenu(HWND list, WPARAM wParam, LPARAM lParam);
// Posts WM_COMMAND (command, lParam) to the list's parent.
bool PostCommandToOwner(HWND list, int command, LPARAM lParam);

}  // namespace platform
}  // namespace list_header
}  // namespace qt

#endif
