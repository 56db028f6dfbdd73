// The system clipboard (clipboard_platform_win.cpp /
// clipboard_platform_posix.cpp).
#ifndef QUILTOOL_CORE_CLIPBOARD_PLATFORM_H
#define QUILTOOL_CORE_CLIPBOARD_PLATFORM_H

#include <cstddef>

#include "qn_wintypes.h"

namespace qt {
namespace clipboard {
namespace platform {

// Replaces the clipboard's content by `length` characters of text (no
// terminator among them). Windows: OpenClipboard(owner), EmptyClipboard,
// a GMEM_MOVEABLE block holding the text and its terminator handed over
// with SetClipboardData(CF_UNICODETEXT), CloseClipboard; false when any
// step fails, and the block is freed unless the clipboard took it.
// Linux: there is no system clipboard the library could reach; always
// false (a host that has one installs a QnClipboardPresenter).
bool PutText(HWND owner, const wchar_t* text, size_t length);

}  // namespace platform
}  // namespace clipboard
}  // namespace qt

#endif
