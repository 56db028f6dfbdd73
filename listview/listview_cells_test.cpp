// Grid cells: values keep or convert their kind, formatting outlives the
// value, rare attributes stay apart, and bad input changes nothing.
#include <gtest/gtest.h>

#include <climits>

#include "listview/listview_test_support.h"
#include "testsupport/failing_allocations.h"

namespace {

class GridCells : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(0, view.AddColumn(L"A", 50));
    ASSERT_EQ(1, view.AddColumn(L"B", 50, QnListView2::AlignRight | QnListView2::AlignVCenter));
    ASSERT_EQ(0, view.AddRow(10));
    ASSERT_EQ(1, view.AddRow(20));
  }
  QnListView2 view;
};

TEST_F(GridCells, ReadingIntoAnotherKindConverts) {
  ASSERT_TRUE(view.SetCell(0, 0, 2.5, 3));
  int i = 0;
  EXPECT_TRUE(view.GetCell(0, 0, i));
  EXPECT_EQ(3, i);  // half away from zero
  EXPECT_EQ(L"2.500", view.GetCellText(0, 0).str());

  ASSERT_TRUE(view.SetCell(0, 0, 70000));
  short s = 0;
  EXPECT_FALSE(view.GetCell(0, 0, s)) << "out of the short's range";
  EXPECT_EQ(SHRT_MAX, s);
  double d = 0;
  EXPECT_TRUE(view.GetCell(0, 0, d));
  EXPECT_EQ(70000.0, d);

  ASSERT_TRUE(view.SetCell(0, 0, ustr(L" 12.25 ")));
  float f = 0;
  EXPECT_TRUE(view.GetCell(0, 0, f));
  EXPECT_EQ(12.25f, f);
  ASSERT_TRUE(view.SetCell(0, 0, ustr(L"12abc"), 7));
  unsigned int u = 99;
  EXPECT_FALSE(view.GetCell(0, 0, u));
  ustr text;
  int data = 0;
  EXPECT_TRUE(view.GetCell(0, 0, text, data));
  EXPECT_EQ(L"12abc", text.str());
  EXPECT_EQ(7, data);

  ASSERT_TRUE(view.SetCell(1, 1, QnListView2::ColorIndex(12)));
  QnVariant v;
  EXPECT_TRUE(view.GetCell(1, 1, v));
  EXPECT_EQ(QnVariant::fromColorIndex(12), v);
  QnListView2::ColorIndex color;
  EXPECT_TRUE(view.GetCell(1, 1, color));
  EXPECT_EQ(12, color.index);

  gm_model model = {{0, 0}, 4};
  ASSERT_TRUE(view.SetCell(1, 0, &model));
  const gm_model* back = nullptr;
  EXPECT_TRUE(view.GetCell(1, 0, back));
  EXPECT_EQ(&model, back);
  EXPECT_TRUE(view.GetCell(1, 0, v));
  EXPECT_TRUE(v.isEmpty());
  EXPECT_EQ(QnListView2::KindGeometry, view.GetCellKind(1, 0));
}

