// Linux has no clipboard of the system's: it belongs to whatever display
// session the host runs in, which the library does not know. A host with
// one installs a QnClipboardPresenter (qn_clipboard.h).
#include "core/clipboard_platform.h"

namespace qt {
namespace clipboard {
namespace platform {

bool PutText(HWND, const wchar_t*, size_t) { return false; }

}  // namespace platform
}  // namespace clipboard
}  // namespace qt
