// Showing a message box and keeping the keyboard focus across it
// (msgbox_platform_win.cpp / msgbox_platform_posix.cpp).
#ifndef QUILTOOL_CORE_MSGBOX_PLATFORM_H
#define QUILTOOL_CORE_MSGBOX_PLATFORM_H

#include "gwframe.h"
#include "qn_presenter.h"

namespace qt {
namespace msgbox {
namespace platform {

// The presenter used when the host installed none. Windows: MessageBoxW /
// MessageBoxA. Linux: the text on stderr; a question is asked on the
// terminal only when stdin and stderr are terminals, otherwise the box
// counts as not shown and answers 0.
QnMessagePresenter& DefaultPresenter();
// The window that has the keyboard focus (GetFocus); null on Linux.
HWND FocusedWindow();
// Gives the focus back (SetFocus) when the window still exists and lost
// it; nothing on Linux.
void RestoreFocus(HWND previous);

}  // namespace platform
}  // namespace msgbox
}  // namespace qt

#endif
