// The grid bound to a real list-view control under Wine, driven with the
// clicks, typing and keys a user gives, and read back through the model
// and the commands the owner receives.
// ctest: RESOURCE_LOCK desktop
#include <gtest/gtest.h>

#include "listview/listview_win_test_support.h"
#include "testsupport/screenshot_win.h"

namespace {

using qt_test::GridHost;

const int kEditCommand = 401;

class GridControl : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(0, view.AddColumn(L"Name", 140));
    ASSERT_EQ(1, view.AddColumn(L"Count", 80, QnListView2::AlignRight));
    ASSERT_EQ(2, view.AddColumn(L"Length", 90));
    const wchar_t* names[] = {L"Duct", L"Pipe", L"Valve"};
    for (int r = 0; r < 3; ++r) {
      ASSERT_EQ(r, view.AddRow(10 * (r + 1)));
      view.SetCell(r, 0, ustr(names[r]));
      view.SetCell(r, 1, 5 + r);
      view.SetCell(r, 2, 1.25 * (r + 1), 3);
    }
    view.SetEditCommand(kEditCommand);
    view.SetStyle(QnListView2::EditOnDoubleClick, QnListView2::EditOnDoubleClick);
    host.reset(new GridHost(view));
    ASSERT_TRUE(host->Attach());
  }
  void TearDown() override { host.reset(); }

  // Double-clicks the cell and answers the editor that opened.
  HWND OpenEditor(int item, int column, const wchar_t* className = L"EDIT") {
    qt_test::DoubleClickAt(host->list, host->CellPoint(item, column));
    return host->Editor(className);
  }
  int IntCell(int row, int column) {
    int value = -1;
    view.GetCell(row, column, value);
    return value;
  }

  QnListView2 view;
  std::unique_ptr<GridHost> host;
};

TEST_F(GridControl, AttachMirrorsTheModelAndSetsTheRowHeight) {
  EXPECT_EQ(3, host->ItemCount());
  EXPECT_EQ(3, static_cast<int>(SendMessageW(host->Header(), HDM_GETITEMCOUNT, 0, 0)));
  const LONG_PTR style = GetWindowLongPtrW(host->list, GWL_STYLE);
  EXPECT_EQ(LVS_OWNERDRAWFIXED, style & LVS_OWNERDRAWFIXED);
  EXPECT_EQ(LVS_REPORT, style & LVS_TYPEMASK);

  ASSERT_TRUE(view.SetRowHeight(26));
  view.Redraw();
  host->Settle();
  const RECT row = host->CellRect(0, 0);
  EXPECT_EQ(26, row.bottom - row.top);

  // A column the user widens in the header keeps its new width.
  HDITEMW wider{};
  wider.mask = HDI_WIDTH;
  wider.cxy = 150;
  SendMessageW(host->Header(), HDM_SETITEMW, 2, reinterpret_cast<LPARAM>(&wider));
  EXPECT_EQ(150, view.GetColumnWidth(2));

  // Rows under a collapsed parent are not listed; expanding lists them.
  const int parent = 0;
  ASSERT_EQ(1, view.AddRow(11, parent));
  ASSERT_TRUE(view.SetCollapsed(parent, true));
  host->Settle();
  EXPECT_EQ(3, host->ItemCount());
  ASSERT_TRUE(view.SetCollapsed(parent, false));
  host->Settle();
  EXPECT_EQ(4, host->ItemCount());
  view.DeleteAllRows();
  host->Settle();
  EXPECT_EQ(0, host->ItemCount());

  // Another window is not a list control; a second grid cannot take it.
  QnListView2 other;
  HWND label = CreateWindowExW(0, L"STATIC", L"", WS_CHILD, 0, 0, 10, 10, host->window, nullptr, nullptr, nullptr);
  EXPECT_FALSE(other.Attach(GetModuleHandleW(nullptr), label));
  EXPECT_FALSE(other.Attach(GetModuleHandleW(nullptr), host->list));
  EXPECT_FALSE(other.Attach(GetModuleHandleW(nullptr), nullptr));
}

