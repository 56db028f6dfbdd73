// The column manager on a real list-view control under Wine: a right click
// on the header opens the real pop-up menu, a click on an entry hides the
// column, and the layout comes back from the registry in a new window.
// ctest: RESOURCE_LOCK desktop
#include <windows.h>
#include <commctrl.h>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "QNListViewColumnManager.h"
#include "QnListView2.h"
#include "listview/listview_win_test_support.h"
#include "qt_test_win.h"
#include "screenshot_win.h"
#include "settings/reg_test_util.h"

namespace {

const int kListId = 100;

// A top-level window holding a report-view list with three columns; it
// forwards the messages the manager asks for, as an owner does.
class ListWindow {
 public:
  ListWindow() {
    INITCOMMONCONTROLSEX icc = {sizeof(icc), ICC_LISTVIEW_CLASSES};
    InitCommonControlsEx(&icc);
    static bool registered = false;
    if (!registered) {
      WNDCLASSW wc = {};
      wc.lpfnWndProc = &ListWindow::Proc;
      wc.hInstance = GetModuleHandleW(nullptr);
      wc.lpszClassName = L"QtColMgrTestWindow";
      wc.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_BTNFACE + 1);
      RegisterClassW(&wc);
      registered = true;
    }
    frame = CreateWindowExW(0, L"QtColMgrTestWindow", L"Columns", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 40, 40, 420, 220,
                            nullptr, nullptr, GetModuleHandleW(nullptr), this);
    list = CreateWindowExW(0, WC_LISTVIEWW, L"", WS_CHILD | WS_VISIBLE | WS_BORDER | LVS_REPORT, 8, 8, 390, 160, frame,
                           reinterpret_cast<HMENU>(static_cast<INT_PTR>(kListId)), GetModuleHandleW(nullptr), nullptr);
    const wchar_t* names[] = {L"Name", L"Flow [l/s]", L"Size"};
    for (int i = 0; i < 3; ++i) {
      LVCOLUMNW c = {};
      c.mask = LVCF_TEXT | LVCF_WIDTH;
      c.pszText = const_cast<wchar_t*>(names[i]);
      c.cx = 100 + 10 * i;
      SendMessageW(list, LVM_INSERTCOLUMNW, i, reinterpret_cast<LPARAM>(&c));
    }
    const wchar_t* row[] = {L"AHU 1", L"1250.00", L"400"};
    LVITEMW item = {};
    item.mask = LVIF_TEXT;
    item.pszText = const_cast<wchar_t*>(row[0]);
    SendMessageW(list, LVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&item));
    for (int i = 1; i < 3; ++i) {
      item.iSubItem = i;
      item.pszText = const_cast<wchar_t*>(row[i]);
      SendMessageW(list, LVM_SETITEMTEXTW, 0, reinterpret_cast<LPARAM>(&item));
    }
    manager.Attach(Lng::APP_HPV, list, 0);
    SetForegroundWindow(frame);
    Pump();
  }
  ~ListWindow() { DestroyWindow(frame); }

  static void Pump(int rounds = 5) {
    MSG msg;
    for (int i = 0; i < rounds; ++i) {
      while (PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE)) {
        TranslateMessage(&msg);
        DispatchMessageW(&msg);
      }
      Sleep(20);
    }
  }
  int Width(int column) { return static_cast<int>(SendMessageW(list, LVM_GETCOLUMNWIDTH, column, 0)); }
  // Screen point in the middle of a header item.
  POINT HeaderPoint(int column) {
    HWND header = reinterpret_cast<HWND>(SendMessageW(list, LVM_GETHEADER, 0, 0));
    RECT r = {};
    SendMessageW(header, HDM_GETITEMRECT, column, reinterpret_cast<LPARAM>(&r));
    POINT p = {(r.left + r.right) / 2, (r.top + r.bottom) / 2};
    ClientToScreen(header, &p);
    return p;
  }

  HWND frame = nullptr;
  HWND list = nullptr;
  QNListViewColumnManagerImpl manager;
  int commands = 0;

 private:
  static LRESULT CALLBACK Proc(HWND w, UINT msg, WPARAM wp, LPARAM lp) {
    if (msg == WM_NCCREATE) {
      SetWindowLongPtrW(w, GWLP_USERDATA,
                        reinterpret_cast<LONG_PTR>(reinterpret_cast<CREATESTRUCTW*>(lp)->lpCreateParams));
    }
    ListWindow* self = reinterpret_cast<ListWindow*>(GetWindowLongPtrW(w, GWLP_USERDATA));
    LRESULT result = 0;
    if (self && self->list) {
      if (msg == WM_COMMAND) ++self->commands;
      if (self->manager.DlgProc(w, msg, wp, lp, &result)) return result;
    }
    return DefWindowProcW(w, msg, wp, lp);
  }
};

