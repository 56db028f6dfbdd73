// Grid rows: the finders stay right through every kind of change, the
// tree keeps its shape, and the collapsed state survives a refill.
#include <gtest/gtest.h>

#include "listview/listview_test_support.h"

namespace {

using qt_test::ExpectFindersConsistent;
using qt_test::LParams;
typedef std::vector<long long> L;

TEST(GridRows, FindersFollowInsertsDeletesSortsAndChanges) {
  QnListView2 view;
  ASSERT_EQ(0, view.AddColumn(L"n", 40));
  for (int i = 0; i < 20; ++i) {
    ASSERT_EQ(i, view.AddRow(i % 7));  // LParams repeat
    ASSERT_TRUE(view.SetCell(i, 0, (i * 37) % 20));
    ASSERT_TRUE(view.SetRowTag(i, i % 2 ? "odd" : "even"));
    ASSERT_EQ(i, view.FindRowIndex(i, i % 7)) << "finder used between appends";
  }
  ExpectFindersConsistent(view);
  EXPECT_EQ(3, view.FindRowIndex(3));
  EXPECT_EQ(10, view.FindRowIndex(4, 3));
  EXPECT_EQ(-1, view.FindRowIndex(18, 3));
  EXPECT_EQ(-1, view.FindRowIndex(99));
  EXPECT_EQ(1, view.FindRowIndexByTag(L"odd"));
  EXPECT_EQ(3, view.FindRowIndexByTag(2, "odd"));

  ASSERT_EQ(5, view.InsertRow(5, 100));
  ASSERT_TRUE(view.SetRowTag(5, L"ins"));
  EXPECT_EQ(5, view.FindRowIndex(100));
  EXPECT_EQ(5, view.FindRowIndexByTag("ins"));
  ExpectFindersConsistent(view);
  ASSERT_TRUE(view.DeleteRow(0));
  EXPECT_EQ(4, view.FindRowIndex(100));
  ExpectFindersConsistent(view);
  ASSERT_TRUE(view.SortRows(QnListView2::SortDescending, 0));
  ExpectFindersConsistent(view);
  ASSERT_TRUE(view.ReverseRows());
  ExpectFindersConsistent(view);
  ASSERT_TRUE(view.SetRowLParam(7, 555));
  ASSERT_TRUE(view.SetRowId(8, 4242));
  EXPECT_EQ(7, view.FindRowIndex(555));
  EXPECT_EQ(8, view.FindRowIndexByRowId(4242));
  ExpectFindersConsistent(view);

  const long long id = view.GetRowId(3);
  EXPECT_LT(id, 0) << "automatic ids are negative";
  EXPECT_FALSE(view.SetRowId(3, 4242)) << "taken";
  EXPECT_FALSE(view.SetRowId(3, -5));
  EXPECT_EQ(id, view.GetRowId(3));

  const L gone = {555, 100};
  EXPECT_EQ(2, view.DeleteRows(nullptr, &gone));
  EXPECT_EQ(-1, view.FindRowIndex(555));
  ExpectFindersConsistent(view);
}

// Changing a key moves the row between the chains of rows sharing a key,
// in the middle, at either end, and back.
TEST(GridRows, KeyChangesKeepTheFindersRight) {
  QnListView2 view;
  for (int i = 0; i < 10; ++i) view.AddRow(0);
  ASSERT_EQ(0, view.FindRowIndex(0));
  ASSERT_EQ(0, view.FindRowIndexByTag(L""));
  const int moves[][2] = {{5, 1}, {2, 1}, {7, 1}, {0, 1}, {2, 0}, {9, 1}, {7, 0}, {0, 0}};
  for (const auto& m : moves) {
    ASSERT_TRUE(view.SetRowLParam(m[0], m[1]));
    ASSERT_TRUE(view.SetRowTag(m[0], m[1] ? L"one" : L""));
    ExpectFindersConsistent(view);
    EXPECT_EQ(view.FindRowIndex(m[0], 1), view.FindRowIndexByTag(m[0], L"one")) << m[0];
  }
  EXPECT_EQ(5, view.FindRowIndex(1));
  EXPECT_EQ(9, view.FindRowIndex(6, 1));
  ASSERT_TRUE(view.SetRowId(4, 44));
  ASSERT_TRUE(view.SetRowId(4, 45));
  EXPECT_EQ(-1, view.FindRowIndexByRowId(44));
  EXPECT_EQ(4, view.FindRowIndexByRowId(45));
  EXPECT_TRUE(view.SetRowId(3, 44)) << "the old id is free again";
  ExpectFindersConsistent(view);
}

TEST(GridRows, DeleteByListsTagsAndLParams) {
  QnListView2 view;
  for (int i = 0; i < 6; ++i) {
    view.AddRow(i);
    view.SetRowTag(i, i < 3 ? L"a" : L"b");
  }
  const std::vector<int> indices = {0, 9};
  const L lParams = {4};
  EXPECT_EQ(2, view.DeleteRows(&indices, &lParams));
  EXPECT_EQ((L{1, 2, 3, 5}), LParams(view));
  EXPECT_EQ(0, view.DeleteRows(nullptr, nullptr));
  EXPECT_EQ(2, view.DeleteRowsByTags(std::vector<astr>{"a"}));
  EXPECT_EQ((L{3, 5}), LParams(view));
  EXPECT_TRUE(view.DeleteRow(-1, 5));
  EXPECT_FALSE(view.DeleteRow(-1, 5));
  EXPECT_EQ((L{3}), LParams(view));
  ExpectFindersConsistent(view);
}

TEST(GridRows, CategoriesGroupTheRowsBelowThem) {
  QnListView2 view;
  view.AddCategoryRow(100, 0, L"empty first");
  view.AddCategoryRow(200, 0, L"full");
  view.AddRow(1);
  view.AddRow(2);
  view.AddCategoryRow(300, 0, L"empty middle");
  view.AddCategoryRow(400, 0, L"full too");
  view.AddRow(3);
  view.AddCategoryRow(500, 0, L"empty last");
  EXPECT_EQ(1, view.FindNextCategoryRowIndex(0));
  EXPECT_EQ(4, view.FindNextCategoryRowIndex(2));
  EXPECT_EQ(0, view.FindNextCategoryRowIndex(-1));
  EXPECT_EQ(-1, view.FindNextCategoryRowIndex(7));
  EXPECT_EQ(3, view.DeleteEmptyCategoryRows());
  EXPECT_EQ((L{200, 1, 2, 400, 3}), LParams(view));
  EXPECT_TRUE(view.IsCategoryRow(3));
  EXPECT_FALSE(view.IsCategoryRow(4));
  EXPECT_EQ(0, view.DeleteEmptyCategoryRows());
  ExpectFindersConsistent(view);
}

// root(1) { a(2) { a1(4) }, b(3) }, other(5)
void FillTree(QnListView2& view) {
  view.DeleteAllRows();
  const int root = view.AddRow(1);
  view.SetRowId(root, 1);
  const int other = view.AddRow(5);
  view.SetRowId(other, 5);
  const int a = view.AddRow(2, root);
  view.SetRowId(a, 2);
  const int b = view.AddRow(3, root);
  view.SetRowId(b, 3);
  const int a1 = view.AddRow(4, a);
  view.SetRowId(a1, 4);
}

TEST(GridRows, ChildrenGoUnderTheirParent) {
  QnListView2 view;
  view.AddColumn(L"c", 10);
  FillTree(view);
  EXPECT_EQ((L{1, 2, 4, 3, 5}), LParams(view)) << "each child after its parent's subtree";
  EXPECT_EQ(1, view.GetRowParentId(1));
  ASSERT_TRUE(view.SetRowId(0, 10));
  EXPECT_EQ(10, view.GetRowParentId(1)) << "children follow their parent's new id";
  EXPECT_EQ(10, view.GetRowParentId(3));
  ASSERT_TRUE(view.SetRowId(0, 1));
  EXPECT_EQ(0, view.GetParentRow(3));
  EXPECT_EQ(-1, view.GetParentRow(4));
  EXPECT_EQ((std::vector<int>{1, 3}), view.GetChildRows(0));
  EXPECT_EQ((std::vector<int>{1, 2, 3}), view.GetChildRows(0, true));
  EXPECT_TRUE(view.HasChildRows(1));
  EXPECT_FALSE(view.HasChildRows(2));
  EXPECT_EQ(3, view.GetNextSiblingRow(1));
  EXPECT_EQ(1, view.GetPrevSiblingRow(3));
  EXPECT_EQ(-1, view.GetNextSiblingRow(3));
  EXPECT_EQ(4, view.GetNextSiblingRow(0));

  ASSERT_TRUE(view.SetCollapsed(1, true));
  EXPECT_EQ((std::vector<int>{1, 3}), view.GetChildRows(0, true, false));
  EXPECT_FALSE(view.SetRowParentId(0, 4)) << "a row under its own grandchild";
  EXPECT_FALSE(view.SetRowParentId(0, 1));

  // Deleting a parent takes its subtree along.
  ASSERT_TRUE(view.DeleteRow(1));
  EXPECT_EQ((L{1, 3, 5}), LParams(view));
  EXPECT_EQ((std::vector<int>{1}), view.GetChildRows(0, true));
  ExpectFindersConsistent(view);
}

TEST(GridRows, CollapsedStateSurvivesARefillById) {
  QnListView2 view;
  FillTree(view);
  ASSERT_TRUE(view.SetCollapsed(1, true));     // a, id 2
  ASSERT_TRUE(view.CollapseRowsToRoot(2, true));  // a1 and its ancestors a, root
  ASSERT_TRUE(view.SetCollapsed(2, false));
  const std::set<long long> ids = view.GetCollapsedRowIds();
  EXPECT_EQ((std::set<long long>{1, 2}), ids);

  // The refill puts the rows at other indices.
  view.DeleteAllRows();
  const int other = view.AddRow(5);
  view.SetRowId(other, 5);
  const int root = view.AddRow(1);
  view.SetRowId(root, 1);
  const int a = view.AddRow(2, root);
  view.SetRowId(a, 2);
  view.SetCollapsed(other, true);
  view.SetCollapsedRowIds(ids, false);
  EXPECT_TRUE(view.IsCollapsed(1));
  EXPECT_TRUE(view.IsCollapsed(2));
  EXPECT_TRUE(view.IsCollapsed(0)) << "kept without expandOthers";
  view.SetCollapsedRowIds(ids, true);
  EXPECT_FALSE(view.IsCollapsed(0));
  EXPECT_EQ(ids, view.GetCollapsedRowIds());

  // Showing a row expands what hides it.
  ASSERT_TRUE(view.EnsureVisible(2));
  EXPECT_FALSE(view.IsCollapsed(1));
}

TEST(GridRows, ThreeStateChecksFollowTheChildren) {
  QnListView2 view;
  view.AddColumn(L"c", 10);
  FillTree(view);  // 0 root { 1 a { 2 a1 }, 3 b }, 4 other
  EXPECT_FALSE(view.Update3StateCheck(0)) << "no child has a check";
  view.SetCellCheck(2, 0, QnListView2::Checked);
  view.SetCellCheck(3, 0, QnListView2::Unchecked);
  ASSERT_TRUE(view.Update3StateCheck(1));
  EXPECT_EQ(QnListView2::Checked, view.GetCellCheck(1, 0));
  EXPECT_EQ(QnListView2::CheckMixed, view.GetCellCheck(0, 0)) << "the ancestors follow";
  view.SetCellCheck(3, 0, QnListView2::Checked);
  ASSERT_TRUE(view.Update3StateCheck(0));
  EXPECT_EQ(QnListView2::Checked, view.GetCellCheck(0, 0));
  view.SetCellCheck(2, 0, QnListView2::Unchecked);
  view.SetCellCheck(3, 0, QnListView2::Unchecked);
  ASSERT_TRUE(view.Update3StateCheck(1));
  EXPECT_EQ(QnListView2::Unchecked, view.GetCellCheck(0, 0));
  view.SetCellCheck(2, 0, QnListView2::CheckMixed);
  ASSERT_TRUE(view.Update3StateCheck(1));
  EXPECT_EQ(QnListView2::CheckMixed, view.GetCellCheck(1, 0));
  EXPECT_EQ(QnListView2::CheckMixed, view.GetCellCheck(0, 0));

  EXPECT_TRUE(view.SetCheckedRowsLParams(0, {3, 5}));
  EXPECT_EQ((L{3, 5}), view.GetCheckedRowsLParams(0, QnListView2::Checked));
  EXPECT_EQ((L{1, 2, 4}), view.GetCheckedRowsLParams(0, QnListView2::Unchecked));
}

}  // namespace
