#include <cstdio>
#include <string>

#include "qn_utf.h"
#include "reports/export_format.h"
#include "reports/report_window_platform.h"

namespace qt {
namespace report {
namespace platform {

bool RunWindow(SimpleReportOuputDlg& dialog, SimpleReportOuputDlg::Impl& impl, HWND) {
  impl.callback->OnInitDialog(dialog);
  // The text file's lines are what a terminal shows best: one row a line.
  const std::string bytes = BuildText(impl.report->data());
  const std::wstring text = qn_utf16le_to_wide(bytes.data() + 2, bytes.size() - 2);
  std::string lines = qn_wide_to_utf8(text.c_str(), text.size());
  std::string out;
  for (char c : lines) {
    if (c != '\r') out.push_back(c);
  }
  const ustr title = TitleText();
  std::fprintf(stderr, "== %s\n%s\n", qn_wide_to_utf8(title.c_str()).c_str(), out.c_str());
  std::fflush(stderr);
  if (!impl.closing) {
    impl.closing = true;
    impl.callback->OnClose(dialog);
  }
  return true;
}

void EndWindow(SimpleReportOuputDlg::Impl&) {}

void ApplyZoom(SimpleReportOuputDlg::Impl&) {}

int ReadZoomField(SimpleReportOuputDlg::Impl& impl) { return impl.zoom; }

void ReleaseZoom(SimpleReportOuputDlg::Impl&) {}

}  // namespace platform
}  // namespace report
}  // namespace qt
