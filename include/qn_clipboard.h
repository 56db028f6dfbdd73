// Who puts the library's text on the clipboard.
//
// The default on Windows is the system clipboard (CF_UNICODETEXT). Linux
// has no clipboard of its own to reach, so there the default refuses and
// answers false; a Linux host that has one (its toolkit's, a desktop
// session's) installs a presenter that writes to it. Tests install one to
// see the text on either target.
#ifndef QUILTOOL_QN_CLIPBOARD_H
#define QUILTOOL_QN_CLIPBOARD_H

#include "qn_wintypes.h"
#include "quiltool_export.h"

class QnClipboardPresenter {
 public:
  virtual ~QnClipboardPresenter() {}
  // text is the whole text, terminated; the answer is true when the text
  // is now on the clipboard, and the library hands it on to its caller.
  virtual bool putText(HWND owner, const wchar_t* text) = 0;
};

// Installs a presenter (not owned) and returns the previous one; null
// restores the default.
QT_API QnClipboardPresenter* qn_set_clipboard_presenter(QnClipboardPresenter* presenter);

#endif
