// Who shows the library's message boxes.
//
// The default presenter on Windows is the system's MessageBoxW/MessageBoxA.
// On Linux it writes the caption and text to stderr, asks on the terminal
// when one is attached (stdin and stderr both TTYs) and answers 0 ("could not
// be shown") when nobody can answer. A host or a test installs its own
// presenter to take over on either target.
#ifndef QUILTOOL_QN_PRESENTER_H
#define QUILTOOL_QN_PRESENTER_H

#include "qn_wintypes.h"
#include "quiltool_export.h"

class QnMessagePresenter {
 public:
  virtual ~QnMessagePresenter() {}
  // style holds the MB_* bits exactly as the library passes them to
  // MessageBoxW; the result is a button code (IDOK, IDYES, ...) or 0.
  virtual int showMessage(HWND owner, const wchar_t* text, const wchar_t* caption, unsigned int style) = 0;
  // The 8-bit form (MessageBoxA).
  virtual int showMessageA(HWND owner, const char* text, const char* caption, unsigned int style) = 0;
};

// Installs a presenter (not owned) and returns the previous one; null
// restores the default.
QT_API QnMessagePresenter* qn_set_message_presenter(QnMessagePresenter* presenter);

#endif
