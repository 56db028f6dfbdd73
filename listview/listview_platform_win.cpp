// The grid bound to a list-view control: the control is put in owner-drawn
// report view and subclassed, its owner is subclassed for the owner-draw
// and measure-item messages, and the model stays reachable from the list
// window through a window property. The control only holds one empty item
// per listed row; everything shown comes from the model.
#include <windows.h>

#include <commctrl.h>

#include <algorithm>
#include <memory>
#include <vector>

#include "ValueValidator.h"
#include "core/boundary.h"
#include "listview/listview_editing.h"
#include "listview/listview_itemdraw_win.h"
#include "listview/listview_layout.h"
#include "listview/listview_platform.h"

namespace qt {
namespace listview {

struct Control {
  QnListView2Impl* model = nullptr;
  HWND list = nullptr;
  HWND owner = nullptr;
  HINSTANCE instance = nullptr;
  std::vector<int> shown;  // listed item -> model row
  std::unique_ptr<QnListView2ItemDraw> drawer;
  HWND editor = nullptr;
  EditorKind editorKind = EditorKind::None;
  int editRow = -1;
  int editColumn = -1;
  HWND balloon = nullptr;  // our own, where the edit field has none
  bool closing = false;
  bool dirty = true;  // the model changed since the control last listed it
  int measuredHeight = -1;  // the row height the control last asked for
  LONG_PTR originalStyle = 0;  // given back by Detach
  DWORD originalExtendedStyle = 0;
};

namespace platform {

namespace {

const wchar_t kModelProperty[] = L"QuilTool.QnListView2";
const UINT_PTR kListSubclass = 0x514C5632;  // one per list window
const UINT_PTR kEditorSubclass = 0x514C5633;

Control* FromWindow(HWND list) { return static_cast<Control*>(GetPropW(list, kModelProperty)); }

int ItemOf(const Control& c, int row) {
  for (size_t i = 0; i < c.shown.size(); ++i)
    if (c.shown[i] == row) return static_cast<int>(i);
  return -1;
}

int RowOf(const Control& c, int item) {
  return item >= 0 && static_cast<size_t>(item) < c.shown.size() ? c.shown[static_cast<size_t>(item)] : -1;
}

void SendEditCommand(Control& c) {
  if (c.model->editCommand != 0)
    SendMessageW(c.owner, WM_COMMAND, MAKEWPARAM(c.model->editCommand, 0), reinterpret_cast<LPARAM>(c.list));
}

int ListFormat(int alignment) {
  if (alignment & QnListView2::AlignHCenter) return LVCFMT_CENTER;
  if (alignment & QnListView2::AlignRight) return LVCFMT_RIGHT;
  return LVCFMT_LEFT;
}

void SyncColumns(Control& c) {
  HWND header = reinterpret_cast<HWND>(SendMessageW(c.list, LVM_GETHEADER, 0, 0));
  int have = header ? static_cast<int>(SendMessageW(header, HDM_GETITEMCOUNT, 0, 0)) : 0;
  const int want = static_cast<int>(c.model->columns.size());
  for (; have > want; --have) SendMessageW(c.list, LVM_DELETECOLUMN, static_cast<WPARAM>(have - 1), 0);
  for (int i = 0; i < want; ++i) {
    const QnListView2Impl::Column& col = c.model->columns[static_cast<size_t>(i)];
    LVCOLUMNW lvc{};
    lvc.mask = LVCF_TEXT | LVCF_WIDTH | LVCF_FMT;
    lvc.pszText = const_cast<wchar_t*>(col.name.c_str());
    lvc.cx = col.shown ? col.width : 0;
    // The first column of a list view is always left-aligned in its header.
    lvc.fmt = i == 0 ? LVCFMT_LEFT : ListFormat(col.alignment);
    if (i < have) SendMessageW(c.list, LVM_SETCOLUMNW, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(&lvc));
    else SendMessageW(c.list, LVM_INSERTCOLUMNW, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(&lvc));
  }
}

void SyncItems(Control& c) {
  c.shown = ShownRows(*c.model);
  int have = static_cast<int>(SendMessageW(c.list, LVM_GETITEMCOUNT, 0, 0));
  const int want = static_cast<int>(c.shown.size());
  SendMessageW(c.list, WM_SETREDRAW, FALSE, 0);
  if (want == 0 && have > 0) {
    SendMessageW(c.list, LVM_DELETEALLITEMS, 0, 0);
    have = 0;
  }
  for (; have > want; --have) SendMessageW(c.list, LVM_DELETEITEM, static_cast<WPARAM>(have - 1), 0);
  if (want > have) SendMessageW(c.list, LVM_SETITEMCOUNT, static_cast<WPARAM>(want), 0);
  for (; have < want; ++have) {
    LVITEMW item{};
    item.mask = LVIF_TEXT;
    item.iItem = have;
    item.pszText = const_cast<wchar_t*>(L"");
    SendMessageW(c.list, LVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&item));
  }
  // The items follow the rows' selection, which moves with the rows.
  for (int i = 0; i < want; ++i) {
    const bool selected = c.model->rows[static_cast<size_t>(c.shown[static_cast<size_t>(i)])].selected;
    const UINT state = static_cast<UINT>(SendMessageW(c.list, LVM_GETITEMSTATE, static_cast<WPARAM>(i), LVIS_SELECTED));
    if (((state & LVIS_SELECTED) != 0) == selected) continue;
    LVITEMW item{};
    item.stateMask = LVIS_SELECTED;
    item.state = selected ? LVIS_SELECTED : 0;
    SendMessageW(c.list, LVM_SETITEMSTATE, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(&item));
  }
  SendMessageW(c.list, WM_SETREDRAW, TRUE, 0);
}

// The sort arrow in the header, on the sort column only.
void SetHeaderArrow(Control& c, int column, QnListView2::SortType type) {
  HWND header = reinterpret_cast<HWND>(SendMessageW(c.list, LVM_GETHEADER, 0, 0));
  const int count = header ? static_cast<int>(SendMessageW(header, HDM_GETITEMCOUNT, 0, 0)) : 0;
  for (int i = 0; i < count; ++i) {
    HDITEMW item{};
    item.mask = HDI_FORMAT;
    SendMessageW(header, HDM_GETITEMW, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(&item));
    item.fmt &= ~(HDF_SORTUP | HDF_SORTDOWN);
    if (i == column) item.fmt |= type == QnListView2::SortAscending ? HDF_SORTUP : HDF_SORTDOWN;
    SendMessageW(header, HDM_SETITEMW, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(&item));
  }
}

void ApplyViewStyle(Control& c) {
  DWORD extended = 0;
  if (c.model->style & QnListView2::FullRowSelect) extended |= LVS_EX_FULLROWSELECT;
  if (c.model->style & QnListView2::HeaderDragDrop) extended |= LVS_EX_HEADERDRAGDROP;
  SendMessageW(c.list, LVM_SETEXTENDEDLISTVIEWSTYLE, LVS_EX_FULLROWSELECT | LVS_EX_HEADERDRAGDROP | LVS_EX_GRIDLINES,
               extended);
}

void CloseEditor(Control& c);

// Brings the control up to the model when it changed.
void Sync(Control& c) {
  if (!c.dirty) return;
  c.dirty = false;
  if (c.editor && !c.model->validCell(c.editRow, c.editColumn)) CloseEditor(c);
  ApplyViewStyle(c);
  SyncColumns(c);
  SyncItems(c);
  if (c.measuredHeight != c.model->rowHeight) {
    c.measuredHeight = c.model->rowHeight;
    // An owner-drawn list asks for its row height when its size changes:
    // one pixel taller and back.
    RECT r;
    GetWindowRect(c.list, &r);
    const UINT flags = SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE;
    SetWindowPos(c.list, nullptr, 0, 0, r.right - r.left, r.bottom - r.top + 1, flags);
    SetWindowPos(c.list, nullptr, 0, 0, r.right - r.left, r.bottom - r.top, flags);
  }
}

// ---- the editor ----

void CloseBalloon(Control& c) {
  if (c.balloon) DestroyWindow(c.balloon);
  c.balloon = nullptr;
}

void CloseEditor(Control& c) {
  if (!c.editor) return;
  HWND editor = c.editor;
  c.closing = true;
  c.editor = nullptr;
  CloseBalloon(c);
  const int row = c.editRow;
  c.editRow = c.editColumn = -1;
  DestroyWindow(editor);
  c.closing = false;
  RedrawRow(*c.model, row);
  if (GetFocus() == nullptr || !IsWindow(GetFocus())) SetFocus(c.list);
}

RECT CellRect(Control& c, int row, int column) {
  RECT rect{};
  const int item = ItemOf(c, row);
  if (item < 0) return rect;
  rect.left = LVIR_BOUNDS;
  SendMessageW(c.list, LVM_GETITEMRECT, static_cast<WPARAM>(item), reinterpret_cast<LPARAM>(&rect));
  const std::vector<Box> boxes = QnListView2ItemDraw::ColumnBoxes(c.list, rect);
  if (column < 0 || static_cast<size_t>(column) >= boxes.size()) return RECT{};
  const Box box = SpanBox(*c.model, row, column, boxes, rect.bottom - rect.top);
  rect = RECT{box.left, box.top, box.right, box.bottom};
  // The text follows the tree indentation and check box, and so does
  // the editor.
  const CellParts parts = SplitCell(*c.model, row, column, box, Metrics());
  if (column == 0 && parts.textBox.left > rect.left) rect.left = parts.textBox.left - 2;
  return rect;
}

void ShowRejection(Control& c, const ustr& message) {
  const ustr title = ValueValidator::InvalidValueTitle();
  EDITBALLOONTIP tip{};
  tip.cbStruct = sizeof(tip);
  tip.pszTitle = title.c_str();
  tip.pszText = message.c_str();
  tip.ttiIcon = TTI_ERROR_LARGE;
  if (SendMessageW(c.editor, EM_SHOWBALLOONTIP, 0, reinterpret_cast<LPARAM>(&tip))) return;
  // Edit fields of the older common controls have no balloon of their
  // own: the same note through a tracking balloon tool tip.
  CloseBalloon(c);
  c.balloon = CreateWindowExW(WS_EX_TOPMOST, TOOLTIPS_CLASSW, nullptr, WS_POPUP | TTS_BALLOON | TTS_NOPREFIX | TTS_ALWAYSTIP,
                              CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, c.editor, nullptr, c.instance,
                              nullptr);
  if (!c.balloon) return;
  TTTOOLINFOW tool{};
  tool.cbSize = sizeof(tool);
  tool.uFlags = TTF_TRACK | TTF_ABSOLUTE | TTF_IDISHWND;
  tool.hwnd = c.editor;
  tool.uId = reinterpret_cast<UINT_PTR>(c.editor);
  tool.lpszText = const_cast<wchar_t*>(message.c_str());
  SendMessageW(c.balloon, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
  SendMessageW(c.balloon, TTM_SETTITLEW, TTI_ERROR_LARGE, reinterpret_cast<LPARAM>(title.c_str()));
  SendMessageW(c.balloon, TTM_SETMAXTIPWIDTH, 0, 400);
  RECT r;
  GetWindowRect(c.editor, &r);
  SendMessageW(c.balloon, TTM_TRACKPOSITION, 0, MAKELPARAM((r.left + r.right) / 2, r.bottom));
  SendMessageW(c.balloon, TTM_TRACKACTIVATE, TRUE, reinterpret_cast<LPARAM>(&tool));
}

// Takes the editor's value into the cell. `enter`: the user pressed
// Enter, so a rejected value keeps the editor open with the note and the
// "next" styles may move it on. Answers false when the editor stays.
bool FinishEdit(Control& c, bool enter) {
  if (!c.editor) return true;
  const int row = c.editRow, column = c.editColumn;
  Commit result = Commit::Unchanged;
  ustr message;
  if (c.editorKind == EditorKind::Combo) {
    const int index = static_cast<int>(SendMessageW(c.editor, CB_GETCURSEL, 0, 0));
    result = CommitChoice(*c.model, row, column, index);
  } else {
    const int length = GetWindowTextLengthW(c.editor);
    std::wstring text(static_cast<size_t>(length) + 1, L'\0');
    GetWindowTextW(c.editor, &text[0], length + 1);
    text.resize(static_cast<size_t>(length));
    result = CommitText(*c.model, row, column, ustr(text), message);
  }
  if (result == Commit::Rejected && enter) {
    ShowRejection(c, message);
    return false;
  }
  CloseEditor(c);
  if (result == Commit::Stored) SendEditCommand(c);
  if (!enter || result == Commit::Rejected) return true;
  int nextRow = row, nextColumn = column;
  if (c.model->validCell(row, column) && NextEditorCell(*c.model, c.shown, nextRow, nextColumn))
    EditCell(*c.model, nextRow, nextColumn);
  return true;
}

LRESULT CALLBACK EditorProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR, DWORD_PTR data) {
  Control& c = *reinterpret_cast<Control*>(data);
  switch (message) {
    case WM_GETDLGCODE:
      // Enter and Escape belong to the editor, not to the dialog's buttons.
      return DLGC_WANTALLKEYS | DefSubclassProc(window, message, wParam, lParam);
    case WM_KEYDOWN:
      if (wParam == VK_RETURN) {
        qt::NoThrowVoid("QnListView2", [&] { FinishEdit(c, true); });
        return 0;
      }
      if (wParam == VK_ESCAPE) {
        CloseEditor(c);
        return 0;
      }
      break;
    case WM_CHAR:
      if (wParam == L'\r' || wParam == 27) return 0;
      // Typing again hides the note about the rejected value.
      CloseBalloon(c);
      break;
    case WM_KILLFOCUS: {
      const HWND to = reinterpret_cast<HWND>(wParam);
      // The combo box's own list and edit take focus without leaving it.
      if (!c.closing && c.editor == window && !(to && IsChild(window, to))) {
        if (c.model->style & QnListView2::AlwaysSave) qt::NoThrowVoid("QnListView2", [&] { FinishEdit(c, false); });
        else CloseEditor(c);
        return 0;
      }
      break;
    }
    case WM_NCDESTROY:
      RemoveWindowSubclass(window, EditorProc, kEditorSubclass);
      break;
    default: break;
  }
  return DefSubclassProc(window, message, wParam, lParam);
}

// ---- clicks on cells ----

bool HitCell(Control& c, POINT point, int& row, int& column) {
  LVHITTESTINFO hit{};
  hit.pt = point;
  const int item = static_cast<int>(SendMessageW(c.list, LVM_SUBITEMHITTEST, 0, reinterpret_cast<LPARAM>(&hit)));
  row = RowOf(c, item >= 0 ? item : hit.iItem);
  column = hit.iSubItem;
  if (row < 0) return false;
  // A spanned cell answers for the cells it covers.
  RECT rect{};
  rect.left = LVIR_BOUNDS;
  SendMessageW(c.list, LVM_GETITEMRECT, static_cast<WPARAM>(ItemOf(c, row)), reinterpret_cast<LPARAM>(&rect));
  const std::vector<Box> boxes = QnListView2ItemDraw::ColumnBoxes(c.list, rect);
  column = -1;
  for (size_t k = 0; k < boxes.size(); ++k)
    if (point.x >= boxes[k].left && point.x < boxes[k].right) column = static_cast<int>(k);
  for (int k = column; k > 0 && CoveredBySpan(*c.model, c.shown, row, k); --k) column = k - 1;
  return c.model->validCell(row, column);
}

bool Inside(const Box& b, POINT p) { return p.x >= b.left && p.x < b.right && p.y >= b.top && p.y < b.bottom; }

// Acts on expander, check box and command cells; true when the click was
// one of those.
bool ClickParts(Control& c, int row, int column, POINT point) {
  QnListView2Impl& m = *c.model;
  RECT rect{};
  rect.left = LVIR_BOUNDS;
  SendMessageW(c.list, LVM_GETITEMRECT, static_cast<WPARAM>(ItemOf(c, row)), reinterpret_cast<LPARAM>(&rect));
  const std::vector<Box> boxes = QnListView2ItemDraw::ColumnBoxes(c.list, rect);
  Metrics metrics;
  metrics.indent = std::max(8, std::min(16, static_cast<int>(rect.bottom - rect.top)));
  const CellParts parts = SplitCell(m, row, column, SpanBox(m, row, column, boxes, rect.bottom - rect.top), metrics);
  QnListView2Impl::Cell& cell = m.rows[static_cast<size_t>(row)].cells[static_cast<size_t>(column)];
  if (parts.expander && Inside(parts.expanderBox, point)) {
    m.rows[static_cast<size_t>(row)].collapsed = !m.rows[static_cast<size_t>(row)].collapsed;
    Refresh(m);
    return true;
  }
  const int style = cell.style | m.rows[static_cast<size_t>(row)].style | m.columns[static_cast<size_t>(column)].style;
  if (parts.check && Inside(parts.checkBox, point)) {
    if (style & QnListView2::CellReadOnly) return true;
    cell.check = cell.check == QnListView2::Checked ? QnListView2::Unchecked : QnListView2::Checked;
    // A parent with checked children follows them.
    const int parent = m.GetParentRow(row);
    if (parent >= 0) m.Update3StateCheck(parent, column);
    InvalidateRect(c.list, nullptr, FALSE);
    SendEditCommand(c);
    return true;
  }
  if ((cell.style & QnListView2::CellButton) && cell.extra && cell.extra->command) {
    SendMessageW(c.owner, WM_COMMAND, MAKEWPARAM(cell.extra->command, BN_CLICKED), reinterpret_cast<LPARAM>(c.list));
    return true;
  }
  return false;
}

void SelectRowFromClick(Control& c, int row, int column) {
  c.model->selectedColumn = column;
  c.model->selectedCellRow = row;
}

LRESULT CALLBACK ListProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR, DWORD_PTR data) {
  Control& c = *reinterpret_cast<Control*>(data);
  switch (message) {
    case WM_LBUTTONDOWN:
    case WM_LBUTTONDBLCLK: {
      qt::NoThrowVoid("QnListView2", [&] { Sync(c); });
      if (c.editor) {
        if (c.model->style & QnListView2::AlwaysSave) qt::NoThrowVoid("QnListView2", [&] { FinishEdit(c, false); });
        else CloseEditor(c);
      }
      POINT point{static_cast<short>(LOWORD(lParam)), static_cast<short>(HIWORD(lParam))};
      int row = -1, column = -1;
      if (!HitCell(c, point, row, column)) break;
      bool handled = false;
      qt::NoThrowVoid("QnListView2", [&] { handled = ClickParts(c, row, column, point); });
      SelectRowFromClick(c, row, column);
      if (handled) {
        // Still selects the row, as any click does.
        LVITEMW item{};
        item.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
        item.state = LVIS_SELECTED | LVIS_FOCUSED;
        const int at = ItemOf(c, row);
        if (at >= 0) {
          if (!(GetKeyState(VK_CONTROL) & 0x8000)) {
            LVITEMW none{};
            none.stateMask = LVIS_SELECTED;
            SendMessageW(window, LVM_SETITEMSTATE, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(&none));
          }
          SendMessageW(window, LVM_SETITEMSTATE, static_cast<WPARAM>(at), reinterpret_cast<LPARAM>(&item));
        }
        return 0;
      }
      if (message == WM_LBUTTONDBLCLK && (c.model->style & QnListView2::EditOnDoubleClick)) {
        bool opened = false;
        qt::NoThrowVoid("QnListView2", [&] { opened = EditCell(*c.model, row, column); });
        if (opened) return 0;
      }
      InvalidateRect(window, nullptr, FALSE);
      break;
    }
    case WM_CHAR:
      qt::NoThrowVoid("QnListView2", [&] { Sync(c); });
      if ((c.model->style & QnListView2::EditOnTyping) && wParam >= 32 && !c.editor) {
        const int row = c.model->selectedCellRow >= 0 && c.model->rows.size() > static_cast<size_t>(c.model->selectedCellRow) &&
                                c.model->rows[static_cast<size_t>(c.model->selectedCellRow)].selected
                            ? c.model->selectedCellRow
                            : RowOf(c, static_cast<int>(SendMessageW(window, LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED)));
        const int column = c.model->selectedColumn >= 0 ? c.model->selectedColumn : 0;
        bool opened = false;
        qt::NoThrowVoid("QnListView2", [&] { opened = EditCell(*c.model, row, column); });
        if (opened) {
          if (c.editorKind == EditorKind::Edit) {
            // The typed character replaces the old text.
            const wchar_t typed[2] = {static_cast<wchar_t>(wParam), 0};
            SetWindowTextW(c.editor, typed);
            SendMessageW(c.editor, EM_SETSEL, 1, 1);
          }
          return 0;
        }
      }
      break;
    case WM_KEYDOWN:
      if (wParam == VK_F2) {
        const int row = RowOf(c, static_cast<int>(SendMessageW(window, LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_FOCUSED)));
        bool opened = false;
        qt::NoThrowVoid("QnListView2", [&] {
          opened = EditCell(*c.model, row, c.model->selectedColumn >= 0 ? c.model->selectedColumn : 0);
        });
        if (opened) return 0;
      }
      break;
    case WM_COMMAND:
      if (c.editor && reinterpret_cast<HWND>(lParam) == c.editor && c.editorKind == EditorKind::Combo) {
        const int code = HIWORD(wParam);
        // A choice made with the mouse (the list closes on it) or Enter.
        if (code == CBN_SELENDOK || (code == CBN_SELCHANGE && !SendMessageW(c.editor, CB_GETDROPPEDSTATE, 0, 0))) {
          qt::NoThrowVoid("QnListView2", [&] { FinishEdit(c, false); });
          return 0;
        }
        if (code == CBN_SELENDCANCEL) return 0;
      }
      break;
    case WM_NOTIFY: {
      const NMHDR* hdr = reinterpret_cast<const NMHDR*>(lParam);
      if (hdr && (hdr->code == HDN_ITEMCHANGEDW || hdr->code == HDN_ITEMCHANGEDA)) {
        const NMHEADERW* nh = reinterpret_cast<const NMHEADERW*>(lParam);
        if (nh->pitem && (nh->pitem->mask & HDI_WIDTH) && c.model->validColumn(nh->iItem) &&
            c.model->columns[static_cast<size_t>(nh->iItem)].shown)
          c.model->columns[static_cast<size_t>(nh->iItem)].width = nh->pitem->cxy;
      }
      if (hdr && (hdr->code == HDN_BEGINTRACKW || hdr->code == HDN_BEGINTRACKA) && c.editor) CloseEditor(c);
      break;
    }
    case WM_VSCROLL:
    case WM_HSCROLL:
    case WM_MOUSEWHEEL:
      if (c.editor) {
        if (c.model->style & QnListView2::AlwaysSave) qt::NoThrowVoid("QnListView2", [&] { FinishEdit(c, false); });
        else CloseEditor(c);
      }
      break;
    case WM_PAINT:
      qt::NoThrowVoid("QnListView2", [&] { Sync(c); });
      break;
    case WM_NCDESTROY: {
      QnListView2Impl* model = c.model;
      Detach(*model);
      return DefSubclassProc(window, message, wParam, lParam);
    }
    default: break;
  }
  return DefSubclassProc(window, message, wParam, lParam);
}

LRESULT CALLBACK OwnerProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR, DWORD_PTR data) {
  Control& c = *reinterpret_cast<Control*>(data);
  if (message == WM_DRAWITEM) {
    const DRAWITEMSTRUCT* item = reinterpret_cast<const DRAWITEMSTRUCT*>(lParam);
    if (item && item->hwndItem == c.list) {
      const int row = RowOf(c, static_cast<int>(item->itemID));
      qt::NoThrowVoid("QnListView2ItemDraw", [&] { c.drawer->DrawRow(*item, row, c.shown); });
      return TRUE;
    }
  } else if (message == WM_MEASUREITEM) {
    MEASUREITEMSTRUCT* item = reinterpret_cast<MEASUREITEMSTRUCT*>(lParam);
    if (item && item->CtlType == ODT_LISTVIEW && item->CtlID == static_cast<UINT>(GetDlgCtrlID(c.list)))
      return OnMeasureItem(*c.model, item);
  } else if (message == WM_NOTIFY) {
    const NMHDR* hdr = reinterpret_cast<const NMHDR*>(lParam);
    if (hdr && hdr->hwndFrom == c.list && hdr->code == LVN_ITEMCHANGED) {
      // The rows keep the selection the user makes in the control.
      const NMLISTVIEW* nm = reinterpret_cast<const NMLISTVIEW*>(lParam);
      if (nm->uChanged & LVIF_STATE) {
        if (nm->iItem == -1) {
          for (int r : c.shown) c.model->rows[static_cast<size_t>(r)].selected = (nm->uNewState & LVIS_SELECTED) != 0;
        } else {
          const int row = RowOf(c, nm->iItem);
          if (row >= 0) c.model->rows[static_cast<size_t>(row)].selected = (nm->uNewState & LVIS_SELECTED) != 0;
        }
      }
    }
  } else if (message == WM_CONTEXTMENU || (message == WM_COMMAND && LOWORD(wParam) >= QNListViewColumnManager::CmdSizeColumnToFit &&
                                             LOWORD(wParam) <= QNListViewColumnManager::CmdFirstColumn)) {
    // The header menu and the commands it posts belong to the grid's
    // column manager; an owner that forwards them too must not see them
    // twice.
    LRESULT result = 0;
    bool handled = false;
    qt::NoThrowVoid("QnListView2", [&] { handled = c.model->manager().DlgProc(window, message, wParam, lParam, &result); });
    if (handled) return result;
  } else if (message == WM_NCDESTROY) {
    Detach(*c.model);
  }
  return DefSubclassProc(window, message, wParam, lParam);
}

}  // namespace