TEST_F(GridControl, DoubleClickTypeEnterStoresAndTellsTheOwner) {
  HWND edit = OpenEditor(1, 1);
  ASSERT_NE(nullptr, edit);
  EXPECT_EQ(L"6", qt_test::WindowText(edit));
  qt_test::TypeText(edit, L"42");  // the text starts selected: typing replaces it
  qt_test::PressKey(edit, VK_RETURN);
  EXPECT_EQ(42, IntCell(1, 1));
  EXPECT_EQ(nullptr, host->Editor(L"EDIT"));
  EXPECT_EQ(1, host->Commands(kEditCommand));

  // The same value again is no change: no command.
  edit = OpenEditor(1, 1);
  ASSERT_NE(nullptr, edit);
  qt_test::PressKey(edit, VK_RETURN);
  EXPECT_EQ(1, host->Commands(kEditCommand));

  // Escape drops what was typed.
  edit = OpenEditor(0, 1);
  ASSERT_NE(nullptr, edit);
  qt_test::TypeText(edit, L"99");
  qt_test::PressKey(edit, VK_ESCAPE);
  EXPECT_EQ(5, IntCell(0, 1));
  EXPECT_EQ(nullptr, host->Editor(L"EDIT"));
  EXPECT_EQ(1, host->Commands(kEditCommand));
}

void Save(HWND window, const char* name, int margin = 0) {
  if (qt_test::ScreenshotsWanted()) {
    EXPECT_TRUE(qt_test::SaveWindowScreenshot(window, name, margin));
  }
}

TEST_F(GridControl, ScreenshotOfTheEditorOverACellWithDecimals) {
  HWND edit = OpenEditor(1, 2);
  ASSERT_NE(nullptr, edit);
  EXPECT_EQ(L"2.500", qt_test::WindowText(edit));
  RECT editRect;
  GetWindowRect(edit, &editRect);
  MapWindowPoints(nullptr, host->list, reinterpret_cast<POINT*>(&editRect), 2);
  const RECT cell = host->CellRect(1, 2);
  EXPECT_EQ(cell.top, editRect.top) << "the editor lies over its cell";
  EXPECT_EQ(cell.left, editRect.left);
  Save(host->window, "grid_open_editor");
  qt_test::TypeText(edit, L"7.125");
  qt_test::PressKey(edit, VK_RETURN);
  double value = 0;
  ASSERT_TRUE(view.GetCell(1, 2, value));
  EXPECT_EQ(7.125, value);
  EXPECT_EQ(3, view.GetCellRounding(1, 2));

  // Text that is not a number is turned down and the old value stays.
  edit = OpenEditor(1, 2);
  ASSERT_NE(nullptr, edit);
  qt_test::TypeText(edit, L"abc");
  qt_test::PressKey(edit, VK_RETURN);
  ASSERT_TRUE(view.GetCell(1, 2, value));
  EXPECT_EQ(7.125, value);
  EXPECT_NE(nullptr, host->Editor(L"EDIT")) << "the editor stays for a correction";
  qt_test::PressKey(host->Editor(L"EDIT"), VK_ESCAPE);
}

TEST_F(GridControl, ReadOnlyCellsAndDoubleClickWithoutTheStyleNeverEdit) {
  ASSERT_TRUE(view.SetCellStyle(0, 1, QnListView2::CellReadOnly, QnListView2::CellReadOnly));
  EXPECT_EQ(nullptr, OpenEditor(0, 1));
  EXPECT_FALSE(view.EditCell(0, 1));
  ASSERT_TRUE(view.SetColumnStyle(2, QnListView2::CellReadOnly, QnListView2::CellReadOnly));
  EXPECT_EQ(nullptr, OpenEditor(2, 2));

  view.SetStyle(0, QnListView2::EditOnDoubleClick);
  EXPECT_EQ(nullptr, OpenEditor(1, 1));
  // EditCell still opens a writable cell.
  EXPECT_TRUE(view.EditCell(1, 1));
  EXPECT_NE(nullptr, host->Editor(L"EDIT"));
}

