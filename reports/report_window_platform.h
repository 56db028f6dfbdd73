// The report window itself (report_window_platform_win.cpp /
// report_window_platform_posix.cpp).
#ifndef QUILTOOL_REPORTS_REPORT_WINDOW_PLATFORM_H
#define QUILTOOL_REPORTS_REPORT_WINDOW_PLATFORM_H

#include "reports/report_dialog_impl.h"

namespace qt {
namespace report {
namespace platform {

// Windows: the dialog from the library's resources, modal to parent, with
// its menu, buttons and the table; it keeps its place under
// kWindowPosName. Linux has no window: the report goes to stderr as the
// text file's lines, and the callback sees the window open and close.
bool RunWindow(SimpleReportOuputDlg& dialog, SimpleReportOuputDlg::Impl& impl, HWND parent);
// Ends RunWindow (saving the window's place first).
void EndWindow(SimpleReportOuputDlg::Impl& impl);
// Shows the table at impl.zoom percent.
void ApplyZoom(SimpleReportOuputDlg::Impl& impl);
// The percentage typed into the zoom field, or -1 when it holds none.
int ReadZoomField(SimpleReportOuputDlg::Impl& impl);
// Releases what ApplyZoom made.
void ReleaseZoom(SimpleReportOuputDlg::Impl& impl);

}  // namespace platform
}  // namespace report
}  // namespace qt

#endif