bool Attach(QnListView2Impl& m, HINSTANCE instance, HWND window) {
  Detach(m);
  wchar_t className[64] = {0};
  if (!IsWindow(window) || !GetClassNameW(window, className, 64) || lstrcmpiW(className, WC_LISTVIEWW) != 0) return false;
  if (FromWindow(window)) return false;  // another grid holds it
  HWND owner = GetParent(window);
  if (!owner) return false;
  std::unique_ptr<Control> c(new Control);
  c->model = &m;
  c->list = window;
  c->owner = owner;
  c->instance = instance;
  c->drawer.reset(new QnListView2ItemDraw(m, window));
  if (!SetPropW(window, kModelProperty, c.get())) return false;
  if (!SetWindowSubclass(window, ListProc, kListSubclass, reinterpret_cast<DWORD_PTR>(c.get())) ||
      !SetWindowSubclass(owner, OwnerProc, reinterpret_cast<UINT_PTR>(c.get()), reinterpret_cast<DWORD_PTR>(c.get()))) {
    RemoveWindowSubclass(window, ListProc, kListSubclass);
    RemovePropW(window, kModelProperty);
    return false;
  }
  m.control = c.release();
  Control& control = *m.control;
  control.originalStyle = GetWindowLongPtrW(window, GWL_STYLE);
  control.originalExtendedStyle = static_cast<DWORD>(SendMessageW(window, LVM_GETEXTENDEDLISTVIEWSTYLE, 0, 0));
  LONG_PTR style = control.originalStyle;
  style = (style & ~static_cast<LONG_PTR>(LVS_TYPEMASK | LVS_OWNERDATA)) | LVS_REPORT | LVS_OWNERDRAWFIXED | LVS_SHOWSELALWAYS;
  SetWindowLongPtrW(window, GWL_STYLE, style);
  ApplyViewStyle(control);
  SendMessageW(window, LVM_DELETEALLITEMS, 0, 0);
  Sync(control);
  InvalidateRect(window, nullptr, TRUE);
  return true;
}

