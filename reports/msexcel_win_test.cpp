// MsExcel against the stand-in server, started through COM as a real
// out-of-process automation server: what reaches the server (members,
// invoke kinds, argument types in order) and what comes back.
#include <windows.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "MsExcel.h"
#include "reports/msexcel_fake_server_win.h"

using excel_test::FakeServer;
using excel_test::Recorder;
using Lines = std::vector<std::string>;

namespace {

std::string Utf8(const std::wstring& w) { return qt_test::Narrow(w); }

}  // namespace

TEST(MsExcelAutomation, StartAddsAWorkbookAndCloseQuitsTheServerItStarted) {
  FakeServer server;
  ASSERT_TRUE(server.registerClass());
  Recorder boxes;
  {
    MsExcel excel;
    ASSERT_EQ(0, excel.open(false, nullptr, false));
    EXPECT_TRUE(excel.isRunning());
    EXPECT_EQ((Lines{"Application.Workbooks 2", "Workbooks.Add 1", "Workbook.Sheets 2", "Sheets.Item 2 I4:1",
                     "Application.ActiveCell 2"}),
              server.calls());
    const size_t mark = server.logSize();
    EXPECT_TRUE(excel.close(false));
    EXPECT_FALSE(excel.isRunning());
    EXPECT_EQ((Lines{"Workbook.Saved 4 BOOL:-1 named=-3", "Application.Quit 1"}), server.calls(mark));
    excel.release();
    EXPECT_TRUE(server.serverEnded());
  }
  EXPECT_TRUE(boxes.boxes.empty());
}

TEST(MsExcelAutomation, CellsInEveryTypeGoThroughValue) {
  FakeServer server;
  ASSERT_TRUE(server.registerClass());
  Recorder boxes;
  MsExcel excel;
  ASSERT_EQ(0, excel.open(false, L"", false));
  size_t mark = server.logSize();
  EXPECT_TRUE(excel.setCell(2, 3, 42));
  EXPECT_TRUE(excel.setCell(3, 3, 7.75));
  EXPECT_TRUE(excel.setCell(4, 3, L"Duct \u00e9"));
  VARIANT flag;
  VariantInit(&flag);
  flag.vt = VT_BOOL;
  flag.boolVal = VARIANT_TRUE;
  EXPECT_TRUE(excel.setCell(5, 3, flag));
  EXPECT_EQ((Lines{"Sheet.Cells 2 I4:2 I4:3", "Range.Value 4 I4:42 named=-3", "Sheet.Cells 2 I4:3 I4:3",
                   "Range.Value 4 R8:7.75 named=-3", "Sheet.Cells 2 I4:4 I4:3",
                   "Range.Value 4 BSTR:" + Utf8(L"Duct \u00e9") + " named=-3", "Sheet.Cells 2 I4:5 I4:3",
                   "Range.Value 4 BOOL:-1 named=-3"}),
            server.calls(mark));

  mark = server.logSize();
  int i = 0;
  double d = 0;
  ustr text;
  EXPECT_TRUE(excel.getCell(2, 3, i));
  EXPECT_EQ(42, i);
  EXPECT_TRUE(excel.getCell(3, 3, d));
  EXPECT_EQ(7.75, d);
  EXPECT_TRUE(excel.getCell(3, 3, i));
  EXPECT_EQ(8, i);
  EXPECT_TRUE(excel.getCell(4, 3, text));
  EXPECT_EQ(L"Duct \u00e9", text);
  VARIANT v;
  VariantInit(&v);
  EXPECT_TRUE(excel.getCell(5, 3, v));
  EXPECT_EQ(VT_BOOL, v.vt);
  EXPECT_EQ(VARIANT_TRUE, v.boolVal);
  VariantClear(&v);
  EXPECT_EQ("Range.Value 2", server.calls(mark).at(1));

  // An empty cell reads as an empty text; a text that is no number leaves
  // the number unchanged.
  text = L"old";
  EXPECT_TRUE(excel.getCell(9, 9, text));
  EXPECT_EQ(L"", text);
  i = -5;
  EXPECT_FALSE(excel.getCell(4, 3, i));
  EXPECT_EQ(-5, i);

  // A range by address reaches the same cell as by row and column.
  IDispatch* range = excel.makeCellRange(L"C2");
  ASSERT_NE(nullptr, range);
  EXPECT_EQ("Sheet.Range 2 BSTR:C2", server.calls().back());
  VARIANT read;
  EXPECT_EQ(S_OK, AutoWrap(DISPATCH_PROPERTYGET, &read, range, L"Value", 0));
  EXPECT_EQ(VT_I4, read.vt);
  EXPECT_EQ(42, read.lVal);
  excel.release(range);
  EXPECT_EQ(nullptr, range);
  EXPECT_TRUE(boxes.boxes.empty());
  EXPECT_TRUE(excel.close(false));
  excel.release();
  EXPECT_TRUE(server.serverEnded());
}

