// Putting text on the clipboard: the host's presenter when it installed
// one, the system's clipboard otherwise.
#include "core/clipboard.h"

#include <cwchar>

#include "core/boundary.h"
#include "core/clipboard_platform.h"
#include "qn_clipboard.h"

namespace {

QnClipboardPresenter* g_presenter = nullptr;

}  // namespace

QnClipboardPresenter* qn_set_clipboard_presenter(QnClipboardPresenter* presenter) {
  QnClipboardPresenter* previous = g_presenter;
  g_presenter = presenter;
  return previous;
}

namespace qt {
namespace clipboard {

bool PutText(HWND owner, const ustr& text) {
  return qt::NoThrow<bool>("qt::clipboard::PutText", false, [&]() -> bool {
    // The clipboard's text ends at its first terminator, so a text with
    // one inside goes as far as a reader of the clipboard would see.
    const wchar_t* chars = text.c_str();
    if (g_presenter) return g_presenter->putText(owner, chars);
    return platform::PutText(owner, chars, std::wcslen(chars));
  });
}

}  // namespace clipboard
}  // namespace qt
