// A host window with a list-view control bound to a grid, for the Windows
// tests: the host forwards WM_NOTIFY and WM_MEASUREITEM to the grid as an
// owner does, and records the commands it receives.
#ifndef QUILTOOL_LISTVIEW_WIN_TEST_SUPPORT_H
#define QUILTOOL_LISTVIEW_WIN_TEST_SUPPORT_H

#include <windows.h>

#include <commctrl.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "QnListView2.h"
#include "testsupport/ui_input_win.h"

namespace qt_test {

class GridHost {
 public:
  static const int kListId = 100;

  GridHost(QnListView2& view, int width = 520, int height = 320) : view_(view) {
    INITCOMMONCONTROLSEX init{sizeof(init), ICC_LISTVIEW_CLASSES | ICC_WIN95_CLASSES};
    InitCommonControlsEx(&init);
    WNDCLASSW wc{};
    wc.lpfnWndProc = Proc;
    wc.hInstance = GetModuleHandleW(nullptr);
    wc.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    wc.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_BTNFACE + 1);
    wc.lpszClassName = L"QuilToolGridHost";
    RegisterClassW(&wc);  // a second registration fails harmlessly
    window = CreateWindowExW(0, L"QuilToolGridHost", L"Grid", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 40, 40, width, height,
                             nullptr, nullptr, GetModuleHandleW(nullptr), this);
    RECT client;
    GetClientRect(window, &client);
    list = CreateWindowExW(WS_EX_CLIENTEDGE, WC_LISTVIEWW, L"", WS_CHILD | WS_VISIBLE | WS_TABSTOP | LVS_REPORT,
                           8, 8, client.right - 16, client.bottom - 16, window,
                           reinterpret_cast<HMENU>(static_cast<INT_PTR>(kListId)), GetModuleHandleW(nullptr), nullptr);
    SendMessageW(list, WM_SETFONT, reinterpret_cast<WPARAM>(GetStockObject(DEFAULT_GUI_FONT)), FALSE);
  }
  ~GridHost() {
    view_.Detach();
    if (IsWindow(window)) DestroyWindow(window);
    PumpMessages();
  }

  bool Attach() {
    const bool ok = view_.Attach(GetModuleHandleW(nullptr), list);
    Settle();
    return ok;
  }
  // Lets the control catch up and paint.
  void Settle() {
    UpdateWindow(list);
    PumpMessages(30);
  }

  int ItemCount() const { return static_cast<int>(SendMessageW(list, LVM_GETITEMCOUNT, 0, 0)); }
  HWND Header() const { return reinterpret_cast<HWND>(SendMessageW(list, LVM_GETHEADER, 0, 0)); }
  // The cell's rectangle in the list's client area, from the row's
  // rectangle and the header's column.
  RECT CellRect(int item, int column) const {
    RECT row{};
    row.left = LVIR_BOUNDS;
    SendMessageW(list, LVM_GETITEMRECT, static_cast<WPARAM>(item), reinterpret_cast<LPARAM>(&row));
    RECT head{};
    SendMessageW(Header(), HDM_GETITEMRECT, static_cast<WPARAM>(column), reinterpret_cast<LPARAM>(&head));
    return RECT{row.left + head.left, row.top, row.left + head.right, row.bottom};
  }
  // A point inside the cell's text area, right of any tree part or check box.
  POINT CellPoint(int item, int column) const {
    const RECT r = CellRect(item, column);
    return POINT{r.right - 6, (r.top + r.bottom) / 2};
  }
  HWND Editor(const wchar_t* className) const { return FindChildOfClass(list, className); }
  // How often the owner received this command.
  int Commands(int id) const {
    int n = 0;
    for (int c : commands)
      if (c == id) ++n;
    return n;
  }

  HWND window = nullptr;
  HWND list = nullptr;
  std::vector<int> commands;

 private:
  static LRESULT CALLBACK Proc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_NCCREATE) {
      SetWindowLongPtrW(window, GWLP_USERDATA,
                        reinterpret_cast<LONG_PTR>(reinterpret_cast<CREATESTRUCTW*>(lParam)->lpCreateParams));
    }
    GridHost* host = reinterpret_cast<GridHost*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (host) {
      switch (message) {
        case WM_NOTIFY:
          if (host->view_.OnNotify(wParam, lParam)) return 0;
          break;
        case WM_MEASUREITEM:
          if (host->view_.OnMeasureItem(reinterpret_cast<MEASUREITEMSTRUCT*>(lParam))) return TRUE;
          break;
        case WM_COMMAND:
          host->commands.push_back(LOWORD(wParam));
          return 0;
        default: break;
      }
    }
    return DefWindowProcW(window, message, wParam, lParam);
  }
  QnListView2& view_;
};

// The text and title of a tool tip window.
inline std::wstring ToolTipText(HWND tip) {
  TTTOOLINFOW tool{};
  tool.cbSize = sizeof(tool);
  if (!SendMessageW(tip, TTM_ENUMTOOLSW, 0, reinterpret_cast<LPARAM>(&tool))) return std::wstring();
  wchar_t buffer[512] = {0};
  tool.lpszText = buffer;
  SendMessageW(tip, TTM_GETTEXTW, 512, reinterpret_cast<LPARAM>(&tool));
  return buffer;
}
// Records the title and icon this thread gives a balloon, whether through
// the edit field's EM_SHOWBALLOONTIP or a tool tip's TTM_SETTITLEW.
class BalloonTitleWatch {
 public:
  BalloonTitleWatch() {
    Current() = this;
    hook_ = SetWindowsHookExW(WH_CALLWNDPROC, Hook, nullptr, GetCurrentThreadId());
  }
  ~BalloonTitleWatch() {
    if (hook_) UnhookWindowsHookEx(hook_);
    Current() = nullptr;
  }
  std::wstring title;
  int icon = -1;

 private:
  static LRESULT CALLBACK Hook(int code, WPARAM wParam, LPARAM lParam) {
    const CWPSTRUCT* sent = reinterpret_cast<const CWPSTRUCT*>(lParam);
    BalloonTitleWatch* current_ = Current();
    if (code == HC_ACTION && current_ && sent) {
      if (sent->message == TTM_SETTITLEW && sent->lParam) {
        current_->title = reinterpret_cast<const wchar_t*>(sent->lParam);
        current_->icon = static_cast<int>(sent->wParam);
      } else if (sent->message == EM_SHOWBALLOONTIP && sent->lParam) {
        const EDITBALLOONTIP* tip = reinterpret_cast<const EDITBALLOONTIP*>(sent->lParam);
        current_->title = tip->pszTitle ? tip->pszTitle : L"";
        current_->icon = tip->ttiIcon;
      }
    }
    return CallNextHookEx(nullptr, code, wParam, lParam);
  }
  static BalloonTitleWatch*& Current();
  HHOOK hook_ = nullptr;
};
inline BalloonTitleWatch*& BalloonTitleWatch::Current() {
  static BalloonTitleWatch* watch = nullptr;
  return watch;
}

}  // namespace qt_test

#endif