TEST(MsExcelAutomation, CommentsCarryTheirAuthorAndTheUserNameComesBack) {
  FakeServer server;
  ASSERT_TRUE(server.registerClass());
  Recorder boxes;
  MsExcel excel;
  ASSERT_EQ(0, excel.open(false, nullptr, false));
  ustr text(L"unchanged");
  EXPECT_FALSE(excel.getCellComment(2, 2, text));
  EXPECT_EQ(L"unchanged", text);
  EXPECT_EQ(nullptr, excel.getComment(2, 2, false));

  const size_t mark = server.logSize();
  EXPECT_TRUE(excel.setCellComment(2, 2, L"Check the flow", L"Ann"));
  EXPECT_EQ((Lines{"Application.UserName 2", "Application.UserName 4 BSTR:Ann named=-3", "Sheet.Cells 2 I4:2 I4:2",
                   "Range.Comment 2", "Range.AddComment 1", "Comment.Text 1 BSTR:Check the flow",
                   "Application.UserName 4 BSTR:Fake User named=-3"}),
            server.calls(mark));
  EXPECT_TRUE(excel.getCellComment(2, 2, text));
  EXPECT_EQ(L"Check the flow", text);

  IDispatch* comment = excel.getComment(2, 2, false);
  ASSERT_NE(nullptr, comment);
  VARIANT author;
  ASSERT_EQ(S_OK, AutoWrap(DISPATCH_PROPERTYGET, &author, comment, L"Author", 0));
  EXPECT_EQ(std::wstring(L"Ann"), author.bstrVal);
  VariantClear(&author);
  excel.release(comment);

  // A second text replaces the first on the existing comment.
  EXPECT_TRUE(excel.setCellComment(2, 2, L"Flow checked", nullptr));
  EXPECT_EQ("Comment.Text 1 BSTR:Flow checked", server.calls().back());
  EXPECT_TRUE(excel.getCellComment(2, 2, text));
  EXPECT_EQ(L"Flow checked", text);
  EXPECT_TRUE(boxes.boxes.empty());
  EXPECT_TRUE(excel.close(false));
  excel.release();
  EXPECT_TRUE(server.serverEnded());
}

TEST(MsExcelAutomation, SavingAskingOverwritingAndAsAWebPage) {
  FakeServer server;
  ASSERT_TRUE(server.registerClass());
  Recorder boxes;
  MsExcel excel;
  ASSERT_EQ(0, excel.open(false, nullptr, false));
  ASSERT_TRUE(excel.setCell(1, 1, 12));
  const std::wstring book = server.file("plant.xls");

  size_t mark = server.logSize();
  EXPECT_TRUE(excel.saveWorkbook(book.c_str(), false));
  EXPECT_EQ((Lines{"Workbook.SaveAs 1 BSTR:" + Utf8(book)}), server.calls(mark));
  EXPECT_EQ("R1C1\tI4\t12\n", qt_test::ReadFileBytes(Utf8(book)));

  // The file is there now: with alerts on the server asks and is told No.
  ASSERT_TRUE(excel.setCell(1, 1, 13));
  EXPECT_FALSE(excel.saveWorkbook(book.c_str(), false));
  ASSERT_EQ(1u, boxes.boxes.size());
  EXPECT_EQ(0u, boxes.boxes[0].text.find(L"IDispatch::Invoke(\"SaveAs\"="));
  EXPECT_EQ(L"AutoWrap()", boxes.boxes[0].caption);
  EXPECT_EQ("R1C1\tI4\t12\n", qt_test::ReadFileBytes(Utf8(book)));

  // The flag overwrites silently and puts the alerts back as they were.
  mark = server.logSize();
  EXPECT_TRUE(excel.saveWorkbook(book.c_str(), true));
  EXPECT_EQ((Lines{"Application.DisplayAlerts 2", "Application.DisplayAlerts 4 BOOL:0 named=-3",
                   "Workbook.SaveAs 1 BSTR:" + Utf8(book), "Application.DisplayAlerts 4 BOOL:-1 named=-3"}),
            server.calls(mark));
  EXPECT_EQ("R1C1\tI4\t13\n", qt_test::ReadFileBytes(Utf8(book)));
  EXPECT_TRUE(excel.getDisplayAlerts());

  ASSERT_TRUE(excel.setCell(1, 1, 14));
  mark = server.logSize();
  EXPECT_TRUE(excel.saveWorkbook(nullptr, false));
  EXPECT_EQ((Lines{"Workbook.Save 1"}), server.calls(mark));
  EXPECT_EQ("R1C1\tI4\t14\n", qt_test::ReadFileBytes(Utf8(book)));

  const std::wstring page = server.file("plant.htm");
  mark = server.logSize();
  EXPECT_EQ(0, excel.saveHtml(page.c_str()));
  EXPECT_EQ((Lines{"Application.ActiveSheet 2", "Sheet.SaveAs 1 BSTR:" + Utf8(page) + " I4:44"}), server.calls(mark));
  const std::string html = qt_test::ReadFileBytes(Utf8(page));
  EXPECT_NE(std::string::npos, html.find("format 44"));
  EXPECT_NE(std::string::npos, html.find("<td>R1C1</td><td>14</td>"));
  EXPECT_EQ(1u, boxes.boxes.size());
  EXPECT_TRUE(excel.close(true));
  excel.release();
  EXPECT_TRUE(server.serverEnded());
}