void Detach(QnListView2Impl& m) {
  Control* c = m.control;
  if (!c) return;
  CloseEditor(*c);
  RemoveWindowSubclass(c->list, ListProc, kListSubclass);
  RemoveWindowSubclass(c->owner, OwnerProc, reinterpret_cast<UINT_PTR>(c));
  RemovePropW(c->list, kModelProperty);
  // The items were only places for the rows; without the grid nobody
  // would draw them.
  if (IsWindow(c->list)) {
    SendMessageW(c->list, LVM_DELETEALLITEMS, 0, 0);
    SetWindowLongPtrW(c->list, GWL_STYLE, c->originalStyle);
    SendMessageW(c->list, LVM_SETEXTENDEDLISTVIEWSTYLE, static_cast<WPARAM>(-1), c->originalExtendedStyle);
  }
  m.control = nullptr;
  delete c;
}

bool OnNotify(QnListView2Impl& m, WPARAM, LPARAM lParam) {
  Control* c = m.control;
  const NMHDR* hdr = reinterpret_cast<const NMHDR*>(lParam);
  if (!c || !hdr || hdr->hwndFrom != c->list) return false;
  if (hdr->code == LVN_COLUMNCLICK && m.sortableHeader) {
    const NMLISTVIEW* nm = reinterpret_cast<const NMLISTVIEW*>(lParam);
    const int column = nm->iSubItem;
    if (!m.validColumn(column)) return false;
    // A second click on the sort column turns its direction round.
    QnListView2::SortType type = QnListView2::SortAscending;
    if (!m.sortColumns.empty() && m.sortColumns[0] == column && !m.sortTypes.empty() &&
        m.sortTypes[0] == QnListView2::SortAscending)
      type = QnListView2::SortDescending;
    std::vector<int> columns(1, column);
    std::vector<QnListView2::SortType> types(1, type);
    CloseEditor(*c);
    if (!m.Sort(types, columns, m.rowIsLess)) return false;
    SetHeaderArrow(*c, column, type);
    m.sortColumns.swap(columns);
    m.sortTypes.swap(types);
    Refresh(m);
    return true;
  }
  return false;
}