TEST_F(GridCells, ResetKeepsFormattingAndNewValuesKeepIt) {
  ASSERT_TRUE(view.SetCell(0, 1, 1.0 / 3, 2));
  ASSERT_TRUE(view.SetCellStyle(0, 1, QnListView2::CellReadOnly | QnListView2::CellCheckBox, -1));
  ASSERT_TRUE(view.SetCellBackgroundColor(0, 1, 0x00FF00));
  ASSERT_TRUE(view.SetCellCheck(0, 1, QnListView2::Checked));
  ASSERT_TRUE(view.SetCellAlignment(0, 1, QnListView2::AlignLeft | QnListView2::AlignTop));
  ASSERT_TRUE(view.SetCellToolTip(0, 1, L"tip"));

  ASSERT_TRUE(view.ResetCellValue(0, 1));
  EXPECT_EQ(QnListView2::KindEmpty, view.GetCellKind(0, 1));
  EXPECT_EQ(L"", view.GetCellText(0, 1).str());
  EXPECT_EQ(2, view.GetCellRounding(0, 1));
  EXPECT_EQ(QnListView2::CellReadOnly | QnListView2::CellCheckBox, view.GetCellStyle(0, 1));
  EXPECT_EQ(0x00FF00u, view.GetCellBackgroundColor(0, 1));
  EXPECT_EQ(QnListView2::NoColor, view.GetCellForegroundColor(0, 1));
  EXPECT_EQ(QnListView2::Checked, view.GetCellCheck(0, 1));
  EXPECT_EQ(9, view.GetCellAlignment(0, 1));
  EXPECT_EQ(L"tip", view.GetCellToolTip(0, 1).str());

  // A number set without decimals keeps the cell's rounding.
  ASSERT_TRUE(view.SetCell(0, 1, QnVariant(2.0 / 3)));
  EXPECT_EQ(L"0.67", view.GetCellText(0, 1).str());
  // Colours clear with NoColor; the column's alignment shows through.
  ASSERT_TRUE(view.SetCellBackgroundColor(0, 1, QnListView2::NoColor));
  EXPECT_EQ(QnListView2::NoColor, view.GetCellBackgroundColor(0, 1));
  EXPECT_EQ(20, view.GetCellAlignment(1, 1));
}

TEST_F(GridCells, BadIndicesAndArgumentsChangeNothing) {
  ASSERT_TRUE(view.SetCell(0, 0, 5));
  int i = 123;
  for (int r : {-1, 2}) {
    EXPECT_FALSE(view.SetCell(r, 0, 1));
    EXPECT_FALSE(view.GetCell(r, 0, i));
    EXPECT_FALSE(view.SetCellStyle(r, 0, 1, 1));
    EXPECT_FALSE(view.SetRowLParam(r, 1));
    EXPECT_FALSE(view.DeleteRow(r));
    EXPECT_EQ(-1, view.GetCellCheck(r, 0));
  }
  EXPECT_FALSE(view.SetCell(0, 2, 1));
  EXPECT_FALSE(view.GetCell(0, -1, i));
  EXPECT_EQ(123, i);
  EXPECT_FALSE(view.SetCell(0, 0, 1.5, -2));
  EXPECT_FALSE(view.SetCellCheck(0, 0, 4));
  EXPECT_FALSE(view.SetCellColSpan(0, 0, 0));
  EXPECT_EQ(-1, view.InsertColumn(3, L"C", 10));
  EXPECT_EQ(-1, view.AddColumn(L"C", 10, 64));
  EXPECT_EQ(-1, view.InsertRow(3));
  EXPECT_EQ(-1, view.AddRow(0, 5));
  EXPECT_FALSE(view.SetSelectedRows({0, 2}));
  EXPECT_TRUE(view.GetSelectedRows().empty());
  EXPECT_FALSE(view.CopyToClipboard({0, 7}));
  EXPECT_EQ(2, view.GetRowCount());
  EXPECT_EQ(2, view.GetColumnCount());
  EXPECT_TRUE(view.GetCell(0, 0, i));
  EXPECT_EQ(5, i);
}

TEST_F(GridCells, ColumnInsertAndDeleteMoveCellsWithTheirColumn) {
  ASSERT_TRUE(view.SetCell(0, 0, ustr(L"a")));
  ASSERT_TRUE(view.SetCell(0, 1, ustr(L"b")));
  ASSERT_TRUE(view.SetSortColumn(1, QnListView2::SortDescending));
  ASSERT_EQ(1, view.InsertColumn(1, L"mid", 10));
  EXPECT_EQ(L"b", view.GetCellText(0, 2).str());
  EXPECT_EQ(QnListView2::KindEmpty, view.GetCellKind(0, 1));
  EXPECT_EQ(2, view.GetSortColumn());
  ASSERT_TRUE(view.DeleteColumn(0));
  EXPECT_EQ(L"b", view.GetCellText(0, 1).str());
  EXPECT_EQ(1, view.GetSortColumn());
  EXPECT_EQ(QnListView2::SortDescending, view.GetSortType());
}