TEST(MsExcelAutomation, ApplicationSwitchesAndActivation) {
  FakeServer server;
  ASSERT_TRUE(server.registerClass());
  Recorder boxes;
  MsExcel excel;
  ASSERT_EQ(0, excel.open(false, nullptr, false));
  const size_t mark = server.logSize();
  EXPECT_EQ(0, excel.makeVisible(true));
  EXPECT_TRUE(excel.setDisplayAlerts(false));
  EXPECT_FALSE(excel.getDisplayAlerts());
  EXPECT_TRUE(excel.setDisplayAlerts(true));
  EXPECT_TRUE(excel.getDisplayAlerts());
  EXPECT_EQ(0, excel.activate());
  EXPECT_EQ((Lines{"Application.Visible 4 BOOL:-1 named=-3", "Application.DisplayAlerts 4 BOOL:0 named=-3",
                   "Application.DisplayAlerts 2", "Application.DisplayAlerts 4 BOOL:-1 named=-3",
                   "Application.DisplayAlerts 2", "Sheet.Activate 1"}),
            server.calls(mark));
  EXPECT_TRUE(boxes.boxes.empty());
  EXPECT_TRUE(excel.close(false));
  excel.release();
  EXPECT_TRUE(server.serverEnded());
}

TEST(MsExcelAutomation, OpenReadsTheFileAndClosingTheWorkbookLetsGoOfItsSheet) {
  FakeServer server;
  ASSERT_TRUE(server.registerClass());
  const std::wstring book = server.file("rooms.xls");
  {
    FILE* f = _wfopen(book.c_str(), L"wb");
    ASSERT_NE(nullptr, f);
    fputs("R2C1\tBSTR\tKitchen\nR2C2\tR8\t14.5\n", f);
    fclose(f);
  }
  Recorder boxes;
  MsExcel excel;
  ASSERT_EQ(0, excel.open(false, book.c_str(), true));
  EXPECT_EQ("Workbooks.Open 1 BSTR:" + Utf8(book), server.calls().at(1));
  ustr room;
  double area = 0;
  EXPECT_TRUE(excel.getCell(2, 1, room));
  EXPECT_EQ(L"Kitchen", room);
  EXPECT_TRUE(excel.getCell(2, 2, area));
  EXPECT_EQ(14.5, area);

  ASSERT_TRUE(excel.setCell(3, 1, L"Hall"));
  size_t mark = server.logSize();
  EXPECT_TRUE(excel.closeWorkbook(true));
  EXPECT_EQ((Lines{"Workbook.Close 1 BOOL:-1"}), server.calls(mark));
  EXPECT_NE(std::string::npos, qt_test::ReadFileBytes(Utf8(book)).find("R3C1\tBSTR\tHall"));
  EXPECT_TRUE(boxes.boxes.empty());

  // The sheet went with the workbook: the next cell call has no object.
  EXPECT_FALSE(excel.setCell(1, 1, 1));
  ASSERT_EQ(1u, boxes.boxes.size());
  EXPECT_EQ(L"NULL IDispatch passed to AutoWrap()", boxes.boxes[0].text);

  // Without a workbook close only quits.
  mark = server.logSize();
  EXPECT_TRUE(excel.close(false));
  EXPECT_EQ((Lines{"Application.Quit 1"}), server.calls(mark));
  excel.release();
  EXPECT_TRUE(server.serverEnded());
}

