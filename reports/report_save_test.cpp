#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "QnListView2.h"
#include "clipboard_recorder.h"
#include "core/fs_platform.h"
#include "qn_clipboard.h"
#include "qn_presenter.h"
#include "qn_utf.h"
#include "qt_test.h"
#include "reports/export_format.h"
#include "reports/report_platform.h"

namespace {

typedef SimpleReport::CellData Cell;
typedef SimpleReport::ColumnData Column;
namespace rp = qt::report::platform;

// What the platform was asked to do, instead of doing it.
struct Recorded {
  std::vector<std::wstring> openedText;
  std::vector<std::wstring> openedSpreadsheets;
};
Recorded* g_recorded = nullptr;
HWND const kForeground = reinterpret_cast<HWND>(static_cast<intptr_t>(0x4242));

class RecordingPlatform {
 public:
  RecordingPlatform() {
    g_recorded = &recorded;
    calls->foregroundWindow = []() { return kForeground; };
    calls->openText = [](const std::wstring& path) { g_recorded->openedText.push_back(path); };
    calls->openSpreadsheet = [](const std::wstring& path) { g_recorded->openedSpreadsheets.push_back(path); };
    calls->askSaveName = [](HWND, const std::wstring&, const std::wstring&, std::wstring*) {
      ADD_FAILURE() << "the system dialog was asked although a presenter is installed";
      return false;
    };
  }
  ~RecordingPlatform() { g_recorded = nullptr; }
  Recorded recorded;

 private:
  rp::CallsOverride calls;
};

class Boxes : public QnMessagePresenter {
 public:
  Boxes() : previous_(qn_set_message_presenter(this)) {}
  ~Boxes() override { qn_set_message_presenter(previous_); }
  int showMessage(HWND owner, const wchar_t* text, const wchar_t* caption, unsigned int) override {
    shown.push_back(std::wstring(caption) + L"|" + text);
    owners.push_back(owner);
    return IDOK;
  }
  int showMessageA(HWND, const char*, const char*, unsigned int) override { return IDOK; }
  std::vector<std::wstring> shown;
  std::vector<HWND> owners;

 private:
  QnMessagePresenter* previous_;
};

// Answers the save-file dialog with a fixed name (empty: cancelled) and
// runs a script of commands when the report is shown.
class Presenter : public QnReportPresenter {
 public:
  Presenter() : previous_(qn_set_report_presenter(this)) {}
  ~Presenter() override { qn_set_report_presenter(previous_); }
  bool showReport(SimpleReportOuputDlg& dialog) override {
    ++shows;
    for (int command : script) dialog.RunCommand(command);
    return true;
  }
  bool askSaveFileName(HWND, const wchar_t* filter, const wchar_t* extension, ustr& name) override {
    filters.push_back(std::wstring(filter) + L"|" + extension);
    if (answer.empty()) return false;
    name = answer.c_str();
    return true;
  }
  std::wstring answer;
  std::vector<int> script;
  std::vector<std::wstring> filters;
  int shows = 0;

