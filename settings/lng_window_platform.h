// The window operations behind translated dialogs, and the icon the suite
// puts on them (lng_window_platform_win.cpp / lng_window_platform_posix.cpp).
#ifndef QUILTOOL_SETTINGS_LNG_WINDOW_PLATFORM_H
#define QUILTOOL_SETTINGS_LNG_WINDOW_PLATFORM_H

#include "qn_window_presenter.h"

namespace qt {
namespace lng_window {
namespace platform {

// The presenter used when the host installed none. Windows: the real
// window calls (WM_SETICON, WM_SETTEXT, SetDlgItemTextW, DWLP_USER).
// Linux has no windows: each operation becomes a line on stderr, texts in
// UTF-8, and a dialog has no user value (0).
QnWindowPresenter& DefaultWindowPresenter();

// The suite's small application icon. The icon belongs to the host's
// utilities; the library has none of its own and answers null on both
// targets, which clears a dialog's icon.
HICON AppSmallIcon();

}  // namespace platform
}  // namespace lng_window
}  // namespace qt

#endif
