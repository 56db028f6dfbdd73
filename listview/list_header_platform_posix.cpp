#include "listview/list_header_platform.h"

namespace qt {
namespace list_header {
namespace platform {

int ColumnCount(HWND) { return 0; }
int ColumnWidth(HWND, int) { return -1; }
bool SetColumnWidth(HWND, int, int, bool) { return false; }
ustr ColumnName(HWND, int) { return ustr(); }
std::vector<int> ColumnOrder(HWND) { return std::vector<int>(); }
bool SetColumnOrder(HWND, const std::vector<int>&) { return false; }
int ClientWidth(HWND) { return 0; }
bool SizeColumnToFit(HWND, int) { return false; }
int HitTest(HWND, POINT) { return -1; }
void Repaint(HWND) {}
HeaderEvent DecodeNotify(HWND, LPARAM) { return HeaderEvent(); }
HeaderEvent DecodeContextMenu(HWND, WPARAM, LPARAM) { return HeaderEvent(); }
bool PostCommandToOwner(HWND, int, LPARAM) { return false; }

}  // namespace platform
}  // namespace list_header
}  // namespace qt
