// The workbook as real spreadsheet programs read it: LibreOffice and
// Gnumeric, run headless on a report with every kind of cell. Skipped, with
// the reason, where a program is not installed.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <regex>
#include <string>
#include <vector>

#include "SimpleReport.h"
#include "qt_test.h"

namespace {

typedef SimpleReport::CellData Cell;
typedef SimpleReport::ColumnData Column;

bool HaveProgram(const char* name) {
  const std::string probe = std::string("command -v ") + name + " >/dev/null 2>&1";
  return std::system(probe.c_str()) == 0;
}

// Single quotes for the shell; the temporary folders hold none.
std::string Quoted(const std::string& s) { return "'" + s + "'"; }

int RunShell(const std::string& command, const qt_test::TempDir& dir) {
  const std::string line = "(" + command + ") >" + Quoted(dir.file("run.log")) + " 2>&1";
  const int status = std::system(line.c_str());
  if (status != 0) ADD_FAILURE() << line << "\n" << qt_test::ReadFileBytes(dir.file("run.log"));
  return status;
}

// Names, a two-line text with umlauts, integers, 2-decimal floats and an
// empty numeric cell under a two-line header.
void WriteSample(const qt_test::TempDir& dir) {
  SimpleReport report;
  report.SetTitle(L"Readback");
  report.AddColumn(Column(L"Name", 120));
  report.AddColumn(Column(L"Count", 60, L"pcs"));
  report.AddColumn(Column(L"Flow", 60, L"l/s"));
  SimpleReport::RowData row;
  row.cells = {Cell::Text(L"P\x00FCmpe \x00C4\r\n\x00D6l Fa\x00DF"), Cell::Integer(-42), Cell::Double(1.005, 2)};
  report.AddRow(row);
  row.cells = {Cell::Text(L"Two"), Cell::Integer(2147483647), Cell::EmptyNumber(SimpleReport::CellDouble)};
  report.AddRow(row);
  row.cells = {Cell::Text(L"123"), Cell::EmptyNumber(SimpleReport::CellInteger), Cell::Double(-0.5, 2)};
  report.AddRow(row);
  ASSERT_EQ(0, report.SaveAsXmlSpreadsheet(dir.wfile("report.xml").c_str()));
}

// The fields of a CSV file; quoted fields are marked with a leading '"'
// so that a text is told from a number.
std::vector<std::vector<std::string>> ParseCsv(const std::string& csv) {
  std::vector<std::vector<std::string>> rows(1);
  std::string field;
  bool quoted = false, inQuotes = false;
  auto endField = [&]() {
    rows.back().push_back(quoted ? "\"" + field : field);
    field.clear();
    quoted = false;
  };
  for (size_t i = 0; i < csv.size(); ++i) {
    const char c = csv[i];
    if (inQuotes) {
      if (c == '"' && i + 1 < csv.size() && csv[i + 1] == '"') {
        field += '"';
        ++i;
      } else if (c == '"') {
        inQuotes = false;
      } else {
        field += c;
      }
    } else if (c == '"') {
      inQuotes = quoted = true;
    } else if (c == ',') {
      endField();
    } else if (c == '\n') {
      endField();
      rows.emplace_back();
    } else if (c != '\r') {
      field += c;
    }
  }
  if (!field.empty() || quoted || !rows.back().empty()) endField();
  if (rows.back().empty()) rows.pop_back();
  return rows;
}

// Without '&' or '<': cells are written unescaped, and such a text makes
// the file one that no program reads.
const char kPumpUtf8[] = "P\xC3\xBCmpe \xC3\x84\n\xC3\x96l Fa\xC3\x9F";

// LibreOffice keeps its settings in a profile; a private one keeps runs
// apart and leaves the user's alone. Basic reads the frozen rows, which a
// headless conversion never writes out. The frozen rows come through
// LibreOffice's full reader of the format, not the quick one its type
// detection picks, which reads cells only.
void WriteFrozenProbe(const std::string& profile) {
  const std::string basic = profile + "/user/basic/Standard/";
  std::string library = qt_test::ReadFileBytes(basic + "script.xlb");
  const std::string anchor = "</library:library>";
  const size_t at = library.rfind(anchor);
  ASSERT_NE(std::string::npos, at) << "LibreOffice made no Basic library in its profile";
  library.insert(at, " <library:element library:name=\"Probe\"/>\n");
  std::ofstream(basic + "script.xlb", std::ios::binary) << library;
  std::ofstream(basic + "Probe.xba", std::ios::binary)
      << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
         "<!DOCTYPE script:module PUBLIC \"-//OpenOffice.org//DTD OfficeDocument 1.0//EN\" \"module.dtd\">\n"
         "<script:module xmlns:script=\"http://openoffice.org/2000/script\" script:name=\"Probe\" "
         "script:language=\"StarBasic\">\n"
         "Sub Frozen(inUrl As String, outPath As String)\n"
         "  Dim args(1) As New com.sun.star.beans.PropertyValue\n"
         "  args(0).Name = &quot;Hidden&quot;\n"
         "  args(0).Value = True\n"
         "  args(1).Name = &quot;FilterName&quot;\n"
         "  args(1).Value = &quot;MS Excel 2003 XML&quot;\n"
         "  doc = StarDesktop.loadComponentFromURL(inUrl, &quot;_blank&quot;, 0, args())\n"
         "  ctl = doc.getCurrentController()\n"
         "  n = FreeFile\n"
         "  Open outPath For Output As #n\n"
         "  Print #n, ctl.hasFrozenPanes() &amp; &quot; &quot; &amp; ctl.getSplitRow() &amp; &quot; &quot; "
         "&amp; ctl.getSplitColumn()\n"
         "  Close #n\n"
         "  doc.close(True)\n"
         "End Sub\n"
         "</script:module>\n";
}

TEST(ReportReadback, LibreOfficeReadsValuesTypesAndTheFrozenHeader) {
  if (!HaveProgram("soffice")) GTEST_SKIP() << "soffice (Debian: libreoffice-calc-nogui) is not installed";
  qt_test::TempDir dir;
  WriteSample(dir);
  const std::string profile = dir.file("profile");
  const std::string soffice = "soffice -env:UserInstallation=file://" + profile + " --headless --norestore ";
  // Token 7 quotes text cells only, so a number comes back unquoted.
  ASSERT_EQ(0, RunShell(soffice + "--convert-to 'csv:Text - txt - csv (StarCalc):44,34,76,1,,0,true,true,true' --outdir " +
                       Quoted(dir.path()) + " " + Quoted(dir.file("report.xml")),
                   dir));
  const std::vector<std::vector<std::string>> rows = ParseCsv(qt_test::ReadFileBytes(dir.file("report.csv")));
  const std::vector<std::vector<std::string>> expected = {
      {"\"Name", "\"Count\npcs", "\"Flow\nl/s"},
      {std::string("\"") + kPumpUtf8, "-42", "1"},
      {"\"Two", "2147483647", ""},
      {"\"123", "", "-0.5"},
  };
  EXPECT_EQ(expected, rows) << "values as LibreOffice shows them in its standard number format";

  WriteFrozenProbe(profile);
  ASSERT_EQ(0, RunShell(soffice + Quoted("macro:///Standard.Probe.Frozen(\"file://" + dir.file("report.xml") + "\",\"" +
                                    dir.file("frozen.txt") + "\")"),
                   dir));
  EXPECT_EQ("True 1 0\n", qt_test::ReadFileBytes(dir.file("frozen.txt"))) << "one frozen row, no frozen column";
}

TEST(ReportReadback, GnumericReadsValuesAndTypes) {
  if (!HaveProgram("ssconvert")) GTEST_SKIP() << "ssconvert (Debian: gnumeric) is not installed";
  qt_test::TempDir dir;
  WriteSample(dir);
  ASSERT_EQ(0, RunShell("ssconvert -T Gnumeric_XmlIO:sax " + Quoted(dir.file("report.xml")) + " " +
                       Quoted(dir.file("report.gnumeric")) + " && gzip -dcf " + Quoted(dir.file("report.gnumeric")) +
                       " >" + Quoted(dir.file("plain.xml")),
                   dir));
  // Gnumeric's own file names each cell's type: 40 a number, 60 a text.
  const std::string sheet = qt_test::ReadFileBytes(dir.file("plain.xml"));
  std::map<std::pair<int, int>, std::string> cells;
  const std::regex cellPattern("<gnm:Cell Row=\"(\\d+)\" Col=\"(\\d+)\" ValueType=\"(\\d+)\">([^<]*)</gnm:Cell>");
  for (std::sregex_iterator i(sheet.begin(), sheet.end(), cellPattern), end; i != end; ++i) {
    cells[{std::stoi((*i)[1]), std::stoi((*i)[2])}] = (*i)[3].str() + ":" + (*i)[4].str();
  }
  const std::string pump = std::string("60:") + kPumpUtf8;
  const std::map<std::pair<int, int>, std::string> expected = {
      {{0, 0}, "60:Name"}, {{0, 1}, "60:Count\npcs"}, {{0, 2}, "60:Flow\nl/s"},
      {{1, 0}, pump},      {{1, 1}, "40:-42"},        {{1, 2}, "40:1"},
      {{2, 0}, "60:Two"},  {{2, 1}, "40:2147483647"}, {{2, 2}, "60:"},
      {{3, 0}, "60:123"},  {{3, 1}, "60:"},           {{3, 2}, "40:-0.5"},
  };
  for (const auto& cell : expected) {
    const auto found = cells.find(cell.first);
    // Gnumeric may leave an empty text cell out altogether.
    if (found == cells.end() && cell.second == "60:") continue;
    ASSERT_TRUE(found != cells.end()) << "row " << cell.first.first << " column " << cell.first.second;
    EXPECT_EQ(cell.second, found->second) << "row " << cell.first.first << " column " << cell.first.second;
  }
}

}  // namespace
