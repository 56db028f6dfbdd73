// Shared by the grid's tests: reaching the model behind the facade, and
// small fills.
#ifndef QUILTOOL_LISTVIEW_TEST_SUPPORT_H
#define QUILTOOL_LISTVIEW_TEST_SUPPORT_H

#include <vector>

#include "QnListView2.h"
#include "listview/qnlistview2_impl.h"

struct QnListView2TestAccess {
  static QnListView2Impl& Impl(QnListView2& view) { return *view.m_impl; }
};

namespace qt_test {

// The rows' LParams, top to bottom.
inline std::vector<long long> LParams(const QnListView2& view) { return view.GetRowsLParams(); }

// Every row is found by its LParam, id and tag at its own index; rows
// sharing an LParam are found from the top and then from each later row.
inline void ExpectFindersConsistent(const QnListView2& view) {
  for (int r = 0; r < view.GetRowCount(); ++r) {
    const long long lp = view.GetRowLParam(r);
    int first = -1;
    for (int i = 0; i < view.GetRowCount() && first < 0; ++i)
      if (view.GetRowLParam(i) == lp) first = i;
    EXPECT_EQ(first, view.FindRowIndex(lp)) << "row " << r;
    EXPECT_EQ(r, view.FindRowIndex(r, lp)) << "row " << r;
    EXPECT_EQ(r, view.FindRowIndexByRowId(view.GetRowId(r))) << "row " << r;
    if (!view.GetRowTag(r).empty()) {
      EXPECT_EQ(r, view.FindRowIndexByTag(r, view.GetRowTag(r).c_str())) << "row " << r;
    }
  }
}

}  // namespace qt_test

#endif
