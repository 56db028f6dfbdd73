// Who carries out the library's window-text operations (captions, dialog
// item texts, window icons).
//
// The default presenter on Windows sends the real messages (WM_SETICON,
// WM_SETTEXT, SetDlgItemTextW, GetWindowLongPtrW). On Linux, where the
// library has no windows, it writes each operation as a line to stderr. A
// host or a test installs its own presenter to take over on either target.
#ifndef QUILTOOL_QN_WINDOW_PRESENTER_H
#define QUILTOOL_QN_WINDOW_PRESENTER_H

#include "qn_wintypes.h"
#include "quiltool_export.h"

class QnWindowPresenter {
 public:
  virtual ~QnWindowPresenter() {}
  // WM_SETICON with ICON_SMALL; a null icon clears it.
  virtual void setSmallIcon(HWND window, HICON icon) = 0;
  // WM_SETTEXT.
  virtual void setWindowText(HWND window, const wchar_t* text) = 0;
  // SetDlgItemTextW.
  virtual void setDialogItemText(HWND dialog, int controlId, const wchar_t* text) = 0;
  // GetWindowLongPtrW(dialog, DWLP_USER): a small control id or the
  // address of a wide name.
  virtual LONG_PTR dialogUserValue(HWND dialog) = 0;
};

// Installs a presenter (not owned) and returns the previous one; null
// restores the default.
QT_API QnWindowPresenter* qn_set_window_presenter(QnWindowPresenter* presenter);

#endif