void MouseAt(POINT screen, DWORD down, DWORD up) {
  const int cx = GetSystemMetrics(SM_CXSCREEN) - 1, cy = GetSystemMetrics(SM_CYSCREEN) - 1;
  INPUT in[3] = {};
  for (INPUT& i : in) {
    i.type = INPUT_MOUSE;
    i.mi.dx = screen.x * 65535 / cx;
    i.mi.dy = screen.y * 65535 / cy;
  }
  in[0].mi.dwFlags = MOUSEEVENTF_MOVE | MOUSEEVENTF_ABSOLUTE;
  in[1].mi.dwFlags = down | MOUSEEVENTF_ABSOLUTE;
  in[2].mi.dwFlags = up | MOUSEEVENTF_ABSOLUTE;
  SendInput(3, in, sizeof(INPUT));
}

// Waits for this process's pop-up menu, optionally takes its picture, and
// clicks the entry with that text (nothing: closes the menu).
std::thread PickFromPopup(const wchar_t* entry, const char* screenshot, std::atomic<bool>* found) {
  return std::thread([=] {
    for (int i = 0; i < 200; ++i) {
      HWND popup = qt_test::FindOwnWindow(L"#32768", nullptr);
      if (!popup || !IsWindowVisible(popup)) {
        Sleep(25);
        continue;
      }
      Sleep(150);
      HMENU menu = reinterpret_cast<HMENU>(SendMessageW(popup, MN_GETHMENU, 0, 0));
      if (screenshot && qt_test::ScreenshotsWanted()) {
        HWND owner = GetWindow(popup, GW_OWNER);
        RECT a, b, u;
        GetWindowRect(popup, &a);
        GetWindowRect(owner ? owner : popup, &b);
        UnionRect(&u, &a, &b);
        qt_test::SaveScreenshot(u, screenshot);
      }
      const int count = GetMenuItemCount(menu);
      for (int k = 0; k < count; ++k) {
        wchar_t text[128] = L"";
        GetMenuStringW(menu, k, text, 128, MF_BYPOSITION);
        if (entry && lstrcmpW(text, entry) == 0) {
          RECT r;
          GetMenuItemRect(nullptr, menu, k, &r);
          *found = true;
          MouseAt(POINT{(r.left + r.right) / 2, (r.top + r.bottom) / 2}, MOUSEEVENTF_LEFTDOWN, MOUSEEVENTF_LEFTUP);
          return;
        }
      }
      PostMessageW(popup, WM_KEYDOWN, VK_ESCAPE, 0);
      return;
    }
  });
}

class RealHeaderMenu : public reg_test::AppKeyTest {};

TEST_F(RealHeaderMenu, RightClickOnTheHeaderAndPickingAColumnHidesIt) {
  ListWindow w;
  std::atomic<bool> found{false};
  std::thread picker = PickFromPopup(L"Flow [l/s]", nullptr, &found);
  MouseAt(w.HeaderPoint(1), MOUSEEVENTF_RIGHTDOWN, MOUSEEVENTF_RIGHTUP);
  for (int i = 0; i < 100 && !w.manager.IsColumnHidden(1); ++i) ListWindow::Pump(1);
  picker.join();
  ListWindow::Pump();
  ASSERT_TRUE(found.load());
  EXPECT_TRUE(w.manager.IsColumnHidden(1));
  EXPECT_EQ(0, w.Width(1));
  EXPECT_EQ(110, w.manager.RememberedWidth(1));
  EXPECT_GE(w.commands, 1);  // the choice reached the owner as a command
}

