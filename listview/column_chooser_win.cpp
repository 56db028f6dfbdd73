#include "listview/column_chooser_win.h"

#include <windows.h>
#include <commctrl.h>

#include <cwchar>

#include "QnListView2.h"
#include "Registry.h"

namespace qt {
namespace listview {

namespace {

const int kListId = 100;
const wchar_t kPositionName[] = L"Window/ListViewColMgr";

struct Chooser {
  std::vector<QnColumnChoice>* choices;
  QnListView2 grid;
};

// A dialog template in memory: the list, OK and Cancel. Words must stay
// DWORD-aligned per item, which the helper takes care of.
class TemplateWriter {
 public:
  void word(WORD w) { data_.push_back(w); }
  void dword(DWORD d) {
    word(LOWORD(d));
    word(HIWORD(d));
  }
  void text(const wchar_t* s) {
    do word(static_cast<WORD>(*s)); while (*s++);
  }
  void align() {
    if (data_.size() % 2) word(0);
  }
  void item(DWORD style, short x, short y, short cx, short cy, WORD id, const wchar_t* cls, const wchar_t* title) {
    align();
    dword(style | WS_CHILD | WS_VISIBLE);
    dword(0);
    word(static_cast<WORD>(x));
    word(static_cast<WORD>(y));
    word(static_cast<WORD>(cx));
    word(static_cast<WORD>(cy));
    word(id);
    text(cls);
    text(title);
    word(0);
  }
  DLGTEMPLATE* get() { return reinterpret_cast<DLGTEMPLATE*>(data_.data()); }
  std::vector<WORD> data_;
};

void Fill(Chooser& c) {
  QnListView2& g = c.grid;
  g.AddColumn(L"Show", 50);
  g.AddColumn(L"Name", 150);
  g.AddColumn(L"Width", 60, QnListView2::AlignRight);
  g.SetColumnStyle(0, QnListView2::CellCheckBox, QnListView2::CellCheckBox);
  g.SetColumnStyle(1, QnListView2::CellReadOnly, QnListView2::CellReadOnly);
  // Widths are typed in place; leaving the field keeps what was typed.
  const int editing = QnListView2::EditOnDoubleClick | QnListView2::EditOnTyping | QnListView2::AlwaysSave |
                      QnListView2::EditNextRowOnEnter | QnListView2::FullRowSelect;
  g.SetStyle(editing, editing);
  for (const QnColumnChoice& choice : *c.choices) {
    const int row = g.AddRow(choice.column);
    g.SetCellCheck(row, 0, choice.shown ? QnListView2::Checked : QnListView2::Unchecked, false);
    g.SetCell(row, 1, choice.name, 0, false);
    g.SetCell(row, 2, choice.width, false);
  }
}

void ReadBack(Chooser& c) {
  QnListView2& g = c.grid;
  for (size_t i = 0; i < c.choices->size(); ++i) {
    const int row = static_cast<int>(i);
    (*c.choices)[i].shown = g.GetCellCheck(row, 0) == QnListView2::Checked;
    int width = 0;
    if (g.GetCell(row, 2, width) && width >= 0) (*c.choices)[i].width = width;
  }
}

INT_PTR CALLBACK ChooserProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
  Chooser* c = reinterpret_cast<Chooser*>(GetWindowLongPtrW(dialog, DWLP_USER));
  switch (message) {
    case WM_INITDIALOG: {
      c = reinterpret_cast<Chooser*>(lParam);
      SetWindowLongPtrW(dialog, DWLP_USER, lParam);
      Fill(*c);
      c->grid.Attach(reinterpret_cast<HINSTANCE>(GetWindowLongPtrW(dialog, GWLP_HINSTANCE)),
                     GetDlgItem(dialog, kListId));
      RECT r;
      int show = SW_SHOWNORMAL;
      if (Reg_GetWindowPos(nullptr, kPositionName, dialog, &r, &show, true)) {
        SetWindowPos(dialog, nullptr, r.left, r.top, r.right - r.left, r.bottom - r.top, SWP_NOZORDER);
      }
      return TRUE;
    }
    case WM_MEASUREITEM:
      if (c && wParam == kListId) {
        SetWindowLongPtrW(dialog, DWLP_MSGRESULT,
                          c->grid.OnMeasureItem(reinterpret_cast<MEASUREITEMSTRUCT*>(lParam)));
        return TRUE;
      }
      return FALSE;
    case WM_NOTIFY:
      if (c && c->grid.OnNotify(wParam, lParam)) return TRUE;
      return FALSE;
    case WM_COMMAND:
      if (LOWORD(wParam) == IDOK || LOWORD(wParam) == IDCANCEL) {
        if (c) {
          if (LOWORD(wParam) == IDOK) ReadBack(*c);
          Reg_SetWindowPos(nullptr, kPositionName, dialog);
          c->grid.Detach();
        }
        EndDialog(dialog, LOWORD(wParam));
        return TRUE;
      }
      return FALSE;
    default:
      return FALSE;
  }
}

}  // namespace

bool RunColumnChooser(HWND owner, const wchar_t* title, std::vector<QnColumnChoice>& choices) {
  TemplateWriter t;
  t.dword(DS_MODALFRAME | DS_SETFONT | WS_POPUP | WS_CAPTION | WS_SYSMENU | WS_THICKFRAME);
  t.dword(0);
  t.word(3);  // items
  t.word(0);
  t.word(0);
  t.word(220);
  t.word(180);
  t.word(0);  // no menu
  t.word(0);  // standard class
  t.text(title ? title : L"");
  t.word(8);
  t.text(L"MS Shell Dlg");
  t.item(WS_BORDER | WS_TABSTOP | LVS_REPORT | LVS_SINGLESEL | LVS_SHOWSELALWAYS | LVS_OWNERDRAWFIXED, 7, 7, 206, 144,
         kListId, L"SysListView32", L"");
  t.item(BS_DEFPUSHBUTTON | WS_TABSTOP, 109, 158, 50, 14, IDOK, L"Button", L"OK");
  t.item(BS_PUSHBUTTON | WS_TABSTOP, 163, 158, 50, 14, IDCANCEL, L"Button", L"Cancel");
  Chooser chooser;
  chooser.choices = &choices;
  INITCOMMONCONTROLSEX icc = {sizeof(icc), ICC_LISTVIEW_CLASSES};
  InitCommonControlsEx(&icc);
  const INT_PTR result = DialogBoxIndirectParamW(GetModuleHandleW(nullptr), t.get(), owner, ChooserProc,
                                                 reinterpret_cast<LPARAM>(&chooser));
  return result == IDOK;
}

}  // namespace listview
}  // namespace qt
