// Where the parts of a cell go and which colours it takes, computed
// without a window so that every target can check it; the drawing code
// only paints what these answers say.
#ifndef QUILTOOL_LISTVIEW_LAYOUT_H
#define QUILTOOL_LISTVIEW_LAYOUT_H

#include <vector>

#include "listview/qnlistview2_impl.h"

namespace qt {
namespace listview {

struct Box {
  int left = 0;
  int top = 0;
  int right = 0;
  int bottom = 0;
  int width() const { return right - left; }
  int height() const { return bottom - top; }
  bool empty() const { return right <= left || bottom <= top; }
};

// The rows the control lists, top to bottom: every row whose ancestors
// are all expanded.
std::vector<int> ShownRows(const QnListView2Impl& m);

// Number of ancestors of the row.
int TreeDepth(const QnListView2Impl& m, int row);

// For the tree lines of a row at depth d: entry k (0..d-1) tells whether
// the ancestor at depth k+1 on the row's path has a later sibling, so a
// vertical line passes through level k; the last entry is the row's own
// (a later sibling turns its elbow into a tee).
std::vector<bool> TreeLineLevels(const QnListView2Impl& m, int row);

// Colours of a cell: the cell's own over the row's over the column's;
// NoColor where none of them sets one (the control's default applies).
struct Colors {
  COLORREF text = QnListView2::NoColor;
  COLORREF back = QnListView2::NoColor;
};
Colors EffectiveColors(const QnListView2Impl& m, int row, int column);

// The alignment a cell is drawn with: the cell's, else the column's, with
// each missing part filled in (left, vertically centred; numbers right).
int EffectiveAlignment(const QnListView2Impl& m, int row, int column);

// Sizes the parts of a cell are laid out with.
struct Metrics {
  int indent = 16;    // per tree level, also the expander's square
  int checkSize = 13;
  int gap = 2;
  int bitmapWidth = 0;  // of the cell's bitmap, 0 for none
};

// A cell cut into its parts, left to right: tree indentation and expander
// (first column of a tree row), check box, bitmap, then the text.
struct CellParts {
  bool expander = false;  // the row has children
  Box expanderBox;
  bool check = false;
  Box checkBox;
  Box bitmapBox;
  Box textBox;
  int depth = 0;
};
CellParts SplitCell(const QnListView2Impl& m, int row, int column, const Box& cell, const Metrics& metrics);

// The box a cell paints into once its spans are applied: `columnBoxes`
// are the boxes of the row's cells (index = column), `rowHeight` the
// height of one listed row. Shown columns to the right and listed rows
// below are covered.
Box SpanBox(const QnListView2Impl& m, int row, int column, const std::vector<Box>& columnBoxes, int rowHeight);

// True when an earlier cell's span covers this one, which then is not
// painted. `shownRows` are the listed rows.
bool CoveredBySpan(const QnListView2Impl& m, const std::vector<int>& shownRows, int row, int column);

}  // namespace listview
}  // namespace qt

#endif