TEST_F(RealHeaderMenu, LayoutComesBackFromTheRegistryInANewWindow) {
  const std::wstring key = L"Layouts\\Ducts";
  {
    ListWindow w;
    w.manager.ShowHideColumn(2, false);
    ASSERT_TRUE(w.manager.SetColumnOrderIndex(1, 0));
    SendMessageW(w.list, LVM_SETCOLUMNWIDTH, 0, 140);
    ASSERT_TRUE(w.manager.SaveToRegistry(key.c_str()));
  }
  ListWindow again;
  EXPECT_TRUE(again.manager.LoadFromRegistry(key.c_str(), true));
  EXPECT_EQ(140, again.Width(0));
  EXPECT_EQ(0, again.Width(2));
  EXPECT_TRUE(again.manager.IsColumnHidden(2));
  EXPECT_EQ((std::vector<int>{1, 0, 2}), again.manager.GetColumnOrder());
  EXPECT_TRUE(again.manager.ShowHideColumn(2, true));
  EXPECT_EQ(120, again.Width(2));
}

TEST_F(RealHeaderMenu, ScreenshotOfTheHeaderMenuOverAList) {
  ListWindow w;
  w.manager.SetAutoScaling(false);
  std::atomic<bool> found{false};
  std::thread picker = PickFromPopup(nullptr, "header_menu_open_over_a_list", &found);
  MouseAt(w.HeaderPoint(0), MOUSEEVENTF_RIGHTDOWN, MOUSEEVENTF_RIGHTUP);
  for (int i = 0; i < 40; ++i) ListWindow::Pump(1);
  picker.join();
  ListWindow::Pump();
  // Dismissed: nothing changed.
  EXPECT_FALSE(w.manager.IsColumnHidden(0));
  EXPECT_EQ(100, w.Width(0));
}

// A grid of three columns with LParams 1..3 and two rows.
void FillGrid(QnListView2& view) {
  view.AddColumn(L"Name", 140, QnListView2::AlignDefault, 1);
  view.AddColumn(L"Flow [l/s]", 90, QnListView2::AlignRight, 2);
  view.AddColumn(L"Size", 80, QnListView2::AlignRight, 3);
  for (int r = 0; r < 2; ++r) {
    view.AddRow(r);
    view.SetCell(r, 0, ustr(r ? L"AHU 2" : L"AHU 1"));
    view.SetCell(r, 1, 1250.5 + r, 2);
    view.SetCell(r, 2, 400 + 100 * r);
  }
}

// Waits for the "Choose columns" dialog, takes its picture, unchecks the
// row of the named column by clicking its check box and presses OK.
std::thread UncheckInChooser(int row, std::atomic<bool>* done) {
  return std::thread([=] {
    for (int i = 0; i < 200; ++i) {
      HWND dialog = qt_test::FindOwnWindow(L"#32770", L"Choose columns");
      if (!dialog || !IsWindowVisible(dialog)) {
        Sleep(25);
        continue;
      }
      Sleep(300);
      HWND list = GetDlgItem(dialog, 100);
      if (qt_test::ScreenshotsWanted()) qt_test::SaveWindowScreenshot(dialog, "choose_columns_dialog");
      RECT cell = {};
      cell.left = LVIR_BOUNDS;
      SendMessageW(list, LVM_GETITEMRECT, row, reinterpret_cast<LPARAM>(&cell));
      HWND header = reinterpret_cast<HWND>(SendMessageW(list, LVM_GETHEADER, 0, 0));
      RECT head = {};
      SendMessageW(header, HDM_GETITEMRECT, 0, reinterpret_cast<LPARAM>(&head));
      // The check box leads the "Show" cell: a small gap, then 13 pixels.
      const LPARAM at = MAKELPARAM(head.left + 8, (cell.top + cell.bottom) / 2);
      SendMessageW(list, WM_LBUTTONDOWN, MK_LBUTTON, at);
      SendMessageW(list, WM_LBUTTONUP, 0, at);
      Sleep(100);
      PostMessageW(dialog, WM_COMMAND, IDOK, reinterpret_cast<LPARAM>(GetDlgItem(dialog, IDOK)));
      *done = true;
      return;
    }
  });
}