TEST_F(GridControl, ScreenshotOfTheBalloonForAnOutOfRangeValue) {
  ValueValidator::Range range;
  range.lowerInt = 0;
  range.upperInt = 100;
  ASSERT_TRUE(view.SetColumnValueValidator(1, range));
  qt_test::BalloonTitleWatch titles;
  HWND edit = OpenEditor(0, 1);
  ASSERT_NE(nullptr, edit);
  qt_test::TypeText(edit, L"150");
  qt_test::PressKey(edit, VK_RETURN);
  qt_test::PumpMessages(100);
  EXPECT_EQ(5, IntCell(0, 1));
  EXPECT_EQ(0, host->Commands(kEditCommand));
  ASSERT_EQ(edit, host->Editor(L"EDIT"));
  HWND tip = qt_test::FindOwnVisibleWindow(TOOLTIPS_CLASSW);
  ASSERT_NE(nullptr, tip);
  EXPECT_EQ(L"Valid value range: 0 ... 100.", qt_test::ToolTipText(tip));
  // Wine's tool tips do not answer TTM_GETTITLE: the title and icon are
  // read from the message that set them.
  EXPECT_EQ(L"Invalid value!", titles.title);
  EXPECT_EQ(TTI_ERROR_LARGE, titles.icon);
  Save(host->window, "grid_validation_balloon", 120);

  // A value inside the range goes in; the note goes away.
  SendMessageW(edit, EM_SETSEL, 0, -1);
  qt_test::TypeText(edit, L"100");
  qt_test::PressKey(edit, VK_RETURN);
  EXPECT_EQ(100, IntCell(0, 1));
  EXPECT_EQ(1, host->Commands(kEditCommand));
  EXPECT_EQ(nullptr, qt_test::FindOwnVisibleWindow(TOOLTIPS_CLASSW));
}

TEST_F(GridControl, PickingFromTheDropDownStoresTheEntry) {
  QnListView2::SelectionList list;
  list.push_back(std::make_pair(ustr_pre<32>(L"Steel"), 7LL));
  list.push_back(std::make_pair(ustr_pre<32>(L"Copper"), 8LL));
  list.push_back(std::make_pair(ustr_pre<32>(L"Plastic"), 9LL));
  ASSERT_TRUE(view.SetColumnSelectionList(0, list));
  ASSERT_TRUE(view.SetCellSelection(2, 0, 8));
  HWND combo = OpenEditor(2, 0, L"COMBOBOX");
  ASSERT_NE(nullptr, combo);
  EXPECT_EQ(1, static_cast<int>(SendMessageW(combo, CB_GETCURSEL, 0, 0)));
  EXPECT_EQ(3, static_cast<int>(SendMessageW(combo, CB_GETCOUNT, 0, 0)));
  // What a click on the third entry of the open list sends.
  SendMessageW(combo, CB_SETCURSEL, 2, 0);
  SendMessageW(host->list, WM_COMMAND, MAKEWPARAM(GetDlgCtrlID(combo), CBN_SELENDOK), reinterpret_cast<LPARAM>(combo));
  qt_test::PumpMessages();
  long long value = 0;
  ASSERT_TRUE(view.GetCellSelection(2, 0, value));
  EXPECT_EQ(9, value);
  EXPECT_EQ(L"Plastic", view.GetCellText(2, 0).str());
  EXPECT_EQ(nullptr, host->Editor(L"COMBOBOX"));
  EXPECT_EQ(1, host->Commands(kEditCommand));
}

