// Who shows the library's pop-up menus and its small choosing dialogs.
//
// The default presenter on Windows shows the real pop-up menu
// (TrackPopupMenu) and the real dialogs. On Linux, where the library has no
// windows, it writes the menu to stderr and answers 0: nothing was chosen.
// A host or a test installs its own presenter to take over on either
// target; the library then acts on the answer exactly as on a user's click.
#ifndef QUILTOOL_QN_MENU_PRESENTER_H
#define QUILTOOL_QN_MENU_PRESENTER_H

#include <vector>

#include "qn_wintypes.h"
#include "quiltool_export.h"
#include "ustr.h"

// One entry of a pop-up menu, top to bottom. A separator has command 0 and
// no text.
struct QnMenuItem {
  int command = 0;
  ustr text;
  bool separator = false;
  bool checked = false;
  bool greyed = false;
};

// One row of a "choose columns" dialog: the user checks the columns to
// show and may change widths.
struct QnColumnChoice {
  int column = 0;
  ustr name;
  int width = 0;
  bool shown = true;
};

class QnMenuPresenter {
 public:
  virtual ~QnMenuPresenter() {}
  // Shows the menu at a screen point and answers the command the user
  // chose, or 0 when the menu was dismissed or could not be shown.
  virtual int trackMenu(HWND owner, const std::vector<QnMenuItem>& items, POINT screenPoint) = 0;
  // Lets the user change the columns' shown marks and widths. Answers true
  // when the user confirmed (choices then hold the new state), false when
  // cancelled or when the dialog could not be shown.
  virtual bool chooseColumns(HWND owner, const wchar_t* title, std::vector<QnColumnChoice>& choices) = 0;
};

// Installs a presenter (not owned) and returns the previous one; null
// restores the default.
QT_API QnMenuPresenter* qn_set_menu_presenter(QnMenuPresenter* presenter);

#endif
