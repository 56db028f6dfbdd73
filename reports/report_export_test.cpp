#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "qn_utf.h"
#include "reports/export_format.h"
#include "reports/report_platform.h"

namespace {

using qt::report::BuildText;
using qt::report::BuildXmlSpreadsheet;
typedef SimpleReport::CellData Cell;
typedef SimpleReport::ColumnData Column;

// Expected text-file bytes from readable UTF-8, through the library's
// general converter rather than the exporter's own.
std::string Utf16File(const std::string& utf8) {
  const std::wstring wide = qn_utf8_to_wide(utf8.c_str(), utf8.size());
  return "\xFF\xFE" + qn_wide_to_utf16le(wide.c_str(), wide.size());
}

std::string Table(const SimpleReportData& data) {
  std::string out;
  qt::report::AppendXmlTable(data, &out);
  return out;
}

std::string Workbook(const SimpleReportData& data) {
  std::string workbook;
  EXPECT_TRUE(qt::report::platform::CurrentCalls().loadTemplate(&workbook));
  return BuildXmlSpreadsheet(data, workbook, L"Report");
}

// Two columns, the second with a second header line; a row of text and
// integer, a row of a two-line text and a float.
void FillSample(SimpleReport* report) {
  report->AddColumn(Column(L"Name", 120));
  report->AddColumn(Column(L"Flow", 60, L"l/s"));
  SimpleReport::RowData first;
  first.cells.push_back(Cell::Text(L"Pump \x00C4\x00DF"));
  first.cells.push_back(Cell::Integer(-42));
  report->AddRow(first);
  const int second = report->AddRow();
  report->SetCell(second, 0, Cell::Text(L"Line one\r\nline two"));
  report->SetCell(second, 1, Cell::Double(1.005, 2));
}

TEST(ReportTextForm, EachKindAsTheFormatSays) {
  EXPECT_EQ(ustr(L"a\nb"), Cell::Text(L"a\nb").GetText());
  EXPECT_EQ(ustr(L"-2147483648"), Cell::Integer(-2147483647 - 1).GetText());
  EXPECT_EQ(ustr(L"1.00"), Cell::Double(1.005, 2).GetText()) << "1.005 is just below in binary";
  EXPECT_EQ(ustr(L"2.50"), Cell::Double(2.5, 2).GetText());
  EXPECT_EQ(ustr(L"-0.125000"), Cell::Double(-0.125, -1).GetText()) << "no decimals given means six";
  EXPECT_EQ(ustr(L"3"), Cell::Double(2.5001, 0).GetText());
  EXPECT_EQ(ustr(L"100000000000000000000.0"), Cell::Double(1e20, 1).GetText());
  EXPECT_TRUE(Cell::EmptyNumber(SimpleReport::CellInteger).GetText().empty());
  EXPECT_TRUE(Cell::EmptyNumber(SimpleReport::CellDouble).GetText().empty());
  Cell odd = Cell::Integer(5);
  odd.kind = 7;
  EXPECT_TRUE(odd.GetText().empty()) << "an unknown kind has no text";
}

TEST(ReportModel, IndexesAndBadArguments) {
  SimpleReport report;
  EXPECT_EQ(0, report.AddColumn(Column(L"A")));
  EXPECT_EQ(1, report.AddColumn(Column(L"B")));
  SimpleReport::RowData wide;
  for (int i = 0; i < 5; ++i) wide.cells.push_back(Cell::Integer(i));
  EXPECT_EQ(0, report.AddRow(wide));
  EXPECT_EQ(1, report.AddRow());
  EXPECT_FALSE(report.SetCell(2, 0, Cell::Integer(1)));
  EXPECT_FALSE(report.SetCell(0, 2, Cell::Integer(1)));
  EXPECT_FALSE(report.SetCell(-1, 0, Cell::Integer(1)));
  Cell cell;
  EXPECT_FALSE(report.GetCell(0, 2, cell)) << "cells past the columns were dropped";
  ASSERT_TRUE(report.GetCell(1, 1, cell));
  EXPECT_EQ(SimpleReport::CellText, cell.kind);
  EXPECT_TRUE(cell.GetText().empty());
  ASSERT_TRUE(report.SetCell(1, 1, Cell::Double(0.5, 1)));
  ASSERT_TRUE(report.GetCell(1, 1, cell));
  EXPECT_EQ(ustr(L"0.5"), cell.GetText());
  // A column added later leaves the rows without a cell there.
  EXPECT_EQ(2, report.AddColumn(Column(L"C")));
  ASSERT_TRUE(report.GetCell(0, 2, cell));
  EXPECT_TRUE(cell.GetText().empty());
}

TEST(ReportTextExport, TitleHeaderAndFlattenedRows) {
  SimpleReport report;
  report.SetTitle(L"Pumps");
  FillSample(&report);
  EXPECT_EQ(Utf16File("Pumps\r\nName\tFlow l/s\r\nPump \xC3\x84\xC3\x9F\t-42\r\nLine one line two\t1.00"),
            BuildText(report.data()));
}

TEST(ReportTextExport, NoTitleStartsWithTheHeaderAndEmptyCellsKeepTheirTabs) {
  SimpleReport report;
  report.AddColumn(Column(L"A"));
  report.AddColumn(Column(L"B"));
  report.AddColumn(Column(L"C"));
  SimpleReport::RowData row;
  row.cells.push_back(Cell::EmptyNumber());
  row.cells.push_back(Cell::Text(L"\U0001F600"));
  report.AddRow(row);
  // Supplementary characters are one surrogate pair on both targets.
  EXPECT_EQ(Utf16File("A\tB\tC\r\n\t\xF0\x9F\x98\x80\t"), BuildText(report.data()));
}

TEST(ReportXmlExport, TableLayout) {
  SimpleReport report;
  FillSample(&report);
  const std::string expected =
      "<Table>\r\n"
      "      <Column ss:Width=\"120\"/>\r\n"
      "      <Column ss:Width=\"60\"/>\r\n"
      "      <Row ss:Height=\"30\">\r\n"
      "        <Cell ss:StyleID=\"s10\"><Data ss:Type=\"String\">Name</Data></Cell>\r\n"
      "        <Cell ss:StyleID=\"s10\"><Data ss:Type=\"String\">Flow&#10;l/s</Data></Cell>\r\n"
      "      </Row>\r\n"
      "      <Row ss:Height=\"15\">\r\n"
      "        <Cell ss:StyleID=\"s11\"><Data ss:Type=\"String\">Pump \xC3\x84\xC3\x9F</Data></Cell>\r\n"
      "        <Cell ss:StyleID=\"s11\"><Data ss:Type=\"Number\">-42</Data></Cell>\r\n"
      "      </Row>\r\n"
      "      <Row ss:Height=\"30\">\r\n"
      "        <Cell ss:StyleID=\"s11\"><Data ss:Type=\"String\">Line one&#10;line two</Data></Cell>\r\n"
      "        <Cell ss:StyleID=\"s11\"><Data ss:Type=\"Number\">1.00</Data></Cell>\r\n"
      "      </Row>\r\n"
      "</Table>\r\n";
  EXPECT_EQ(expected, Table(report.data()));
}

TEST(ReportXmlExport, CellTypesHeightsAndUnescapedText) {
  SimpleReport report;
  report.AddColumn(Column(L"A"));
  report.AddColumn(Column(L"B"));
  report.AddColumn(Column(L"C"));
  SimpleReport::RowData row;
  row.cells.push_back(Cell::EmptyNumber(SimpleReport::CellInteger));
  row.cells.push_back(Cell::Text(L"a<b & c>\n\nthree\n"));
  row.cells.push_back(Cell::Double(std::numeric_limits<double>::quiet_NaN(), 2));
  report.AddRow(row);
  const std::string table = Table(report.data());
  EXPECT_NE(std::string::npos, table.find("      <Row ss:Height=\"15\">\r\n        <Cell ss:StyleID=\"s10\">"))
      << "a one-line header is 15 high";
  EXPECT_NE(std::string::npos, table.find("      <Row ss:Height=\"60\">\r\n")) << "four lines in the tallest cell";
  EXPECT_NE(std::string::npos, table.find("<Data ss:Type=\"String\"></Data>")) << "an empty number is an empty String";
  EXPECT_NE(std::string::npos, table.find(">a<b & c>&#10;&#10;three&#10;</Data>")) << "only line breaks are touched";
  EXPECT_NE(std::string::npos, table.find("<Data ss:Type=\"String\">nan</Data>"))
      << "a spreadsheet program refuses nan as a Number";
  EXPECT_EQ(std::string::npos, table.find("Number"));
}

TEST(ReportXmlExport, InvalidCodePointsBecomeReplacementCharacters) {
  SimpleReport report;
  report.AddColumn(Column(L"A"));
  SimpleReport::RowData row;
  std::wstring text = L"x";
  text += static_cast<wchar_t>(0xD800);  // half a pair, on either target
  text += L"y";
  row.cells.push_back(Cell::Text(text));
  report.AddRow(row);
  EXPECT_NE(std::string::npos, Table(report.data()).find(">x\xEF\xBF\xBDy<"));
}

TEST(ReportXmlExport, WorkbookAroundTheTable) {
  SimpleReport report;
  report.AddColumn(Column(L"%QUIL_SHEET_NAME%"));
  SimpleReport::RowData row;
  row.cells.push_back(Cell::Text(L"%QUIL_TABLE%"));
  report.AddRow(row);
  const std::string file = Workbook(report.data());
  EXPECT_EQ(0u, file.find("<?xml version=\"1.0\"?>\r\n<?mso-application progid=\"Excel.Sheet\"?>\r\n<Workbook "));
  for (size_t i = 0; i < file.size(); ++i) {
    if (file[i] == '\n') {
      ASSERT_TRUE(i > 0 && file[i - 1] == '\r') << "bare line feed at " << i;
    } else if (file[i] == '\r') {
      ASSERT_TRUE(i + 1 < file.size() && file[i + 1] == '\n') << "bare carriage return at " << i;
    }
  }
  EXPECT_NE(std::string::npos, file.find("<Worksheet ss:Name=\"Report\">\r\n<Table>\r\n"));
  const size_t table = file.find("<Table>");
  EXPECT_EQ(std::string::npos, file.find("<Table>", table + 1)) << "the table goes in once";
  EXPECT_NE(std::string::npos, file.find(">%QUIL_TABLE%</Data>")) << "a cell is never taken for the placeholder";
  EXPECT_NE(std::string::npos, file.find(">%QUIL_SHEET_NAME%</Data>"));
  EXPECT_LT(file.find("</Table>\r\n"), file.find("<WorksheetOptions"));
  for (const char* piece :
       {"<Style ss:ID=\"s10\">\r\n   <Alignment ss:Horizontal=\"Center\" ss:Vertical=\"Center\" ss:WrapText=\"1\"/>",
        "<Border ss:Position=\"Right\" ss:LineStyle=\"Continuous\" ss:Weight=\"1\" ss:Color=\"#C9C9C9\"/>",
        "<Font ss:FontName=\"Calibri\" x:Family=\"Swiss\" ss:Size=\"11\" ss:Color=\"#000000\" ss:Bold=\"1\"/>",
        "<Interior ss:Color=\"#FFF2CC\" ss:Pattern=\"Solid\"/>",
        "<Style ss:ID=\"s11\">\r\n   <Alignment ss:WrapText=\"1\"/>\r\n"
        "   <Font ss:FontName=\"Calibri\" x:Family=\"Swiss\" ss:Size=\"11\" ss:Color=\"#000000\"/>\r\n   <Interior/>",
        "<FreezePanes/>\r\n   <FrozenNoSplit/>", "<ExcelWorkbook xmlns=\"urn:schemas-microsoft-com:office:excel\">", "<SplitHorizontal>1</SplitHorizontal>", "<TopRowBottomPane>1</TopRowBottomPane>",
        "<ActivePane>2</ActivePane>", "<Number>3</Number>", "<Number>2</Number>\r\n     <ActiveRow>0</ActiveRow>",
        "<ProtectObjects>False</ProtectObjects>", "<ProtectScenarios>False</ProtectScenarios>",
        "</Worksheet>\r\n</Workbook>\r\n"}) {
    EXPECT_NE(std::string::npos, file.find(piece)) << piece;
  }
}

TEST(ReportXmlExport, TemplateLineEndsAreMadeCrLf) {
  EXPECT_EQ("a\r\nb\r\nc", qt::report::WithCrLf("a\nb\r\n\rc")) << "a lone carriage return goes";
  SimpleReport report;
  EXPECT_EQ("<x n=\"\xC3\xA4\">\r\n<Table>\r\n      <Row ss:Height=\"15\">\r\n      </Row>\r\n</Table>\r\n</x>\r\n",
            BuildXmlSpreadsheet(report.data(), "<x n=\"%QUIL_SHEET_NAME%\">\n%QUIL_TABLE%</x>\n", L"\x00E4"));
}

}  // namespace