TEST_F(GridControl, EnterMovesTheEditorToTheNextRowOrCell) {
  view.SetStyle(QnListView2::EditNextRowOnEnter, QnListView2::EditNextRowOnEnter);
  HWND edit = OpenEditor(0, 1);
  ASSERT_NE(nullptr, edit);
  qt_test::TypeText(edit, L"1");
  qt_test::PressKey(edit, VK_RETURN);
  edit = host->Editor(L"EDIT");
  ASSERT_NE(nullptr, edit);
  EXPECT_EQ(L"6", qt_test::WindowText(edit)) << "the next row's cell";
  qt_test::TypeText(edit, L"2");
  qt_test::PressKey(edit, VK_RETURN);
  EXPECT_EQ(1, IntCell(0, 1));
  EXPECT_EQ(2, IntCell(1, 1));
  qt_test::PressKey(host->Editor(L"EDIT"), VK_ESCAPE);

  view.SetStyle(QnListView2::EditNextCellOnEnter, QnListView2::EditNextRowOnEnter | QnListView2::EditNextCellOnEnter);
  edit = OpenEditor(2, 1);
  ASSERT_NE(nullptr, edit);
  qt_test::TypeText(edit, L"3");
  qt_test::PressKey(edit, VK_RETURN);
  edit = host->Editor(L"EDIT");
  ASSERT_NE(nullptr, edit);
  EXPECT_EQ(L"3.750", qt_test::WindowText(edit)) << "the next cell of the row";
  qt_test::PressKey(edit, VK_RETURN);
  EXPECT_EQ(nullptr, host->Editor(L"EDIT")) << "the row's last cell closes it";
  EXPECT_EQ(3, host->Commands(kEditCommand));
}

TEST_F(GridControl, TypingOnASelectedCellOpensTheEditorWithTheCharacter) {
  qt_test::ClickAt(host->list, host->CellPoint(1, 1));
  ASSERT_EQ(std::vector<int>(1, 1), view.GetSelectedRows());
  qt_test::TypeText(host->list, L"8");
  EXPECT_EQ(nullptr, host->Editor(L"EDIT")) << "typing does not edit without the style";

  view.SetStyle(QnListView2::EditOnTyping, QnListView2::EditOnTyping);
  qt_test::TypeText(host->list, L"8");
  HWND edit = host->Editor(L"EDIT");
  ASSERT_NE(nullptr, edit);
  EXPECT_EQ(L"8", qt_test::WindowText(edit));
  qt_test::TypeText(edit, L"1");
  qt_test::PressKey(edit, VK_RETURN);
  EXPECT_EQ(81, IntCell(1, 1));
}

TEST_F(GridControl, LeavingTheEditorSavesOnlyWithAlwaysSave) {
  HWND edit = OpenEditor(0, 1);
  ASSERT_NE(nullptr, edit);
  qt_test::TypeText(edit, L"77");
  qt_test::ClickAt(host->list, host->CellPoint(2, 0));
  EXPECT_EQ(5, IntCell(0, 1));
  EXPECT_EQ(nullptr, host->Editor(L"EDIT"));

  view.SetStyle(QnListView2::AlwaysSave, QnListView2::AlwaysSave);
  edit = OpenEditor(0, 1);
  ASSERT_NE(nullptr, edit);
  qt_test::TypeText(edit, L"77");
  qt_test::ClickAt(host->list, host->CellPoint(2, 0));
  EXPECT_EQ(77, IntCell(0, 1));
  EXPECT_EQ(1, host->Commands(kEditCommand));
}

