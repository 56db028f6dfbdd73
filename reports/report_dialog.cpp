#include <new>

#include "Lng.h"
#include "core/boundary.h"
#include "core/clipboard.h"
#include "qn_utf.h"
#include "reports/export_format.h"
#include "reports/report_dialog_impl.h"
#include "reports/report_presenter.h"
#include "reports/report_save.h"
#include "reports/report_window_platform.h"

namespace qt {
namespace report {

const wchar_t kWindowPosName[] = L"Window/ReportOutputDialog";

ustr TitleText() { return Lng::text(Lng::APP_HPV, 26150, L"Report"); }

ustr FileMenuText() { return Lng::text(Lng::APP_HPV, 45101, L"&File"); }

ustr EditMenuText() { return Lng::text(Lng::APP_HPV, 45102, L"&Edit"); }

ustr ZoomLabelText() { return Lng::text(Lng::APP_HPV, 45108, L"Zoom"); }

ustr MenuText(int command) {
  switch (command) {
    case SimpleReportOuputDlg::CmdSaveText: return Lng::text(Lng::APP_HPV, 45103, L"Save to text file...");
    case SimpleReportOuputDlg::CmdSaveExcel: return Lng::text(Lng::APP_HPV, 45104, L"Save to Excel file...");
    case SimpleReportOuputDlg::CmdExit: return Lng::text(Lng::APP_HPV, 45105, L"&Exit");
    case SimpleReportOuputDlg::CmdCopy: return Lng::text(Lng::APP_HPV, 45106, L"&Copy to clipboard");
    default: return ustr();
  }
}

ustr ButtonText(int command) {
  switch (command) {
    case SimpleReportOuputDlg::CmdCopy: return Lng::text(Lng::APP_HPV, 45107, L"Copy to clipboard");
    case SimpleReportOuputDlg::CmdZoomApply: return Lng::text(Lng::APP_HPV, 45109, L"Apply");
    case SimpleReportOuputDlg::CmdClose: return Lng::text(Lng::APP_HPV, 45110, L"Close");
    default: return MenuText(command);
  }
}

ustr ColumnTitle(const SimpleReport::ColumnData& column) {
  ustr title = column.header;
  if (!column.header2.empty()) {
    title += L"\n";
    title += column.header2;
  }
  return title;
}

namespace {

// Spreadsheet widths are points; the grid wants pixels at 96 dots per inch.
int PointsToPixels(int points) { return points > 0 ? points * 4 / 3 : 0; }

void FillList(SimpleReportOuputDlg::Impl& impl) {
  if (impl.listFilled) return;
  const SimpleReportData& data = impl.report->data();
  QnListView2& list = impl.list;
  for (const SimpleReport::ColumnData& column : data.columns) {
    list.AddColumn(ColumnTitle(column), PointsToPixels(column.width));
  }
  const int columns = static_cast<int>(data.columns.size());
  for (size_t r = 0; r < data.rows.size(); ++r) {
    const int row = list.AddRow(data.rows[r].lParam);
    for (int c = 0; c < columns; ++c) {
      const SimpleReport::CellData* cell = CellAt(data, r, static_cast<size_t>(c));
      if (!cell) continue;
      // The grid shows the text form itself, so that what is seen is what
      // the files and the clipboard get (the grid's own number formatting
      // rounds differently); numbers keep to the right.
      list.SetCell(row, c, SimpleReport::GetCellText(*cell), 0, false);
      if (cell->kind == SimpleReport::CellInteger || cell->kind == SimpleReport::CellDouble) {
        list.SetCellAlignment(row, c, QnListView2::AlignRight | QnListView2::AlignVCenter);
      }
    }
  }
  list.SetStyle(QnListView2::FullRowSelect | QnListView2::GridLines,
                QnListView2::FullRowSelect | QnListView2::GridLines);
  impl.listFilled = true;
}

}  // namespace

}  // namespace report
}  // namespace qt

SimpleReportOuputDlg::SimpleReportOuputDlg(const SimpleReport& report, SimpleReport::Callback* callback)
    : impl_(new Impl) {
  impl_->report = &report;
  impl_->callback = callback ? callback : &impl_->none;
}

