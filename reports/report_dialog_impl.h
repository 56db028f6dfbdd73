// The report window's state, shared by its portable part (report_dialog.cpp)
// and the platform's window (report_window_platform_*.cpp).
#ifndef QUILTOOL_REPORTS_REPORT_DIALOG_IMPL_H
#define QUILTOOL_REPORTS_REPORT_DIALOG_IMPL_H

#include "QnListView2.h"
#include "SimpleReport.h"

struct SimpleReportOuputDlg::Impl {
  const SimpleReport* report = nullptr;
  SimpleReport::Callback* callback = nullptr;
  DummyDialogCallback none;
  QnListView2 list;
  bool listFilled = false;
  bool listAttached = false;  // the grid drives the list control itself
  HWND window = nullptr;
  int zoom = 100;
  void* zoomFont = nullptr;  // the platform's font for the zoomed table
  bool closing = false;
};

namespace qt {
namespace report {

// The window's texts, each a language text of the main module.
ustr TitleText();
ustr MenuText(int command);
ustr ButtonText(int command);
ustr FileMenuText();
ustr EditMenuText();
ustr ZoomLabelText();

// The column title as the grid shows it: the second header line under the
// first.
ustr ColumnTitle(const SimpleReport::ColumnData& column);

// The registry name the window keeps its place under.
extern const wchar_t kWindowPosName[];

}  // namespace report
}  // namespace qt

#endif