LRESULT OnMeasureItem(QnListView2Impl& m, tagMEASUREITEMSTRUCT* item) {
  if (!item) return 0;
  item->itemHeight = static_cast<UINT>(m.rowHeight);
  return TRUE;
}

void Refresh(QnListView2Impl& m) {
  Control* c = m.control;
  if (!c) return;
  c->dirty = true;
  InvalidateRect(c->list, nullptr, TRUE);
}

void RedrawRow(QnListView2Impl& m, int row) {
  Control* c = m.control;
  if (!c) return;
  Sync(*c);
  const int item = ItemOf(*c, row);
  if (item < 0) return;
  // A row span reaches the rows below, so they are painted again too.
  SendMessageW(c->list, LVM_REDRAWITEMS, static_cast<WPARAM>(item), static_cast<LPARAM>(c->shown.size()) - 1);
  UpdateWindow(c->list);
}

bool EditCell(QnListView2Impl& m, int row, int column) {
  Control* c = m.control;
  if (!c) return false;
  const EditorKind kind = EditorFor(m, row, column);
  if (kind == EditorKind::None) return false;
  CloseEditor(*c);
  if (!m.EnsureVisible(row)) return false;
  c->dirty = true;
  ScrollTo(m, row, column);
  const RECT rect = CellRect(*c, row, column);
  if (rect.right <= rect.left) return false;
  HFONT font = reinterpret_cast<HFONT>(SendMessageW(c->list, WM_GETFONT, 0, 0));
  HWND editor = nullptr;
  if (kind == EditorKind::Combo) {
    // The list drops below the cell; its height is the open list's.
    editor = CreateWindowExW(0, L"COMBOBOX", nullptr, WS_CHILD | WS_VSCROLL | CBS_DROPDOWNLIST | CBS_NOINTEGRALHEIGHT,
                             rect.left, rect.top, rect.right - rect.left, 200, c->list, nullptr, c->instance, nullptr);
    if (!editor) return false;
    SendMessageW(editor, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
    for (const auto& entry : *m.selectionList(row, column))
      SendMessageW(editor, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(entry.first.c_str()));
    SendMessageW(editor, CB_SETCURSEL, static_cast<WPARAM>(ComboIndex(m, row, column)), 0);
  } else {
    const ustr text = EditorText(m, row, column);
    const int alignment = EffectiveAlignment(m, row, column);
    DWORD style = WS_CHILD | WS_BORDER | ES_AUTOHSCROLL;
    if (alignment & QnListView2::AlignRight) style |= ES_RIGHT;
    else if (alignment & QnListView2::AlignHCenter) style |= ES_CENTER;
    editor = CreateWindowExW(0, L"EDIT", text.c_str(), style, rect.left, rect.top, rect.right - rect.left,
                             rect.bottom - rect.top, c->list, nullptr, c->instance, nullptr);
    if (!editor) return false;
    SendMessageW(editor, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
    SendMessageW(editor, EM_SETSEL, 0, -1);
  }
  c->editor = editor;
  c->editorKind = kind;
  c->editRow = row;
  c->editColumn = column;
  SetWindowSubclass(editor, EditorProc, kEditorSubclass, reinterpret_cast<DWORD_PTR>(c));
  ShowWindow(editor, SW_SHOW);
  SetFocus(editor);
  return true;
}

int HeaderItemAt(const QnListView2Impl& m, POINT point) {
  const Control* c = m.control;
  if (!c) return -1;
  HWND header = reinterpret_cast<HWND>(SendMessageW(c->list, LVM_GETHEADER, 0, 0));
  if (!header) return -1;
  HDHITTESTINFO hit{};
  hit.pt = point;
  ScreenToClient(header, &hit.pt);
  RECT client;
  GetClientRect(header, &client);
  if (!PtInRect(&client, hit.pt)) return -1;
  const int item = static_cast<int>(SendMessageW(header, HDM_HITTEST, 0, reinterpret_cast<LPARAM>(&hit)));
  return m.validColumn(item) ? item : -1;
}

bool ScrollTo(QnListView2Impl& m, int row, int column) {
  Control* c = m.control;
  if (!c) return false;
  Sync(*c);
  const int item = ItemOf(*c, row);
  if (item < 0) return false;
  SendMessageW(c->list, LVM_ENSUREVISIBLE, static_cast<WPARAM>(item), FALSE);
  if (column >= 0) {
    RECT rect{};
    rect.left = LVIR_BOUNDS;
    SendMessageW(c->list, LVM_GETITEMRECT, static_cast<WPARAM>(item), reinterpret_cast<LPARAM>(&rect));
    const std::vector<Box> boxes = QnListView2ItemDraw::ColumnBoxes(c->list, rect);
    RECT client;
    GetClientRect(c->list, &client);
    if (static_cast<size_t>(column) < boxes.size()) {
      const Box& b = boxes[static_cast<size_t>(column)];
      int dx = 0;
      if (b.right > client.right) dx = b.right - client.right;
      if (b.left - dx < 0) dx = b.left;
      if (dx) SendMessageW(c->list, LVM_SCROLL, static_cast<WPARAM>(dx), 0);
    }
  }
  return true;
}

HWND ListWindow(const QnListView2Impl& m) { return m.control ? m.control->list : nullptr; }

}  // namespace platform
}  // namespace listview
}  // namespace qt
