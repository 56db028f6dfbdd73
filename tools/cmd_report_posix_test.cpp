// The spreadsheet of `quiltool report` as real spreadsheet programs read
// it: one row per record with its values, numbers as numbers. Skipped, with
// the reason, where a program is not installed.
#include <gtest/gtest.h>

#include <sys/wait.h>

#include <cstdlib>
#include <string>

#include "qt_test.h"
#include "tool_test_support.h"

namespace {

bool HaveProgram(const char* name) {
  return std::system((std::string("command -v ") + name + " >/dev/null 2>&1").c_str()) == 0;
}

std::string Quoted(const std::string& s) { return "'" + s + "'"; }

// The 60 rooms of a 300-record sample as XML Spreadsheet 2003.
std::string MakeSpreadsheet(const qt_test::TempDir& dir) {
  const std::string project = dir.file("plant.qep"), xml = dir.file("rooms.xml");
  EXPECT_EQ(0, qt_tool_test::RunTool("db", {"sample", project, "--records", "300"}).code);
  const auto r = qt_tool_test::RunTool(
      "report", {project, "--set", "ROOM", "--out", xml, "--layout", "Tests\\" + qt_test::UniqueName("Readback")});
  EXPECT_EQ(0, r.code) << r.err;
  return xml;
}

int CountLinesStartingWith(const std::string& text, const std::string& start) {
  int n = 0;
  for (size_t at = 0; at < text.size();) {
    if (text.compare(at, start.size(), start) == 0) ++n;
    const size_t next = text.find('\n', at);
    if (next == std::string::npos) break;
    at = next + 1;
  }
  return n;
}

void ExpectRooms(const std::string& csv, const std::string& program) {
  // Ids are texts, the room number an integer and the area a number.
  EXPECT_EQ(60, CountLinesStartingWith(csv, "\"R00") + CountLinesStartingWith(csv, "R00")) << program << "\n" << csv.substr(0, 400);
  EXPECT_NE(std::string::npos, csv.find("Id,NAME,AREA,NUMBER,NOTE,STOREY")) << program;
  EXPECT_NE(std::string::npos, csv.find(",60,")) << program;
}

TEST(ReportCommandReadback, GnumericReadsEveryRecord) {
  if (!HaveProgram("ssconvert")) GTEST_SKIP() << "ssconvert (Debian: gnumeric) is not installed";
  qt_test::TempDir dir;
  const std::string xml = MakeSpreadsheet(dir);
  const std::string csv = dir.file("rooms.csv");
  ASSERT_EQ(0, std::system(("ssconvert " + Quoted(xml) + " " + Quoted(csv) + " >/dev/null 2>&1").c_str()));
  ExpectRooms(qt_test::ReadFileBytes(csv), "gnumeric");
}

TEST(ReportCommandReadback, LibreOfficeReadsEveryRecord) {
  if (!HaveProgram("soffice")) GTEST_SKIP() << "soffice (Debian: libreoffice-calc-nogui) is not installed";
  qt_test::TempDir dir;
  const std::string xml = MakeSpreadsheet(dir);
  const std::string command = "soffice -env:UserInstallation=file://" + dir.file("profile") +
                              " --headless --norestore --convert-to csv --outdir " + Quoted(dir.path()) + " " +
                              Quoted(xml) + " >/dev/null 2>&1";
  ASSERT_EQ(0, std::system(command.c_str()));
  ExpectRooms(qt_test::ReadFileBytes(dir.file("rooms.csv")), "libreoffice");
}

// Ctrl+C in the middle of an export: the program, run as a user runs it,
// gets SIGINT after a moment and ends with 1, leaving neither a partial
// spreadsheet nor its lock file.
TEST(ReportCommandInterrupt, CtrlCStopsTheExportAndLeavesNoFileAndNoLock) {
  if (!HaveProgram("timeout")) GTEST_SKIP() << "timeout (coreutils) is not installed";
  qt_test::TempDir dir;
  const std::string project = dir.file("plant.qep"), xml = dir.file("plant.xml");
  ASSERT_EQ(0, qt_tool_test::RunTool("db", {"sample", project, "--records", "200000"}).code);
  const std::string self = qt_test::SelfPath();
  const std::string tool = self.substr(0, self.rfind('/') + 1) + "quiltool";
  const std::string command = "timeout --preserve-status -s INT 0.8 " + Quoted(tool) + " report " + Quoted(project) +
                              " --out " + Quoted(xml) + " --layout 'Tests\\" + qt_test::UniqueName("Interrupt") +
                              "' >" + Quoted(dir.file("out.txt")) + " 2>&1";
  const int status = std::system(command.c_str());
  ASSERT_TRUE(WIFEXITED(status)) << "ended by a signal: " << qt_test::ReadFileBytes(dir.file("out.txt"));
  if (WEXITSTATUS(status) == 0) GTEST_SKIP() << "the export finished before the interrupt";
  EXPECT_EQ(1, WEXITSTATUS(status)) << qt_test::ReadFileBytes(dir.file("out.txt"));
  EXPECT_NE(std::string::npos, qt_test::ReadFileBytes(dir.file("out.txt")).find("stopped by the user"));
  EXPECT_EQ(0u, qt_test::ReadFileBytes(xml).size());
  EXPECT_EQ("", qt_test::ReadFileBytes(dir.file("plant.lck")));
}

}  // namespace