TEST_F(GridCells, SelectionListFallsBackToTheColumns) {
  const QnListView2::SelectionList column = {{L"Low", 1}, {L"High", 2}};
  const QnListView2::SelectionList own = {{L"Off", 10}, {L"On", 11}};
  QnListView2::SelectionList got;
  EXPECT_FALSE(view.GetCellSelectionList(0, 1, got));
  EXPECT_FALSE(view.SetCellSelection(0, 1, 2));
  ASSERT_TRUE(view.SetColumnSelectionList(1, column));
  ASSERT_TRUE(view.SetCellSelectionList(1, 1, own));
  ASSERT_TRUE(view.GetCellSelectionList(0, 1, got));
  EXPECT_EQ(column, got);
  ASSERT_TRUE(view.GetCellSelectionList(1, 1, got));
  EXPECT_EQ(own, got);

  EXPECT_TRUE(view.SetCellSelection(0, 1, 2));
  EXPECT_FALSE(view.SetCellSelection(1, 1, 2)) << "the cell's own list has no 2";
  EXPECT_EQ(L"High", view.GetCellText(0, 1).str());
  long long value = 0;
  EXPECT_TRUE(view.GetCellSelection(0, 1, value));
  EXPECT_EQ(2, value);
  ASSERT_TRUE(view.SetCell(0, 1, ustr(L"typed")));
  EXPECT_FALSE(view.GetCellSelection(0, 1, value)) << "a new value drops the selection";

  ASSERT_TRUE(view.SetSelectedRows({0, 1}));
  EXPECT_TRUE(view.SetSelectedString(1, L"On"));
  EXPECT_EQ(L"typed", view.GetCellText(0, 1).str()) << "Low/High has no On";
  EXPECT_EQ(L"On", view.GetCellText(1, 1).str());
  EXPECT_TRUE(view.GetCellSelection(1, 1, value));
  EXPECT_EQ(11, value);
}

TEST_F(GridCells, ClipboardTextIsTabSeparatedLines) {
  ASSERT_TRUE(view.SetCell(0, 0, ustr(L"a\tb")));
  ASSERT_TRUE(view.SetCell(0, 1, 1.5, 2));
  ASSERT_TRUE(view.SetCell(1, 1, 7));
  ASSERT_EQ(2, view.AddCategoryRow(0, 0, L"Group"));
  const ustr text = QnListView2TestAccess::Impl(view).ClipboardText({1, 0, 2});
  EXPECT_EQ(L"\t7\r\na b\t1.50\r\nGroup\r\n", text.str());
}

// Running out of memory, or past the row limit, inside a setter answers
// false and leaves the model as it was.
TEST_F(GridCells, FailuresInsideSettersAnswerFalseAndKeepTheModel) {
  QnListView2Impl& impl = QnListView2TestAccess::Impl(view);
  impl.maxRows = 2;
  EXPECT_EQ(-1, view.AddRow(30));
  EXPECT_EQ(-1, view.InsertCategoryRow(0, 0, 0, L"x"));
  EXPECT_EQ(2, view.GetRowCount());
  impl.maxRows = 1000;

  ASSERT_TRUE(view.SetCell(1, 1, ustr(L"kept")));
  // The arguments are made before allocations start failing.
  const ustr name(L"new column");
  const ustr longText(L"a text too long for any small-string buffer");
  bool succeeded = false;
  for (long allowed = 0; allowed < 50 && !succeeded; ++allowed) {
    {
      qt_test::FailingAllocations failing(allowed);
      succeeded = view.InsertColumn(1, name, 20) == 1;
    }
    if (!succeeded) {
      ASSERT_EQ(2, view.GetColumnCount()) << allowed;
      ASSERT_EQ(L"kept", view.GetCellText(1, 1).str()) << allowed;
    }
  }
  EXPECT_TRUE(succeeded);
  EXPECT_EQ(L"kept", view.GetCellText(1, 2).str());

  succeeded = false;
  for (long allowed = 0; allowed < 50 && !succeeded; ++allowed) {
    {
      qt_test::FailingAllocations failing(allowed);
      succeeded = view.SetCell(1, 2, longText);
    }
    if (!succeeded) {
      ASSERT_EQ(L"kept", view.GetCellText(1, 2).str()) << allowed;
    }
  }
  EXPECT_TRUE(succeeded);
}

}  // namespace