TEST(MsExcelAutomation, AttachingUsesTheRunningServerAndLeavesItRunning) {
  FakeServer server;
  ASSERT_TRUE(server.registerClass());
  ASSERT_TRUE(server.startRunning(L"--active"));
  Recorder boxes;
  MsExcel excel;
  ASSERT_EQ(0, excel.open(true, nullptr, false));
  EXPECT_EQ("Application.Workbooks 2", server.calls().at(0));
  ASSERT_TRUE(excel.setCell(1, 1, 5));
  const size_t mark = server.logSize();
  EXPECT_TRUE(excel.close(false));
  EXPECT_EQ((Lines{"Workbook.Saved 4 BOOL:-1 named=-3"}), server.calls(mark));
  excel.release();
  EXPECT_FALSE(server.serverEnded(500));
  // Only the one server ran: COM did not start another.
  size_t starts = 0;
  for (const std::string& line : server.log()) starts += line.compare(0, 6, "start ") == 0;
  EXPECT_EQ(1u, starts);
  EXPECT_TRUE(boxes.boxes.empty());
}

TEST(MsExcelAutomation, OpenFailuresInOrder) {
  FakeServer server;
  Recorder boxes;
  {
    MsExcel excel;
    EXPECT_EQ(-1, excel.open(false, nullptr, false));
    EXPECT_EQ(-1, excel.open(true, nullptr, false));
  }
  ASSERT_TRUE(server.registerClass());
  {
    MsExcel excel;
    EXPECT_EQ(-2, excel.open(true, nullptr, false));
    EXPECT_FALSE(excel.isRunning());
  }
  ASSERT_TRUE(server.startRunning(L"--active-plain"));
  {
    MsExcel excel;
    EXPECT_EQ(-3, excel.open(true, nullptr, false));
    EXPECT_FALSE(excel.isRunning());
  }
  ASSERT_TRUE(server.registerMissingServer());
  {
    MsExcel excel;
    EXPECT_EQ(-4, excel.open(false, nullptr, false));
    EXPECT_FALSE(excel.isRunning());
  }
  EXPECT_TRUE(boxes.boxes.empty());
}

TEST(MsExcelAutomation, AFailingCallKeepsWhatIsHeld) {
  FakeServer server;
  ASSERT_TRUE(server.registerClass(L"--fail-lookup=Sheets --fail-invoke=Value"));
  Recorder boxes;
  MsExcel excel;
  const int result = excel.open(false, nullptr, false);
  EXPECT_EQ(DISP_E_UNKNOWNNAME, result);
  ASSERT_EQ(1u, boxes.boxes.size());
  EXPECT_EQ(L"IDispatch::GetIDsOfNames(\"Sheets\") failed w/err 0x80020006", boxes.boxes[0].text);
  EXPECT_EQ(L"AutoWrap()", boxes.boxes[0].caption);
  // The application and the workbook collection stay usable.
  EXPECT_TRUE(excel.isRunning());
  EXPECT_EQ(0, excel.makeVisible(true));

  // The application's property puts work; the workbook was added though
  // its sheets are not held, so a cell call has no sheet.
  boxes.boxes.clear();
  EXPECT_FALSE(excel.setCell(1, 1, 3));
  ASSERT_EQ(1u, boxes.boxes.size());
  EXPECT_EQ(L"NULL IDispatch passed to AutoWrap()", boxes.boxes[0].text);

  boxes.boxes.clear();
  EXPECT_TRUE(excel.close(false));
  excel.release();
  EXPECT_TRUE(server.serverEnded());
  EXPECT_TRUE(boxes.boxes.empty());
}

TEST(MsExcelAutomation, AFailingValueCallShowsTheMemberItsIdAndTheCode) {
  FakeServer server;
  ASSERT_TRUE(server.registerClass(L"--fail-invoke=Value"));
  Recorder boxes;
  MsExcel excel;
  ASSERT_EQ(0, excel.open(false, nullptr, false));
  int i = 77;
  EXPECT_FALSE(excel.getCell(1, 1, i));
  EXPECT_EQ(77, i);
  std::string id;
  for (const std::string& line : server.log()) {
    if (line.compare(0, 19, "lookup Range.Value ") == 0) id = line.substr(19);
  }
  ASSERT_FALSE(id.empty());
  ASSERT_EQ(1u, boxes.boxes.size());
  EXPECT_EQ(qt_test::Widen("IDispatch::Invoke(\"Value\"=" + std::string(8 - id.size(), '0') + id +
                           ") failed w/err 0x80020009"),
            boxes.boxes[0].text);
  // The range of the failed call was released too: the server can end.
  EXPECT_TRUE(excel.close(false));
  excel.release();
  EXPECT_TRUE(server.serverEnded());
}
