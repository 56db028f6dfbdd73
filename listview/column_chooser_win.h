// The "Choose columns" dialog: one row per column with a check box to
// show it, its name and an editable width, in a grid of the library's own.
#ifndef QUILTOOL_LISTVIEW_COLUMN_CHOOSER_WIN_H
#define QUILTOOL_LISTVIEW_COLUMN_CHOOSER_WIN_H

#include <vector>

#include "qn_menu_presenter.h"

namespace qt {
namespace listview {

// Modal; true when the user pressed OK (choices then hold the new state).
bool RunColumnChooser(HWND owner, const wchar_t* title, std::vector<QnColumnChoice>& choices);

}  // namespace listview
}  // namespace qt

#endif
