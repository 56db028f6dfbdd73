#include "reports/report_save.h"

#include <new>

#include "Lng.h"
#include "core/boundary.h"
#include "core/fs.h"
#include "core/msgbox_platform.h"
#include "qn_presenter.h"
#include "reports/export_format.h"
#include "reports/report_platform.h"
#include "reports/report_presenter.h"

namespace qt {
namespace report {

namespace {

// The presenter the frame's message helpers use: the installed one or the
// platform's own box. This box has its own caption, which the helpers
// cannot give.
QnMessagePresenter& MessagePresenter() {
  QnMessagePresenter* installed = qn_set_message_presenter(nullptr);
  qn_set_message_presenter(installed);
  return installed ? *installed : qt::msgbox::platform::DefaultPresenter();
}

void ShowCouldNotCreate() {
  const ustr caption = Lng::text(Lng::APP_HPV, 20237, L"Save to file");
  const ustr text = Lng::text(Lng::APP_HPV, 20238, L"Could not create file");
  HWND owner = platform::CurrentCalls().foregroundWindow();
  MessagePresenter().showMessage(owner, text.c_str(), caption.c_str(), MB_OK | MB_ICONEXCLAMATION);
}

bool AskName(HWND owner, Format format, std::wstring* name) {
  const bool text = format == Format::kText;
  const ustr filter = text ? Lng::text(Lng::APP_HPV, 20242, L"Text file (Tab delimited) (*.txt)|*.txt||")
                           : Lng::text(Lng::APP_HPV, 36863, L"XML Spreadsheet 2003 (*.xml)|*.xml||");
  const wchar_t* extension = text ? L"*.txt" : L"*.xml";
  if (QnReportPresenter* presenter = InstalledPresenter()) {
    ustr chosen;
    if (!presenter->askSaveFileName(owner, filter.c_str(), extension, chosen) || chosen.empty()) return false;
    *name = chosen.str();
    return true;
  }
  return platform::CurrentCalls().askSaveName(owner, filter.str(), extension, name) && !name->empty();
}

}  // namespace

int BuildContent(const SimpleReportData& data, Format format, std::string* bytes) {
  try {
    if (format == Format::kText) {
      *bytes = BuildText(data);
      return SimpleReport::SaveOk;
    }
    std::string workbook;
    if (!platform::CurrentCalls().loadTemplate(&workbook)) return SimpleReport::SaveNoTemplate;
    const ustr sheetName = Lng::text(Lng::APP_HPV, 26150, L"Report");
    *bytes = BuildXmlSpreadsheet(data, workbook, sheetName);
    return SimpleReport::SaveOk;
  } catch (const std::bad_alloc&) {
    return SimpleReport::SaveNoMemory;
  }
}

int SaveToPath(const SimpleReportData& data, Format format, const std::wstring& path) {
  if (path.empty()) return SimpleReport::SaveBadArgument;
  std::string bytes;
  const int built = BuildContent(data, format, &bytes);
  if (built != SimpleReport::SaveOk) return built;
  return fs::ReplaceWholeFile(path, bytes) == fs::FsError::kOk ? SimpleReport::SaveOk : SimpleReport::SaveNotWritten;
}

bool SaveWithDialog(const SimpleReportData& data, Format format, HWND owner) {
  std::wstring name;
  if (!AskName(owner, format, &name)) return false;
  // Whatever kept the file from being written whole, the user's file is
  // not there: the one message says so.
  if (SaveToPath(data, format, name) != SimpleReport::SaveOk) {
    ShowCouldNotCreate();
    return false;
  }
  if (format == Format::kText) {
    platform::CurrentCalls().openText(name);
  } else {
    platform::CurrentCalls().openSpreadsheet(name);
  }
  return true;
}

std::wstring SpreadsheetCommand(const std::wstring& path) { return L"start excel \"" + path + L"\""; }

}  // namespace report
}  // namespace qt

int SimpleReport::SaveAsText(const wchar_t* path) const {
  return qt::NoThrow<int>("SimpleReport::SaveAsText", SaveNoMemory, [&]() {
    if (!path || !*path) return static_cast<int>(SaveBadArgument);
    return qt::report::SaveToPath(*data_, qt::report::Format::kText, path);
  });
}

int SimpleReport::SaveAsXmlSpreadsheet(const wchar_t* path) const {
  return qt::NoThrow<int>("SimpleReport::SaveAsXmlSpreadsheet", SaveNoMemory, [&]() {
    if (!path || !*path) return static_cast<int>(SaveBadArgument);
    return qt::report::SaveToPath(*data_, qt::report::Format::kXmlSpreadsheet, path);
  });
}