TEST_F(GridControl, HeaderClicksSortWhenTheHeaderIsSortable) {
  RECT item{};
  SendMessageW(host->Header(), HDM_GETITEMRECT, 1, reinterpret_cast<LPARAM>(&item));
  const std::vector<long long> before = view.GetRowsLParams();
  qt_test::ClickAt(host->Header(), qt_test::CenterOf(item));
  EXPECT_EQ(before, view.GetRowsLParams()) << "not sortable yet";

  view.SetSortableHeader(true);
  qt_test::ClickAt(host->Header(), qt_test::CenterOf(item));
  EXPECT_EQ(1, view.GetSortColumn());
  EXPECT_EQ(QnListView2::SortAscending, view.GetSortType());
  EXPECT_EQ(before, view.GetRowsLParams());
  qt_test::ClickAt(host->Header(), qt_test::CenterOf(item));
  EXPECT_EQ(QnListView2::SortDescending, view.GetSortType());
  EXPECT_EQ((std::vector<long long>{30, 20, 10}), view.GetRowsLParams());
  // The control lists the rows in their new order: editing the top row
  // edits the model's first row.
  HWND edit = OpenEditor(0, 1);
  ASSERT_NE(nullptr, edit);
  EXPECT_EQ(L"7", qt_test::WindowText(edit));
  qt_test::PressKey(edit, VK_ESCAPE);

  POINT onHeader = qt_test::CenterOf(item);
  ClientToScreen(host->Header(), &onHeader);
  EXPECT_EQ(1, view.GetHeaderItemIndexAt(onHeader));
  POINT inBody = host->CellPoint(0, 1);
  ClientToScreen(host->list, &inBody);
  EXPECT_EQ(-1, view.GetHeaderItemIndexAt(inBody));
}

TEST_F(GridControl, ClicksOnCheckBoxesExpandersAndButtons) {
  // A tree: row 0 gets two children with check boxes.
  ASSERT_EQ(1, view.AddRow(11, 0));
  ASSERT_EQ(2, view.AddRow(12, 0));
  ASSERT_TRUE(view.SetCellCheck(0, 0, QnListView2::Unchecked));
  ASSERT_TRUE(view.SetCellCheck(1, 0, QnListView2::Unchecked));
  ASSERT_TRUE(view.SetCellCheck(2, 0, QnListView2::Unchecked));
  ASSERT_TRUE(view.SetCellCommand(4, 1, 555, nullptr));
  view.Redraw();
  host->Settle();
  ASSERT_EQ(5, host->ItemCount());

  // The check box of the first child sits after the indentation.
  const RECT child = host->CellRect(1, 0);
  for (int x = child.left; x < child.left + 60; x += 2) {
    if (view.GetCellCheck(1, 0) == QnListView2::Checked) break;
    qt_test::ClickAt(host->list, POINT{x, (child.top + child.bottom) / 2});
  }
  EXPECT_EQ(QnListView2::Checked, view.GetCellCheck(1, 0));
  EXPECT_EQ(QnListView2::CheckMixed, view.GetCellCheck(0, 0)) << "the parent follows its children";
  EXPECT_EQ(1, host->Commands(kEditCommand));

  // The expander is the first thing in the parent's cell.
  const RECT parent = host->CellRect(0, 0);
  for (int x = parent.left; x < parent.left + 20 && !view.IsCollapsed(0); x += 2)
    qt_test::ClickAt(host->list, POINT{x, (parent.top + parent.bottom) / 2});
  EXPECT_TRUE(view.IsCollapsed(0));
  host->Settle();
  EXPECT_EQ(3, host->ItemCount());

  // Row 4 is now listed third; its command cell is a button.
  qt_test::ClickAt(host->list, qt_test::CenterOf(host->CellRect(2, 1)));
  EXPECT_EQ(1, host->Commands(555));
}

TEST_F(GridControl, DetachLeavesTheControlAlone) {
  view.Detach();
  qt_test::DoubleClickAt(host->list, host->CellPoint(1, 1));
  EXPECT_EQ(nullptr, host->Editor(L"EDIT"));
  EXPECT_FALSE(view.EditCell(1, 1));
  EXPECT_EQ(nullptr, GetPropW(host->list, L"QuilTool.QnListView2"));
  EXPECT_EQ(0, GetWindowLongPtrW(host->list, GWL_STYLE) & LVS_OWNERDRAWFIXED) << "the control's own style is back";
  EXPECT_EQ(0, host->ItemCount());
  // It can be bound again.
  EXPECT_TRUE(host->Attach());
  EXPECT_TRUE(view.EditCell(1, 1));
}

}  // namespace
