// Cell layout computed without a window: listed rows, tree lines, colours,
// alignment, the parts of a cell and spans.
#include <gtest/gtest.h>

#include "listview/listview_layout.h"
#include "listview/listview_test_support.h"

namespace {

using qt::listview::Box;

class GridLayout : public ::testing::Test {
 protected:
  // A      (0)
  //   a1   (1)
  //     x  (2)
  //   a2   (3)
  // B      (4)
  void SetUp() override {
    view.AddColumn(L"Tree", 100);
    view.AddColumn(L"Value", 60);
    view.AddColumn(L"More", 60);
    ASSERT_EQ(0, view.AddRow(1));
    ASSERT_EQ(1, view.AddRow(2, 0));
    ASSERT_EQ(2, view.AddRow(3, 1));
    ASSERT_EQ(3, view.AddRow(4, 0));
    ASSERT_EQ(4, view.AddRow(5));
  }
  QnListView2Impl& m() { return QnListView2TestAccess::Impl(view); }
  QnListView2 view;
};

TEST_F(GridLayout, CollapsedRowsHideEverythingUnderThem) {
  EXPECT_EQ((std::vector<int>{0, 1, 2, 3, 4}), qt::listview::ShownRows(m()));
  view.SetCollapsed(1, true);
  EXPECT_EQ((std::vector<int>{0, 1, 3, 4}), qt::listview::ShownRows(m()));
  view.SetCollapsed(0, true);
  EXPECT_EQ((std::vector<int>{0, 4}), qt::listview::ShownRows(m()));
  view.SetCollapsed(1, false);
  EXPECT_EQ((std::vector<int>{0, 4}), qt::listview::ShownRows(m())) << "the grandchild's grandparent is closed";
  // A parent below its child still hides it.
  view.SetCollapsed(0, false);
  ASSERT_TRUE(view.SetRowId(4, 40));
  ASSERT_TRUE(view.SetRowParentId(0, 40));
  view.SetCollapsed(4, true);
  EXPECT_EQ((std::vector<int>{4}), qt::listview::ShownRows(m()));
}

TEST_F(GridLayout, TreeLinesContinueWhereALaterSiblingFollows) {
  EXPECT_EQ(0, qt::listview::TreeDepth(m(), 0));
  EXPECT_EQ(2, qt::listview::TreeDepth(m(), 2));
  EXPECT_TRUE(qt::listview::TreeLineLevels(m(), 0).empty());
  EXPECT_EQ((std::vector<bool>{true}), qt::listview::TreeLineLevels(m(), 1)) << "a1 has a2 after it";
  EXPECT_EQ((std::vector<bool>{true, false}), qt::listview::TreeLineLevels(m(), 2));
  EXPECT_EQ((std::vector<bool>{false}), qt::listview::TreeLineLevels(m(), 3)) << "a2 is the last child";
}

TEST_F(GridLayout, CellColoursGoOverRowColoursOverColumnColours) {
  const COLORREF none = QnListView2::NoColor;
  qt::listview::Colors c = qt::listview::EffectiveColors(m(), 1, 1);
  EXPECT_EQ(none, c.text);
  EXPECT_EQ(none, c.back);
  view.SetColumnBackgroundColor(1, 0x0000FF);
  view.SetColumnForegroundColor(1, 0x000001);
  view.SetRowBackgroundColor(1, 0x00FF00);
  view.SetCellBackgroundColor(1, 1, 0xFF0000);
  EXPECT_EQ(0xFF0000u, qt::listview::EffectiveColors(m(), 1, 1).back);
  EXPECT_EQ(0x000001u, qt::listview::EffectiveColors(m(), 1, 1).text);
  EXPECT_EQ(0x00FF00u, qt::listview::EffectiveColors(m(), 1, 2).back);
  EXPECT_EQ(0x0000FFu, qt::listview::EffectiveColors(m(), 2, 1).back);
  view.SetCellBackgroundColor(1, 1, none);
  EXPECT_EQ(0x00FF00u, qt::listview::EffectiveColors(m(), 1, 1).back) << "a cleared cell colour falls back";
}

TEST_F(GridLayout, AlignmentFillsTheMissingPart) {
  view.SetCell(0, 1, 5);
  view.SetCell(0, 2, ustr(L"text"));
  EXPECT_EQ(QnListView2::AlignRight | QnListView2::AlignVCenter, qt::listview::EffectiveAlignment(m(), 0, 1));
  EXPECT_EQ(QnListView2::AlignLeft | QnListView2::AlignVCenter, qt::listview::EffectiveAlignment(m(), 0, 2));
  view.SetColumnAlignment(2, QnListView2::AlignBottom);
  EXPECT_EQ(QnListView2::AlignLeft | QnListView2::AlignBottom, qt::listview::EffectiveAlignment(m(), 0, 2));
  view.SetCellAlignment(0, 2, QnListView2::AlignHCenter | QnListView2::AlignTop);
  EXPECT_EQ(QnListView2::AlignHCenter | QnListView2::AlignTop, qt::listview::EffectiveAlignment(m(), 0, 2));
}

TEST_F(GridLayout, ACellSplitsIntoIndentExpanderCheckBitmapAndText) {
  qt::listview::Metrics metrics;
  metrics.indent = 16;
  metrics.checkSize = 13;
  metrics.gap = 2;
  const Box cell{0, 0, 200, 20};
  qt::listview::CellParts parts = qt::listview::SplitCell(m(), 2, 0, cell, metrics);
  EXPECT_EQ(2, parts.depth);
  EXPECT_FALSE(parts.expander) << "x has no children";
  EXPECT_EQ(2 * 16 + 16 + 2, parts.textBox.left);

  parts = qt::listview::SplitCell(m(), 1, 0, cell, metrics);
  ASSERT_TRUE(parts.expander);
  EXPECT_LE(16, parts.expanderBox.left);
  EXPECT_GE(32, parts.expanderBox.right);
  EXPECT_LE(parts.expanderBox.right, parts.textBox.left);

  view.SetCellCheck(1, 0, QnListView2::Checked);
  metrics.bitmapWidth = 10;
  parts = qt::listview::SplitCell(m(), 1, 0, cell, metrics);
  ASSERT_TRUE(parts.check);
  EXPECT_EQ(13, parts.checkBox.width());
  EXPECT_LE(parts.expanderBox.right, parts.checkBox.left);
  EXPECT_EQ(parts.checkBox.right + 2, parts.bitmapBox.left);
  EXPECT_EQ(parts.bitmapBox.right + 2, parts.textBox.left);

  // A check box alone in a centred cell sits in the middle.
  view.SetCellCheck(2, 2, QnListView2::Unchecked);
  view.SetColumnAlignment(2, QnListView2::AlignHCenter);
  metrics.bitmapWidth = 0;
  parts = qt::listview::SplitCell(m(), 2, 2, Box{300, 0, 361, 20}, metrics);
  EXPECT_EQ(324, parts.checkBox.left);
  view.SetCell(2, 2, ustr(L"on"));
  parts = qt::listview::SplitCell(m(), 2, 2, Box{300, 0, 361, 20}, metrics);
  EXPECT_EQ(302, parts.checkBox.left) << "with a text the box leads";
  metrics.bitmapWidth = 10;

  // Other columns are not indented.
  parts = qt::listview::SplitCell(m(), 2, 1, Box{200, 0, 260, 20}, metrics);
  EXPECT_EQ(0, parts.depth);
  EXPECT_FALSE(parts.expander);
  EXPECT_EQ(200 + 2 + 10 + 2, parts.textBox.left);
}

TEST_F(GridLayout, SpansCoverShownColumnsToTheRightAndListedRowsBelow) {
  const std::vector<Box> boxes{Box{0, 20, 100, 40}, Box{100, 20, 160, 40}, Box{160, 20, 220, 40}};
  const std::vector<int> shown = qt::listview::ShownRows(m());
  view.SetCellColSpan(1, 0, 2);
  Box b = qt::listview::SpanBox(m(), 1, 0, boxes, 20);
  EXPECT_EQ(0, b.left);
  EXPECT_EQ(160, b.right);
  EXPECT_TRUE(qt::listview::CoveredBySpan(m(), shown, 1, 1));
  EXPECT_FALSE(qt::listview::CoveredBySpan(m(), shown, 1, 2));
  EXPECT_FALSE(qt::listview::CoveredBySpan(m(), shown, 1, 0)) << "the spanning cell itself";

  view.ShowHideColumn(1, false);
  b = qt::listview::SpanBox(m(), 1, 0, boxes, 20);
  EXPECT_EQ(220, b.right) << "a hidden column does not count";
  EXPECT_TRUE(qt::listview::CoveredBySpan(m(), shown, 1, 2));

  view.SetCellRowSpan(2, 1, 2);
  b = qt::listview::SpanBox(m(), 2, 1, boxes, 20);
  EXPECT_EQ(20 + 2 * 20, b.bottom);
  EXPECT_TRUE(qt::listview::CoveredBySpan(m(), shown, 3, 1));
  EXPECT_FALSE(qt::listview::CoveredBySpan(m(), shown, 4, 1));
  // With x's parent closed, the span covers the next listed row instead.
  view.SetCellRowSpan(0, 2, 2);
  view.SetCollapsed(0, true);
  EXPECT_TRUE(qt::listview::CoveredBySpan(m(), qt::listview::ShownRows(m()), 4, 2));
}

}  // namespace