SimpleReportOuputDlg::~SimpleReportOuputDlg() {
  qt::report::platform::ReleaseZoom(*impl_);
  delete impl_;
}

bool SimpleReportOuputDlg::DoModal(HWND parent) {
  return qt::NoThrow<bool>("SimpleReportOuputDlg::DoModal", false, [&]() {
    qt::report::FillList(*impl_);
    impl_->closing = false;
    if (QnReportPresenter* presenter = qt::report::InstalledPresenter()) {
      impl_->callback->OnInitDialog(*this);
      const bool shown = presenter->showReport(*this);
      if (!impl_->closing) impl_->callback->OnClose(*this);
      return shown;
    }
    return qt::report::platform::RunWindow(*this, *impl_, parent);
  });
}

HWND SimpleReportOuputDlg::GetHwnd() const { return impl_->window; }

const SimpleReport& SimpleReportOuputDlg::GetReport() const { return *impl_->report; }

QnListView2& SimpleReportOuputDlg::GetListView() {
  qt::NoThrowVoid("SimpleReportOuputDlg::GetListView", [&]() { qt::report::FillList(*impl_); });
  return impl_->list;
}

bool SimpleReportOuputDlg::SaveToTextFile() {
  return qt::NoThrow<bool>("SimpleReportOuputDlg::SaveToTextFile", false, [&]() {
    return qt::report::SaveWithDialog(impl_->report->data(), qt::report::Format::kText, impl_->window);
  });
}

bool SimpleReportOuputDlg::SaveToExcelFile() {
  return qt::NoThrow<bool>("SimpleReportOuputDlg::SaveToExcelFile", false, [&]() {
    return qt::report::SaveWithDialog(impl_->report->data(), qt::report::Format::kXmlSpreadsheet, impl_->window);
  });
}

bool SimpleReportOuputDlg::CopyToClipboard() {
  return qt::NoThrow<bool>("SimpleReportOuputDlg::CopyToClipboard", false, [&]() {
    // The text file's lines, so that a paste into a spreadsheet gives the
    // same cells as opening the saved text file.
    const std::string bytes = qt::report::BuildText(impl_->report->data());
    const std::wstring text = qn_utf16le_to_wide(bytes.data() + 2, bytes.size() - 2);
    return qt::clipboard::PutText(impl_->window, ustr(text));
  });
}

bool SimpleReportOuputDlg::SetZoom(int percent) {
  return qt::NoThrow<bool>("SimpleReportOuputDlg::SetZoom", false, [&]() {
    if (percent < kMinZoom || percent > kMaxZoom) return false;
    impl_->zoom = percent;
    qt::report::platform::ApplyZoom(*impl_);
    return true;
  });
}

int SimpleReportOuputDlg::GetZoom() const { return impl_->zoom; }

void SimpleReportOuputDlg::RunCommand(int command) {
  qt::NoThrowVoid("SimpleReportOuputDlg::RunCommand", [&]() {
    if (impl_->callback->OnCommand(*this, command)) return;
    switch (command) {
      case CmdSaveText: SaveToTextFile(); break;
      case CmdSaveExcel: SaveToExcelFile(); break;
      case CmdCopy: CopyToClipboard(); break;
      case CmdZoomApply: {
        const int typed = qt::report::platform::ReadZoomField(*impl_);
        // A value out of range puts the current one back in the field.
        if (!SetZoom(typed)) qt::report::platform::ApplyZoom(*impl_);
        break;
      }
      case CmdExit:
      case CmdClose: Close(); break;
      default: break;
    }
  });
}

void SimpleReportOuputDlg::Close() {
  qt::NoThrowVoid("SimpleReportOuputDlg::Close", [&]() {
    if (impl_->closing) return;
    impl_->closing = true;
    impl_->callback->OnClose(*this);
    qt::report::platform::EndWindow(*impl_);
  });
}

bool SimpleReport::Create(HWND parent, Callback* callback) {
  return qt::NoThrow<bool>("SimpleReport::Create", false, [&]() {
    SimpleReportOuputDlg dialog(*this, callback);
    return dialog.DoModal(parent);
  });
}
