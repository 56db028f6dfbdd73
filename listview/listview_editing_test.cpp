// In-place editing decided without a window: which editor, its text, how
// the typed text goes back, and where Enter leads.
#include <gtest/gtest.h>

#include "listview/listview_editing.h"
#include "listview/listview_layout.h"
#include "listview/listview_test_support.h"

namespace {

using qt::listview::Commit;
using qt::listview::EditorKind;

class GridEditing : public ::testing::Test {
 protected:
  void SetUp() override {
    view.AddColumn(L"Name", 80);
    view.AddColumn(L"Count", 50);
    view.AddColumn(L"Length", 50);
    for (int r = 0; r < 4; ++r) {
      view.AddRow(r);
      view.SetCell(r, 0, ustr(L"row"));
      view.SetCell(r, 1, 10 * r);
      view.SetCell(r, 2, 1.5 * r, 2);
    }
  }
  QnListView2Impl& m() { return QnListView2TestAccess::Impl(view); }
  Commit Type(int row, int column, const wchar_t* text) {
    message = ustr();
    return qt::listview::CommitText(m(), row, column, ustr(text), message);
  }
  QnListView2 view;
  ustr message;
};

TEST_F(GridEditing, EditorKindFollowsStylesListsAndKinds) {
  EXPECT_EQ(EditorKind::Edit, qt::listview::EditorFor(m(), 0, 1));
  view.SetCellStyle(0, 1, QnListView2::CellReadOnly, QnListView2::CellReadOnly);
  view.SetRowStyle(1, QnListView2::CellReadOnly, QnListView2::CellReadOnly);
  view.SetColumnStyle(2, QnListView2::CellReadOnly, QnListView2::CellReadOnly);
  EXPECT_EQ(EditorKind::None, qt::listview::EditorFor(m(), 0, 1));
  EXPECT_EQ(EditorKind::None, qt::listview::EditorFor(m(), 1, 0));
  EXPECT_EQ(EditorKind::None, qt::listview::EditorFor(m(), 3, 2));
  EXPECT_EQ(EditorKind::Edit, qt::listview::EditorFor(m(), 2, 1));

  view.SetCellCheck(2, 0, QnListView2::Checked);
  view.SetCellCommand(3, 0, 500, nullptr);
  EXPECT_EQ(EditorKind::None, qt::listview::EditorFor(m(), 2, 0)) << "a click toggles a check";
  EXPECT_EQ(EditorKind::None, qt::listview::EditorFor(m(), 3, 0)) << "a click sends the command";
  const int category = view.AddCategoryRow(0, 0, L"Group");
  EXPECT_EQ(EditorKind::None, qt::listview::EditorFor(m(), category, 1));
  EXPECT_EQ(EditorKind::None, qt::listview::EditorFor(m(), 99, 1));

  QnListView2::SelectionList list(1, std::make_pair(ustr_pre<32>(L"One"), 1LL));
  view.SetColumnSelectionList(1, list);
  EXPECT_EQ(EditorKind::Combo, qt::listview::EditorFor(m(), 2, 1));
}

TEST_F(GridEditing, EditorTextWritesFloatingValuesWithTheCellsDecimals) {
  EXPECT_EQ(L"1.50", qt::listview::EditorText(m(), 1, 2).str());
  view.SetCell(1, 2, 2.0f / 3.0f, 4);
  EXPECT_EQ(L"0.6667", qt::listview::EditorText(m(), 1, 2).str());
  view.SetCellRounding(1, 2, -1);
  view.SetCell(1, 2, 0.25);
  EXPECT_EQ(L"0.25", qt::listview::EditorText(m(), 1, 2).str()) << "no decimals: the shortest form";
  EXPECT_EQ(L"30", qt::listview::EditorText(m(), 3, 1).str());
  EXPECT_EQ(L"row", qt::listview::EditorText(m(), 3, 0).str());
}

TEST_F(GridEditing, TypedTextGoesBackInTheCellsKind) {
  EXPECT_EQ(Commit::Stored, Type(1, 1, L"42"));
  EXPECT_EQ(QnListView2::KindInt, view.GetCellKind(1, 1));
  int i = 0;
  view.GetCell(1, 1, i);
  EXPECT_EQ(42, i);
  EXPECT_EQ(Commit::Unchanged, Type(1, 1, L"42"));

  EXPECT_EQ(Commit::Stored, Type(1, 2, L"3.125"));
  EXPECT_EQ(QnListView2::KindDouble, view.GetCellKind(1, 2));
  EXPECT_EQ(2, view.GetCellRounding(1, 2)) << "the formatting stays";

  EXPECT_EQ(Commit::Rejected, Type(1, 1, L"12abc"));
  EXPECT_EQ(L"Invalid value!", message.str());
  view.GetCell(1, 1, i);
  EXPECT_EQ(42, i);

  EXPECT_EQ(Commit::Stored, Type(0, 0, L""));
  EXPECT_EQ(L"", view.GetCellText(0, 0).str());

  view.SetCellStyle(2, 1, QnListView2::CellReadOnly, QnListView2::CellReadOnly);
  EXPECT_EQ(Commit::Unchanged, Type(2, 1, L"7"));
  view.GetCell(2, 1, i);
  EXPECT_EQ(20, i) << "a read-only cell never takes a value";
}

TEST_F(GridEditing, ValuesOutsideTheColumnsRangeAreTurnedDown) {
  ValueValidator::Range range;
  range.lowerInt = 0;
  range.upperInt = 100;
  range.lowerDouble = -1.0;
  range.flags = ValueValidator::Range::NoUpperBound;
  view.SetColumnValueValidator(1, range);
  view.SetColumnValueValidator(2, range);
  EXPECT_EQ(Commit::Rejected, Type(1, 1, L"-5"));
  EXPECT_EQ(L"Valid value range: 0 ....", message.str());
  EXPECT_EQ(Commit::Stored, Type(1, 1, L"1000")) << "no upper bound";
  EXPECT_EQ(Commit::Rejected, Type(1, 2, L"-1.5"));
  EXPECT_EQ(L"Valid value range: -1.00 ....", message.str()) << "with the cell's decimals";
  double d = 0;
  view.GetCell(1, 2, d);
  EXPECT_EQ(1.5, d);

  range.flags = 0;
  range.message = L"Between 0 and 100, please.";
  view.SetColumnValueValidator(1, range);
  EXPECT_EQ(Commit::Rejected, Type(2, 1, L"101"));
  EXPECT_EQ(L"Between 0 and 100, please.", message.str());
  // Text cells are not ranged.
  view.SetCell(3, 1, ustr(L"n/a"));
  EXPECT_EQ(Commit::Stored, Type(3, 1, L"500"));
}

TEST_F(GridEditing, AChoiceFromTheDropDownShowsItsEntry) {
  QnListView2::SelectionList list;
  list.push_back(std::make_pair(ustr_pre<32>(L"Steel"), 7LL));
  list.push_back(std::make_pair(ustr_pre<32>(L"Copper"), 8LL));
  view.SetCellSelectionList(1, 0, list);
  EXPECT_EQ(-1, qt::listview::ComboIndex(m(), 1, 0));
  EXPECT_EQ(Commit::Stored, qt::listview::CommitChoice(m(), 1, 0, 1));
  long long value = 0;
  ASSERT_TRUE(view.GetCellSelection(1, 0, value));
  EXPECT_EQ(8, value);
  EXPECT_EQ(1, qt::listview::ComboIndex(m(), 1, 0));
  EXPECT_EQ(Commit::Unchanged, qt::listview::CommitChoice(m(), 1, 0, 1));
  EXPECT_EQ(Commit::Unchanged, qt::listview::CommitChoice(m(), 1, 0, 2));
  EXPECT_EQ(Commit::Unchanged, qt::listview::CommitChoice(m(), 1, 0, -1));
  EXPECT_EQ(L"Copper", view.GetCellText(1, 0).str());
  // A cell showing an entry's text finds it without a stored value.
  view.SetCell(1, 0, ustr(L"Steel"));
  EXPECT_EQ(0, qt::listview::ComboIndex(m(), 1, 0));
}

TEST_F(GridEditing, EnterLeadsToTheNextEditableCell) {
  std::vector<int> shown = qt::listview::ShownRows(m());
  int row = 0, column = 1;
  EXPECT_FALSE(qt::listview::NextEditorCell(m(), shown, row, column)) << "no style: the editor closes";

  view.SetStyle(QnListView2::EditNextRowOnEnter, QnListView2::EditNextRowOnEnter);
  view.SetCellStyle(1, 1, QnListView2::CellReadOnly, QnListView2::CellReadOnly);
  EXPECT_TRUE(qt::listview::NextEditorCell(m(), shown, row, column));
  EXPECT_EQ(2, row) << "the read-only row is skipped";
  EXPECT_EQ(1, column);
  row = 3;
  EXPECT_FALSE(qt::listview::NextEditorCell(m(), shown, row, column));

  // Rows the control does not list are skipped too.
  ASSERT_TRUE(view.SetRowId(0, 100));
  ASSERT_TRUE(view.SetRowParentId(1, 100));
  ASSERT_TRUE(view.SetRowParentId(2, 100));
  view.SetCollapsed(0, true);
  shown = qt::listview::ShownRows(m());
  row = 0;
  EXPECT_TRUE(qt::listview::NextEditorCell(m(), shown, row, column));
  EXPECT_EQ(3, row);

  view.SetStyle(QnListView2::EditNextCellOnEnter, QnListView2::EditNextRowOnEnter | QnListView2::EditNextCellOnEnter);
  view.ShowHideColumn(1, false);
  row = 0;
  column = 0;
  EXPECT_TRUE(qt::listview::NextEditorCell(m(), shown, row, column));
  EXPECT_EQ(0, row);
  EXPECT_EQ(2, column) << "a hidden column is skipped";
  EXPECT_FALSE(qt::listview::NextEditorCell(m(), shown, row, column)) << "the row's end";
  view.SetStyle(QnListView2::EditNextRowOnEnter | QnListView2::EditNextCellOnEnter, -1);
  EXPECT_TRUE(qt::listview::NextEditorCell(m(), shown, row, column));
  EXPECT_EQ(3, row);
  EXPECT_EQ(0, column) << "with both styles the next row's first cell";
}

}  // namespace
