#include <windows.h>
#include <commctrl.h>

#include <cwchar>
#include <string>

#include "Registry.h"
#include "core/frame_state.h"
#include "reports/report_resource.h"
#include "reports/report_window_platform.h"

namespace qt {
namespace report {
namespace platform {

namespace {

const wchar_t kDialogProp[] = L"QuilToolReportDialog";

struct Running {
  SimpleReportOuputDlg* dialog;
  SimpleReportOuputDlg::Impl* impl;
};

Running* RunningOf(HWND window) { return static_cast<Running*>(GetPropW(window, kDialogProp)); }

void SetMenuTexts(HWND window) {
  HMENU file = CreatePopupMenu();
  AppendMenuW(file, MF_STRING, SimpleReportOuputDlg::CmdSaveText, MenuText(SimpleReportOuputDlg::CmdSaveText).c_str());
  AppendMenuW(file, MF_STRING, SimpleReportOuputDlg::CmdSaveExcel, MenuText(SimpleReportOuputDlg::CmdSaveExcel).c_str());
  AppendMenuW(file, MF_SEPARATOR, 0, nullptr);
  AppendMenuW(file, MF_STRING, SimpleReportOuputDlg::CmdExit, MenuText(SimpleReportOuputDlg::CmdExit).c_str());
  HMENU edit = CreatePopupMenu();
  AppendMenuW(edit, MF_STRING, SimpleReportOuputDlg::CmdCopy, MenuText(SimpleReportOuputDlg::CmdCopy).c_str());
  HMENU bar = CreateMenu();
  AppendMenuW(bar, MF_POPUP, reinterpret_cast<UINT_PTR>(file), FileMenuText().c_str());
  AppendMenuW(bar, MF_POPUP, reinterpret_cast<UINT_PTR>(edit), EditMenuText().c_str());
  SetMenu(window, bar);  // destroyed with the window
}

void SetTexts(HWND window) {
  SetWindowTextW(window, TitleText().c_str());
  const int buttons[] = {SimpleReportOuputDlg::CmdCopy, SimpleReportOuputDlg::CmdSaveText,
                         SimpleReportOuputDlg::CmdSaveExcel, SimpleReportOuputDlg::CmdZoomApply,
                         SimpleReportOuputDlg::CmdClose};
  for (int id : buttons) SetDlgItemTextW(window, id, ButtonText(id).c_str());
  SetDlgItemTextW(window, IDC_REPORT_ZOOM_LABEL, ZoomLabelText().c_str());
}

// While the grid cannot bind to the list control, the control shows the
// texts itself, so that the window is never empty.
void FillPlainList(HWND list, SimpleReportOuputDlg::Impl& impl) {
  ListView_SetExtendedListViewStyle(list, LVS_EX_FULLROWSELECT | LVS_EX_GRIDLINES);
  QnListView2& grid = impl.list;
  const int columns = grid.GetColumnCount();
  for (int c = 0; c < columns; ++c) {
    std::wstring title = grid.GetColumnName(c).str();
    for (wchar_t& ch : title) {
      if (ch == L'\n') ch = L' ';
    }
    LVCOLUMNW column = {};
    column.mask = LVCF_TEXT | LVCF_WIDTH | LVCF_SUBITEM | LVCF_FMT;
    column.fmt = LVCFMT_LEFT;
    column.cx = grid.GetColumnWidth(c);
    column.pszText = &title[0];
    column.iSubItem = c;
    SendMessageW(list, LVM_INSERTCOLUMNW, c, reinterpret_cast<LPARAM>(&column));
  }
  const int rows = grid.GetRowCount();
  for (int r = 0; r < rows; ++r) {
    for (int c = 0; c < columns; ++c) {
      std::wstring text = grid.GetCellText(r, c).str();
      for (wchar_t& ch : text) {
        if (ch == L'\n' || ch == L'\r') ch = L' ';
      }
      LVITEMW item = {};
      item.mask = LVIF_TEXT;
      item.iItem = r;
      item.iSubItem = c;
      item.pszText = &text[0];
      SendMessageW(list, c == 0 ? LVM_INSERTITEMW : LVM_SETITEMTEXTW, c == 0 ? 0 : r, reinterpret_cast<LPARAM>(&item));
    }
  }
}

// The list takes what the buttons leave; the buttons keep their sizes and
// sit along the bottom edge.
void Layout(HWND window) {
  RECT client;
  GetClientRect(window, &client);
  HWND close = GetDlgItem(window, IDCANCEL);
  RECT closeRect;
  GetWindowRect(close, &closeRect);
  MapWindowPoints(nullptr, window, reinterpret_cast<POINT*>(&closeRect), 2);
  const int margin = 10;
  const int buttonHeight = closeRect.bottom - closeRect.top;
  const int buttonTop = client.bottom - margin - buttonHeight;
  const int ids[] = {IDC_REPORT_COPY, IDC_REPORT_SAVE_TEXT, IDC_REPORT_SAVE_EXCEL, IDC_REPORT_ZOOM_LABEL,
                     IDC_REPORT_ZOOM, IDC_REPORT_ZOOM_APPLY};
  HDWP positions = BeginDeferWindowPos(8);
  for (int id : ids) {
    HWND child = GetDlgItem(window, id);
    RECT r;
    GetWindowRect(child, &r);
    MapWindowPoints(nullptr, window, reinterpret_cast<POINT*>(&r), 2);
    const int height = r.bottom - r.top;
    positions = DeferWindowPos(positions, child, nullptr, r.left, buttonTop + (buttonHeight - height) / 2, 0, 0,
                               SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
  }
  const int closeWidth = closeRect.right - closeRect.left;
  positions = DeferWindowPos(positions, close, nullptr, client.right - margin - closeWidth, buttonTop, 0, 0,
                             SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
  positions = DeferWindowPos(positions, GetDlgItem(window, IDC_REPORT_LIST), nullptr, margin, margin,
                             client.right - 2 * margin, buttonTop - 2 * margin, SWP_NOZORDER | SWP_NOACTIVATE);
  EndDeferWindowPos(positions);
}

void InitWindow(HWND window, Running* running) {
  SimpleReportOuputDlg::Impl& impl = *running->impl;
  impl.window = window;
  SetPropW(window, kDialogProp, running);
  SetMenuTexts(window);
  SetTexts(window);
  SetDlgItemInt(window, IDC_REPORT_ZOOM, static_cast<UINT>(impl.zoom), FALSE);
  HWND list = GetDlgItem(window, IDC_REPORT_LIST);
  impl.listAttached = impl.list.Attach(qt::Frame().instance, list);
  if (!impl.listAttached) FillPlainList(list, impl);
  RECT rect;
  int show = SW_SHOWNORMAL;
  Reg_GetWindowPos(nullptr, kWindowPosName, window, &rect, &show, true);
  Layout(window);
  if (impl.zoom != 100) ApplyZoom(impl);
  impl.callback->OnInitDialog(*running->dialog);
}

INT_PTR CALLBACK DialogProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  Running* running = message == WM_INITDIALOG ? reinterpret_cast<Running*>(lParam) : RunningOf(window);
  if (!running) return FALSE;
  switch (message) {
    case WM_INITDIALOG:
      InitWindow(window, running);
      return TRUE;
    case WM_SIZE:
      Layout(window);
      return TRUE;
    case WM_GETMINMAXINFO: {
      MINMAXINFO* info = reinterpret_cast<MINMAXINFO*>(lParam);
      info->ptMinTrackSize.x = 560;
      info->ptMinTrackSize.y = 240;
      return TRUE;
    }
    case WM_COMMAND:
      // A click, a menu item or an accelerator; edit-field notifications
      // are no commands.
      if (HIWORD(wParam) == BN_CLICKED || lParam == 0) running->dialog->RunCommand(LOWORD(wParam));
      return TRUE;
    case WM_NOTIFY: {
      LRESULT result = 0;
      if (running->impl->list.OnNotify(wParam, lParam)) {
        SetWindowLongPtrW(window, DWLP_MSGRESULT, result);
        return TRUE;
      }
      return FALSE;
    }
    case WM_NCDESTROY:
      RemovePropW(window, kDialogProp);
      running->impl->list.Detach();
      running->impl->window = nullptr;
      return FALSE;
    default:
      return FALSE;
  }
}

}  // namespace

bool RunWindow(SimpleReportOuputDlg& dialog, SimpleReportOuputDlg::Impl& impl, HWND parent) {
  INITCOMMONCONTROLSEX controls = {sizeof controls, ICC_LISTVIEW_CLASSES};
  InitCommonControlsEx(&controls);
  Running running = {&dialog, &impl};
  const INT_PTR result = DialogBoxParamW(qt::Frame().instance, MAKEINTRESOURCEW(IDD_REPORT_OUTPUT), parent,
                                         &DialogProc, reinterpret_cast<LPARAM>(&running));
  return result != -1 && result != 0;
}

void EndWindow(SimpleReportOuputDlg::Impl& impl) {
  if (!impl.window) return;
  Reg_SetWindowPos(nullptr, kWindowPosName, impl.window);
  EndDialog(impl.window, IDOK);
}

void ApplyZoom(SimpleReportOuputDlg::Impl& impl) {
  if (!impl.window) return;
  SetDlgItemInt(impl.window, IDC_REPORT_ZOOM, static_cast<UINT>(impl.zoom), FALSE);
  HWND list = GetDlgItem(impl.window, IDC_REPORT_LIST);
  HFONT base = reinterpret_cast<HFONT>(SendMessageW(impl.window, WM_GETFONT, 0, 0));
  LOGFONTW font = {};
  if (!base || !GetObjectW(base, sizeof font, &font)) return;
  font.lfHeight = MulDiv(font.lfHeight, impl.zoom, 100);
  HFONT zoomed = CreateFontIndirectW(&font);
  if (!zoomed) return;
  SendMessageW(list, WM_SETFONT, reinterpret_cast<WPARAM>(zoomed), TRUE);
  ReleaseZoom(impl);
  impl.zoomFont = zoomed;
  if (!impl.listAttached) {
    // The plain list keeps its column widths; they grow with the text.
    const int columns = impl.list.GetColumnCount();
    for (int c = 0; c < columns; ++c) ListView_SetColumnWidth(list, c, MulDiv(impl.list.GetColumnWidth(c), impl.zoom, 100));
  }
}

int ReadZoomField(SimpleReportOuputDlg::Impl& impl) {
  if (!impl.window) return impl.zoom;
  BOOL ok = FALSE;
  const UINT value = GetDlgItemInt(impl.window, IDC_REPORT_ZOOM, &ok, FALSE);
  return ok && value <= 100000 ? static_cast<int>(value) : -1;
}

void ReleaseZoom(SimpleReportOuputDlg::Impl& impl) {
  if (impl.zoomFont) DeleteObject(static_cast<HFONT>(impl.zoomFont));
  impl.zoomFont = nullptr;
}

}  // namespace platform
}  // namespace report
}  // namespace qt