class GridColumns : public reg_test::AppKeyTest {};

TEST_F(GridColumns, HeaderMenuHidesAColumnAndTheLayoutComesBackInANewWindow) {
  const std::wstring key = L"Layouts\\Grid";
  {
    QnListView2 view;
    FillGrid(view);
    qt_test::GridHost host(view);
    ASSERT_TRUE(host.Attach());
    SetForegroundWindow(host.window);
    std::atomic<bool> found{false};
    std::thread picker = PickFromPopup(L"Flow [l/s]", nullptr, &found);
    RECT item;
    SendMessageW(host.Header(), HDM_GETITEMRECT, 1, reinterpret_cast<LPARAM>(&item));
    POINT p = qt_test::CenterOf(item);
    ClientToScreen(host.Header(), &p);
    MouseAt(p, MOUSEEVENTF_RIGHTDOWN, MOUSEEVENTF_RIGHTUP);
    for (int i = 0; i < 100 && !view.GetColumnManager()->IsColumnHidden(1); ++i) qt_test::PumpMessages(20);
    picker.join();
    ASSERT_TRUE(found.load());
    EXPECT_TRUE(view.GetColumnManager()->IsColumnHidden(1));
    EXPECT_FALSE(view.IsColumnShown(1));
    EXPECT_EQ(0, static_cast<int>(SendMessageW(host.list, LVM_GETCOLUMNWIDTH, 1, 0)));

    ASSERT_TRUE(view.GetColumnManager()->SetColumnOrderIndex(2, 0));
    ASSERT_TRUE(view.SaveColumnsToRegistry(key.c_str()));
  }
  QnListView2 again;
  FillGrid(again);
  qt_test::GridHost host(again);
  ASSERT_TRUE(host.Attach());
  ASSERT_TRUE(again.LoadColumnsFromRegistry(key.c_str()));
  host.Settle();
  QNListViewColumnManager* m = again.GetColumnManager();
  EXPECT_TRUE(m->IsColumnHidden(1));
  EXPECT_EQ(0, static_cast<int>(SendMessageW(host.list, LVM_GETCOLUMNWIDTH, 1, 0)));
  EXPECT_EQ((std::vector<int>{2, 0, 1}), m->GetColumnOrder());
  std::vector<int> shown(3);
  SendMessageW(host.list, LVM_GETCOLUMNORDERARRAY, 3, reinterpret_cast<LPARAM>(shown.data()));
  EXPECT_EQ((std::vector<int>{2, 0, 1}), shown) << "the control shows the saved order";
  EXPECT_TRUE(again.ShowHideColumn(1, true));
  EXPECT_EQ(90, static_cast<int>(SendMessageW(host.list, LVM_GETCOLUMNWIDTH, 1, 0)));
}

TEST_F(GridColumns, ScreenshotOfTheChooserWhoseChoicesHideAColumn) {
  QnListView2 view;
  FillGrid(view);
  qt_test::GridHost host(view);
  ASSERT_TRUE(host.Attach());
  std::atomic<bool> done{false};
  std::thread user = UncheckInChooser(2, &done);
  // The owner receives "More..." as the menu would post it.
  SendMessageW(host.window, WM_COMMAND, QNListViewColumnManager::CmdMore, 0);
  user.join();
  host.Settle();
  EXPECT_TRUE(done.load());
  EXPECT_TRUE(view.GetColumnManager()->IsColumnHidden(2));
  EXPECT_EQ(80, view.GetColumnManager()->RememberedWidth(2));
  EXPECT_FALSE(view.GetColumnManager()->IsColumnHidden(0));
}

}  // namespace