 private:
  QnReportPresenter* previous_;
};

void FillSample(SimpleReport* report) {
  report->SetTitle(L"Title");
  report->AddColumn(Column(L"Name", 100, L"unit"));
  report->AddColumn(Column(L"Value"));
  SimpleReport::RowData row;
  row.cells.push_back(Cell::Text(L"two\nlines"));
  row.cells.push_back(Cell::Double(2.25, 1));
  report->AddRow(row);
}

// Writes stop after a few bytes, as on a full disk.
qt::fs::FsError ShortWrite(qt::fs::platform::Handle h, const void* data, size_t size, size_t* put) {
  return size > 8 ? qt::fs::FsError::kNoSpace : qt::fs::platform::SystemCalls().write(h, data, size, put);
}

TEST(ReportSave, WithoutDialogWritesTheWholeFileAndReplacesAnOldOne) {
  qt_test::TempDir dir;
  SimpleReport report;
  FillSample(&report);
  const std::wstring text = dir.wfile("r.txt");
  const std::wstring xml = dir.wfile("r.xml");
  ASSERT_EQ(0, report.SaveAsText(text.c_str()));
  EXPECT_EQ(qt::report::BuildText(report.data()), qt_test::ReadFileBytes(dir.file("r.txt")));
  ASSERT_EQ(0, report.SaveAsXmlSpreadsheet(xml.c_str()));
  ASSERT_EQ(0, report.SaveAsXmlSpreadsheet(xml.c_str())) << "an existing file is replaced";
  const std::string saved = qt_test::ReadFileBytes(dir.file("r.xml"));
  EXPECT_NE(std::string::npos, saved.find("two&#10;lines</Data>"));
  EXPECT_NE(std::string::npos, saved.find("<Worksheet ss:Name=\"Report\">"));

  EXPECT_EQ(SimpleReport::SaveBadArgument, report.SaveAsText(nullptr));
  EXPECT_EQ(SimpleReport::SaveBadArgument, report.SaveAsXmlSpreadsheet(L""));
  EXPECT_EQ(SimpleReport::SaveNotWritten, report.SaveAsText(dir.wfile("missing/x.txt").c_str()));
}

TEST(ReportSave, FailedWriteLeavesTheOldFileAndNoPiece) {
  qt_test::TempDir dir;
  SimpleReport report;
  FillSample(&report);
  ASSERT_EQ(0, report.SaveAsText(dir.wfile("r.txt").c_str()));
  const std::string before = qt_test::ReadFileBytes(dir.file("r.txt"));
  report.SetTitle(L"A longer title than before");
  {
    qt::fs::platform::CallsOverride fs;
    fs->write = &ShortWrite;
    EXPECT_EQ(SimpleReport::SaveNotWritten, report.SaveAsText(dir.wfile("r.txt").c_str()));
    EXPECT_EQ(SimpleReport::SaveNotWritten, report.SaveAsXmlSpreadsheet(dir.wfile("new.xml").c_str()));
  }
  EXPECT_EQ(before, qt_test::ReadFileBytes(dir.file("r.txt")));
  EXPECT_FALSE(qt::fs::Exists(dir.wfile("new.xml")));
}

TEST(ReportSave, MissingTemplateIsItsOwnResult) {
  qt_test::TempDir dir;
  SimpleReport report;
  rp::CallsOverride calls;
  calls->loadTemplate = [](std::string*) { return false; };
  EXPECT_EQ(SimpleReport::SaveNoTemplate, report.SaveAsXmlSpreadsheet(dir.wfile("r.xml").c_str()));
  EXPECT_FALSE(qt::fs::Exists(dir.wfile("r.xml")));
}

TEST(ReportSaveDialog, SavedFilesAreOpenedWithTheirProgram) {
  qt_test::TempDir dir;
  RecordingPlatform platform;
  Presenter presenter;
  Boxes boxes;
  SimpleReport report;
  FillSample(&report);
  SimpleReportOuputDlg dialog(report, nullptr);

  presenter.answer = dir.wfile("out.txt");
  EXPECT_TRUE(dialog.SaveToTextFile());
  presenter.answer = dir.wfile("out.xml");
  EXPECT_TRUE(dialog.SaveToExcelFile());

  ASSERT_EQ(2u, presenter.filters.size());
  EXPECT_EQ(L"Text file (Tab delimited) (*.txt)|*.txt|||*.txt", presenter.filters[0]);
  EXPECT_EQ(L"XML Spreadsheet 2003 (*.xml)|*.xml|||*.xml", presenter.filters[1]);
  EXPECT_EQ(std::vector<std::wstring>{dir.wfile("out.txt")}, platform.recorded.openedText);
  EXPECT_EQ(std::vector<std::wstring>{dir.wfile("out.xml")}, platform.recorded.openedSpreadsheets);
  EXPECT_EQ(qt::report::BuildText(report.data()), qt_test::ReadFileBytes(dir.file("out.txt")));
  EXPECT_NE(std::string::npos, qt_test::ReadFileBytes(dir.file("out.xml")).find("<Table>"));
  EXPECT_TRUE(boxes.shown.empty());
  EXPECT_EQ(L"start excel \"C:\\My files\\a.xml\"", qt::report::SpreadsheetCommand(L"C:\\My files\\a.xml"));
}

TEST(ReportSaveDialog, FailureIsToldOnTheForegroundWindowAndNothingOpens) {
  qt_test::TempDir dir;
  RecordingPlatform platform;
  Presenter presenter;
  Boxes boxes;
  SimpleReport report;
  FillSample(&report);
  SimpleReportOuputDlg dialog(report, nullptr);
  presenter.answer = dir.wfile("out.xml");
  {
    qt::fs::platform::CallsOverride fs;
    fs->write = &ShortWrite;
    EXPECT_FALSE(dialog.SaveToExcelFile());
    presenter.answer = dir.wfile("out.txt");
    EXPECT_FALSE(dialog.SaveToTextFile());
  }
  ASSERT_EQ(2u, boxes.shown.size());
  EXPECT_EQ(L"Save to file|Could not create file", boxes.shown[0]);
  EXPECT_EQ(kForeground, boxes.owners[0]);
  EXPECT_TRUE(platform.recorded.openedText.empty());
  EXPECT_TRUE(platform.recorded.openedSpreadsheets.empty());
  EXPECT_FALSE(qt::fs::Exists(dir.wfile("out.xml")));

  // Cancelling the dialog writes, tells and opens nothing.
  presenter.answer.clear();
  EXPECT_FALSE(dialog.SaveToTextFile());
  EXPECT_EQ(2u, boxes.shown.size());
  EXPECT_TRUE(platform.recorded.openedText.empty());
}

class CountingCallback : public SimpleReport::Callback {
 public:
  void OnInitDialog(SimpleReportOuputDlg& dialog) override {
    ++inits;
    columnsSeen = dialog.GetListView().GetColumnCount();
  }
  bool OnCommand(SimpleReportOuputDlg&, int command) override {
    commands.push_back(command);
    return command == SimpleReportOuputDlg::CmdSaveText;
  }
  void OnClose(SimpleReportOuputDlg&) override { ++closes; }
  int inits = 0;
  int closes = 0;
  int columnsSeen = -1;
  std::vector<int> commands;
};

TEST(ReportWindow, CommandsGoThroughTheCallbackFirst) {
  qt_test::TempDir dir;
  RecordingPlatform platform;
  Presenter presenter;
  qt_test::ClipboardRecorder clipboard;
  SimpleReport report;
  FillSample(&report);
  CountingCallback callback;
  presenter.answer = dir.wfile("taken.txt");
  presenter.script = {SimpleReportOuputDlg::CmdSaveText, SimpleReportOuputDlg::CmdCopy, SimpleReportOuputDlg::CmdExit,
                      SimpleReportOuputDlg::CmdClose};
  EXPECT_TRUE(report.Create(nullptr, &callback));
  EXPECT_EQ(1, presenter.shows);
  EXPECT_EQ(1, callback.inits);
  EXPECT_EQ(1, callback.closes) << "closing twice tells the callback once";
  EXPECT_EQ(2, callback.columnsSeen) << "the grid is filled before the callback sees it";
  EXPECT_EQ(presenter.script, callback.commands);
  EXPECT_TRUE(presenter.filters.empty()) << "the callback took the save";
  EXPECT_FALSE(qt::fs::Exists(dir.wfile("taken.txt")));
  EXPECT_EQ(L"Title\r\nName unit\tValue\r\ntwo lines\t2.2", clipboard.text) << "2.25 rounds to even";
}

TEST(ReportWindow, GridHoldsTheTableAndZoomStaysInRange) {
  SimpleReport report;
  FillSample(&report);
  report.AddRow();
  SimpleReportOuputDlg dialog(report, nullptr);
  QnListView2& list = dialog.GetListView();
  ASSERT_EQ(2, list.GetColumnCount());
  EXPECT_EQ(ustr(L"Name\nunit"), list.GetColumnName(0));
  EXPECT_EQ(133, list.GetColumnWidth(0)) << "100 points at 96 dots per inch";
  ASSERT_EQ(2, list.GetRowCount());
  EXPECT_EQ(ustr(L"two\nlines"), list.GetCellText(0, 0));
  EXPECT_EQ(ustr(L"2.2"), list.GetCellText(0, 1));
  EXPECT_TRUE(list.GetCellText(1, 1).empty());
  EXPECT_EQ(100, dialog.GetZoom());
  EXPECT_TRUE(dialog.SetZoom(150));
  EXPECT_FALSE(dialog.SetZoom(SimpleReportOuputDlg::kMaxZoom + 1));
  EXPECT_FALSE(dialog.SetZoom(SimpleReportOuputDlg::kMinZoom - 1));
  EXPECT_EQ(150, dialog.GetZoom());
}

}  // namespace
