// What in-place editing does, decided without a window: which editor a
// cell gets, the text it starts with, how an edited text goes back into
// the cell, and where the editor goes after Enter. The control code only
// creates the windows these answers describe.
#ifndef QUILTOOL_LISTVIEW_EDITING_H
#define QUILTOOL_LISTVIEW_EDITING_H

#include <vector>

#include "listview/qnlistview2_impl.h"

namespace qt {
namespace listview {

enum class EditorKind { None, Edit, Combo };

// None for read-only cells (cell, row or column style), category rows,
// check boxes and command cells (a click acts on those) and geometry.
EditorKind EditorFor(const QnListView2Impl& m, int row, int column);

// The text the edit field opens with: a floating value with its decimals
// as "%.*lf" would write it, anything else as the cell shows it.
ustr EditorText(const QnListView2Impl& m, int row, int column);

// The drop-down entry the cell shows, -1 when none.
int ComboIndex(const QnListView2Impl& m, int row, int column);

enum class Commit { Stored, Unchanged, Rejected };

// Parses `text` back into the cell's kind and checks it against the
// column's range. A rejected value leaves the cell as it was and gives
// the message to show; Unchanged means the value equals the old one.
Commit CommitText(QnListView2Impl& m, int row, int column, const ustr& text, ustr& message);
// Shows the drop-down entry `index` in the cell.
Commit CommitChoice(QnListView2Impl& m, int row, int column, int index);

// Where Enter sends the editor after a commit, following the view's
// "next cell" and "next row" styles over the rows the control shows.
// False when the editor just closes.
bool NextEditorCell(const QnListView2Impl& m, const std::vector<int>& shownRows, int& row, int& column);

}  // namespace listview
}  // namespace qt

#endif
