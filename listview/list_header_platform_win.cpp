#include "listview/list_header_platform.h"

#include <windows.h>
#include <commctrl.h>

namespace qt {
namespace list_header {
namespace platform {

namespace {

HWND Header(HWND list) { return list ? reinterpret_cast<HWND>(SendMessageW(list, LVM_GETHEADER, 0, 0)) : nullptr; }

}  // namespace

int ColumnCount(HWND list) {
  HWND header = Header(list);
  return header ? static_cast<int>(SendMessageW(header, HDM_GETITEMCOUNT, 0, 0)) : 0;
}

int ColumnWidth(HWND list, int column) {
  if (column < 0 || column >= ColumnCount(list)) return -1;
  return static_cast<int>(SendMessageW(list, LVM_GETCOLUMNWIDTH, column, 0));
}

bool SetColumnWidth(HWND list, int column, int width, bool redraw) {
  if (column < 0 || column >= ColumnCount(list) || width < 0) return false;
  if (!redraw) SendMessageW(list, WM_SETREDRAW, FALSE, 0);
  const bool ok = SendMessageW(list, LVM_SETCOLUMNWIDTH, column, MAKELPARAM(width, 0)) != 0;
  if (!redraw) SendMessageW(list, WM_SETREDRAW, TRUE, 0);
  return ok;
}

ustr ColumnName(HWND list, int column) {
  wchar_t text[260] = L"";
  LVCOLUMNW lvc = {};
  lvc.mask = LVCF_TEXT;
  lvc.pszText = text;
  lvc.cchTextMax = 260;
  if (!SendMessageW(list, LVM_GETCOLUMNW, column, reinterpret_cast<LPARAM>(&lvc))) return ustr();
  return ustr(text);
}

std::vector<int> ColumnOrder(HWND list) {
  const int count = ColumnCount(list);
  std::vector<int> order(count > 0 ? count : 0);
  if (count > 0 && !SendMessageW(list, LVM_GETCOLUMNORDERARRAY, count, reinterpret_cast<LPARAM>(order.data()))) {
    order.clear();
  }
  return order;
}

bool SetColumnOrder(HWND list, const std::vector<int>& order) {
  if (order.empty() || static_cast<int>(order.size()) != ColumnCount(list)) return false;
  std::vector<int> copy(order);
  return SendMessageW(list, LVM_SETCOLUMNORDERARRAY, copy.size(), reinterpret_cast<LPARAM>(copy.data())) != 0;
}

int ClientWidth(HWND list) {
  RECT r;
  if (!list || !GetClientRect(list, &r)) return 0;
  return r.right - r.left;
}

bool SizeColumnToFit(HWND list, int column) {
  if (column < 0 || column >= ColumnCount(list)) return false;
  return SendMessageW(list, LVM_SETCOLUMNWIDTH, column, MAKELPARAM(LVSCW_AUTOSIZE_USEHEADER, 0)) != 0;
}

int HitTest(HWND list, POINT listClientPoint) {
  HWND header = Header(list);
  if (!header) return -1;
  HDHITTESTINFO hit = {};
  hit.pt = listClientPoint;
  MapWindowPoints(list, header, &hit.pt, 1);
  const int item = static_cast<int>(SendMessageW(header, HDM_HITTEST, 0, reinterpret_cast<LPARAM>(&hit)));
  return (hit.flags & (HHT_ONHEADER | HHT_ONDIVIDER | HHT_ONDIVOPEN)) ? item : -1;
}

void Repaint(HWND list) {
  if (list) InvalidateRect(list, nullptr, TRUE);
}

HeaderEvent DecodeNotify(HWND list, LPARAM lParam) {
  HeaderEvent event;
  const NMHDR* hdr = reinterpret_cast<const NMHDR*>(lParam);
  HWND header = Header(list);
  if (!hdr || !header || (hdr->hwndFrom != header && hdr->hwndFrom != list)) return event;
  switch (hdr->code) {
    case NM_RCLICK:
      if (hdr->hwndFrom != header) break;
      event.kind = HeaderEvent::RightClick;
      GetCursorPos(&event.screenPoint);
      {
        POINT p = event.screenPoint;
        ScreenToClient(list, &p);
        event.column = HitTest(list, p);
      }
      break;
    case HDN_ENDTRACKW:
    case HDN_DIVIDERDBLCLICKW:
      event.kind = HeaderEvent::Resized;
      event.column = reinterpret_cast<const NMHEADERW*>(lParam)->iItem;
      break;
    case HDN_ENDDRAG:
      event.kind = HeaderEvent::Reordered;
      event.column = reinterpret_cast<const NMHEADERW*>(lParam)->iItem;
      break;
    case LVN_COLUMNCLICK:
      event.kind = HeaderEvent::ItemClick;
      event.column = reinterpret_cast<const NMLISTVIEW*>(lParam)->iSubItem;
      break;
    default:
      break;
  }
  return event;
}

HeaderEvent DecodeContextMenu(HWND list, WPARAM wParam, LPARAM lParam) {
  HeaderEvent event;
  HWND from = reinterpret_cast<HWND>(wParam);
  HWND header = Header(list);
  if (!header || (from != header && from != list)) return event;
  POINT screen = {static_cast<short>(LOWORD(lParam)), static_cast<short>(HIWORD(lParam))};
  if (lParam == -1) GetCursorPos(&screen);  // from the keyboard
  RECT headerRect;
  GetWindowRect(header, &headerRect);
  if (!PtInRect(&headerRect, screen)) return event;
  POINT client = screen;
  ScreenToClient(list, &client);
  event.kind = HeaderEvent::RightClick;
  event.screenPoint = screen;
  event.column = HitTest(list, client);
  return event;
}

bool PostCommandToOwner(HWND list, int command, LPARAM lParam) {
  HWND owner = list ? GetParent(list) : nullptr;
  return owner && PostMessageW(owner, WM_COMMAND, static_cast<WPARAM>(command), lParam);
}

}  // namespace platform
}  // namespace list_header
}  // namespace qt
