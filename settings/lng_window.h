// The default window presenter of each target (lng_window_win.cpp /
// lng_window_posix.cpp) and the icon the suite puts on its dialogs.
#ifndef QUILTOOL_SETTINGS_LNG_WINDOW_H
#define QUILTOOL_SETTINGS_LNG_WINDOW_H

#include "qn_window_presenter.h"

namespace qt {

QnWindowPresenter& DefaultWindowPresenter();
// The presenter in force: the installed one or the default.
QnWindowPresenter& WindowPresenter();

// The suite's small application icon. The icon belongs to the host's
// utilities; the library has none of its own and answers null, which
// clears a dialog's icon.
HICON AppSmallIcon();

}  // namespace qt

#endif
