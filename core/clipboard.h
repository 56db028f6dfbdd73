// Putting text on the clipboard: through the installed QnClipboardPresenter
// (qn_clipboard.h) when there is one, else the platform's own clipboard.
#ifndef QUILTOOL_CORE_CLIPBOARD_H
#define QUILTOOL_CORE_CLIPBOARD_H

#include "qn_wintypes.h"
#include "ustr.h"

namespace qt {
namespace clipboard {

// True when the text is on the clipboard (or the presenter took it).
bool PutText(HWND owner, const ustr& text);

}  // namespace clipboard
}  // namespace qt

#endif
