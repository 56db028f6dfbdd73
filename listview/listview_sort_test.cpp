// Grid sorting: the built-in order, several keys with their own
// directions, stability, the tree and categories, and comparison functions.
#include <gtest/gtest.h>

#include <algorithm>
#include <cwctype>
#include <string>

#include "listview/listview_test_support.h"

namespace {

using qt_test::LParams;
typedef std::vector<long long> L;
typedef QnListView2 V;

std::wstring Upper(std::wstring s) {
  for (wchar_t& c : s) c = static_cast<wchar_t>(std::towupper(c));
  return s;
}

TEST(GridSort, BuiltInOrderEmptyNumbersTextsCaseInsensitive) {
  QnListView2 view;
  view.AddColumn(L"c", 10);
  const int r0 = view.AddRow(0);
  view.SetCell(r0, 0, ustr(L"beta"));
  view.SetCell(view.AddRow(1), 0, 10);
  view.SetCell(view.AddRow(2), 0, 9.5);
  view.AddRow(3);  // empty
  view.SetCell(view.AddRow(4), 0, ustr(L"Alpha"));
  view.SetCell(view.AddRow(5), 0, static_cast<short>(-3));
  view.SetCell(view.AddRow(6), 0, ustr(L"ALPHA"));
  view.SetCell(view.AddRow(7), 0, ustr(L"10"));  // a text, not a number
  ASSERT_TRUE(view.SortRows(V::SortAscending, 0));
  EXPECT_EQ((L{3, 5, 2, 1, 7, 4, 6, 0}), LParams(view));
  EXPECT_EQ(0, view.GetSortColumn());
  ASSERT_TRUE(view.SortRows(V::SortDescending, 0));
  EXPECT_EQ((L{0, 4, 6, 7, 1, 2, 5, 3}), LParams(view)) << "ties keep their order either way";
  EXPECT_EQ(V::SortDescending, view.GetSortType());
  EXPECT_FALSE(view.SortRows(V::SortAscending, 1));
  EXPECT_FALSE(view.SortRows(std::vector<V::SortType>{V::SortAscending}, std::vector<int>{0, 0}));
}

// 60 rows, three keys with few values each, so that every key decides
// some pairs and many rows tie on all three.
TEST(GridSort, SeveralKeysEachWithItsDirectionAndStable) {
  QnListView2 view;
  for (int c = 0; c < 4; ++c) view.AddColumn(L"c", 10);
  struct Plain {
    int a;
    double b;
    std::wstring c;
    int lp;
  };
  std::vector<Plain> plain;
  const wchar_t* words[] = {L"x", L"Y", L"z"};
  for (int i = 0; i < 60; ++i) {
    const Plain p = {(i * 7) % 3, ((i * 5) % 4) * 0.5, words[(i * 11) % 3], i};
    plain.push_back(p);
    const int r = view.AddRow(i);
    view.SetCell(r, 0, p.a);
    view.SetCell(r, 1, p.b);
    view.SetCell(r, 2, ustr(p.c.c_str()));
    view.SetCell(r, 3, i % 5);
  }
  ASSERT_TRUE(view.SortRows({V::SortAscending, V::SortDescending, V::SortAscending}, {0, 1, 2}));
  std::stable_sort(plain.begin(), plain.end(), [](const Plain& x, const Plain& y) {
    if (x.a != y.a) return x.a < y.a;
    if (x.b != y.b) return x.b > y.b;
    return Upper(x.c) < Upper(y.c);
  });
  L expected;
  for (const Plain& p : plain) expected.push_back(p.lp);
  EXPECT_EQ(expected, LParams(view));
  EXPECT_EQ((std::vector<int>{0, 1, 2}), view.GetSortColumns());

  // Four keys take the general path; the fourth breaks the remaining ties.
  ASSERT_TRUE(view.SortRows({V::SortAscending, V::SortDescending, V::SortAscending, V::SortDescending}, {0, 1, 2, 3}));
  std::stable_sort(plain.begin(), plain.end(), [](const Plain& x, const Plain& y) {
    if (x.a != y.a) return x.a < y.a;
    if (x.b != y.b) return x.b > y.b;
    if (Upper(x.c) != Upper(y.c)) return Upper(x.c) < Upper(y.c);
    return x.lp % 5 > y.lp % 5;
  });
  expected.clear();
  for (const Plain& p : plain) expected.push_back(p.lp);
  EXPECT_EQ(expected, LParams(view));

  // The state sorts again after the rows changed.
  view.SetCell(view.FindRowIndex(59), 0, -1);
  ASSERT_TRUE(view.SortRows());
  EXPECT_EQ(59, view.GetRowLParam(0));
  qt_test::ExpectFindersConsistent(view);
}

TEST(GridSort, ChildrenStayUnderParentsAndRowsUnderCategories) {
  QnListView2 view;
  view.AddColumn(L"c", 10);
  // cat A: p3 { c2, c1 { g9, g8 } }, p1 ; cat B: q2, q1
  view.AddCategoryRow(100, 0, L"A");
  const int p3 = view.AddRow(3);
  view.SetCell(p3, 0, 3);
  const int p1 = view.AddRow(1);
  view.SetCell(p1, 0, 1);
  view.SetCell(view.AddRow(32, p3), 0, 2);
  const int c1 = view.AddRow(31, p3);
  view.SetCell(c1, 0, 1);
  view.SetCell(view.AddRow(319, c1), 0, 9);
  view.SetCell(view.AddRow(318, c1), 0, 8);
  view.AddCategoryRow(200, 0, L"B");
  view.SetCell(view.AddRow(22), 0, 2);
  view.SetCell(view.AddRow(21), 0, 1);
  EXPECT_EQ((L{100, 3, 32, 31, 319, 318, 1, 200, 22, 21}), LParams(view));

  ASSERT_TRUE(view.SortRows(V::SortAscending, 0));
  EXPECT_EQ((L{100, 1, 3, 31, 318, 319, 32, 200, 21, 22}), LParams(view));
  EXPECT_EQ(view.FindRowIndex(3), view.GetParentRow(view.FindRowIndex(31)));
  ASSERT_TRUE(view.ReverseRows());
  EXPECT_EQ((L{100, 3, 32, 31, 319, 318, 1, 200, 22, 21}), LParams(view));
  qt_test::ExpectFindersConsistent(view);
}

// Orders even LParams by value and declines every pair with an odd one.
bool EvensFirst(int column, V::SortType type, long long a, long long b, bool& decline) {
  if (a % 2 || b % 2) {
    decline = true;
    return false;
  }
  return type == V::SortAscending ? a < b : a > b;
}

TEST(GridSort, ComparisonFunctionAndItsDecline) {
  QnListView2 view;
  view.AddColumn(L"c", 10);
  // Evens by LParam (2, 4, 6) although their values say 6, 4, 2; any pair
  // with an odd row by value, which puts the odd rows last.
  const long long lps[] = {4, 3, 2, 1, 6};
  const int values[] = {1, 50, 9, 100, 0};
  for (int i = 0; i < 5; ++i) view.SetCell(view.AddRow(lps[i]), 0, values[i]);
  ASSERT_TRUE(view.SortRows(&EvensFirst, 0));
  EXPECT_EQ((L{2, 4, 6, 3, 1}), LParams(view));
  ASSERT_TRUE(view.SortRows(V::SortAscending, 0));
  EXPECT_EQ((L{6, 4, 2, 3, 1}), LParams(view)) << "without the function";

  view.SetRowIsLessFunc(&EvensFirst);
  view.DeleteAllRows();
  for (long long lp : {8, 2, 6}) view.AddRow(lp);
  ASSERT_TRUE(view.SortRows(V::SortDescending, 0));
  EXPECT_EQ((L{8, 6, 2}), LParams(view)) << "the installed function decides";
  view.SetRowIsLessFunc(nullptr);
  ASSERT_TRUE(view.SortRows(V::SortDescending, 0));
  EXPECT_EQ((L{8, 6, 2}), LParams(view)) << "all empty: the order stays";
}

}  // namespace
