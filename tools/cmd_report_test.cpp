// quiltool report end to end: a sample project out to both files, a held
// lock, a file that is not a project, and the layout of an earlier run.
#include <gtest/gtest.h>

#include <string>

#include "FileSharingServiceManager.h"
#include "Registry.h"
#include "gwflock.h"
#include "message_recorder.h"
#include "qn_utf.h"
#include "qt_test.h"
#include "tool_test_support.h"

using qt_tool_test::RunTool;

namespace {


std::string TextExport(const std::string& path) {
  const std::string bytes = qt_test::ReadFileBytes(path);
  if (bytes.size() < 2) return std::string();
  const std::wstring wide = qn_utf16le_to_wide(bytes.data() + 2, bytes.size() - 2);
  return qn_wide_to_utf8(wide.c_str());
}

int Lines(const std::string& text) {
  int n = 0;
  for (char c : text) n += c == '\n';
  return n;
}

class ReportCommand : public ::testing::Test {
 protected:
  void SetUp() override {
    project_ = dir_.file("plant.qep");
    layout_ = "Tests\\" + qt_test::UniqueName("Layout");
    ASSERT_EQ(0, RunTool("db", {"sample", project_, "--records", "300"}).code);
  }
  void TearDown() override {
    RegInt_Init(L"Quillon", L"QuilTool", L"1");
    for (int i = 0; i < 20; ++i) {
      Registry::DeleteAtt(nullptr, qt_test::Widen(layout_ + "\\column" + std::to_string(i)).c_str());
    }
    Registry::DeleteAtt(nullptr, qt_test::Widen(layout_ + "\\AutoSize").c_str());
    Registry::DeleteKey(nullptr, qt_test::Widen(layout_ + "\\").c_str());
  }
  qt_tool_test::Result Report(std::vector<std::string> extra) {
    std::vector<std::string> args = {project_, "--layout", layout_};
    args.insert(args.end(), extra.begin(), extra.end());
    return RunTool("report", args);
  }
  bool LockFileLeft() {
    return !qt_test::ReadFileBytes(qt_test::Narrow(
                FileSharingServiceManager::LockFileName(qt_test::Widen(project_).c_str()).c_str()))
                .empty();
  }

  qt_test::TempDir dir_;
  qt_test::MessageRecorder messages_;
  std::string project_, layout_;
};

TEST_F(ReportCommand, OneSetGoesToBothFilesWithOneRowPerRecord) {
  const std::string xml = dir_.file("rooms.xml"), txt = dir_.file("rooms.txt");
  const auto r = Report({"--set", "ROOM", "--out", xml, "--text", txt, "--user", "Anna"});
  ASSERT_EQ(0, r.code) << r.err;
  const std::string text = TextExport(txt);
  // Title, header and the 60 rooms of a 300-record sample, in lines that
  // are separated, not ended, by CRLF.
  EXPECT_EQ(2 + 60 - 1, Lines(text)) << text.substr(0, 300);
  EXPECT_EQ(0u, text.find("plant.qep - ROOM - Anna\r\n"));
  EXPECT_NE(std::string::npos, text.find("Id\tNAME\tAREA\tNUMBER\tNOTE\tSTOREY\r\n"));
  EXPECT_NE(std::string::npos, text.find("\nR0000001\t0.1 "));
  const std::string sheet = qt_test::ReadFileBytes(xml);
  EXPECT_NE(std::string::npos, sheet.find("<Data ss:Type=\"String\">R0000060</Data>"));
  EXPECT_NE(std::string::npos, sheet.find("ss:Type=\"Number\""));
  EXPECT_FALSE(LockFileLeft());
}

TEST_F(ReportCommand, FileHeldByAnotherUserGivesThreeNamesTheHolderAndWritesNothing) {
  const std::wstring lockFile = FileSharingServiceManager::LockFileName(qt_test::Widen(project_).c_str()).c_str();
  gwflocktype lock;
  gwflock_init(&lock);
  ASSERT_EQ(0, gwflock_lockw(nullptr, &lock, lockFile.c_str(), L"Anna", nullptr, 0));
  const std::string xml = dir_.file("held.xml");
  const auto r = Report({"--out", xml});
  gwflock_unlock(&lock);
  EXPECT_EQ(3, r.code) << r.err;
  const std::wstring holder = FileSharingServiceManager::GetFileOwner(lockFile.c_str()).c_str();
  EXPECT_NE(std::wstring::npos, messages_.AllText().find(L"Locked: ")) << qt_test::Narrow(messages_.AllText());
  if (!holder.empty()) {
    EXPECT_NE(std::wstring::npos, messages_.AllText().find(L"Locked: " + holder)) << qt_test::Narrow(messages_.AllText());
  }
  EXPECT_EQ(0u, qt_test::ReadFileBytes(xml).size());
}

TEST_F(ReportCommand, FileThatIsNotAProjectFailsAndStaysAsItWas) {
  const std::string foreign = dir_.file("notes.qep");
  {
    FILE* f = std::fopen(foreign.c_str(), "wb");
    ASSERT_NE(nullptr, f);
    std::fputs("this is a text file, not a project database\n", f);
    std::fclose(f);
  }
  const std::string before = qt_test::ReadFileBytes(foreign);
  const std::string xml = dir_.file("notes.xml");
  const auto r = RunTool("report", {foreign, "--out", xml, "--layout", layout_});
  EXPECT_EQ(1, r.code);
  EXPECT_NE(std::string::npos, r.err.find("not a project database")) << r.err;
  EXPECT_EQ(before, qt_test::ReadFileBytes(foreign));
  EXPECT_EQ(0u, qt_test::ReadFileBytes(xml).size());
  EXPECT_EQ(2, RunTool("report", {}).code);
  EXPECT_EQ(1, Report({"--set", "NOSUCHSET", "--out", xml}).code);
  EXPECT_EQ(0u, qt_test::ReadFileBytes(xml).size());
  EXPECT_FALSE(LockFileLeft());
}

TEST_F(ReportCommand, SecondRunKeepsTheLayoutOfTheFirst) {
  const std::string txt = dir_.file("a.txt");
  ASSERT_EQ(0, Report({"--set", "DUCT", "--text", txt}).code);
  // The user hid FLOW (the third column shown, LParam 16 + 2) in between.
  RegInt_Init(L"Quillon", L"QuilTool", L"1");
  const std::wstring entry = qt_test::Widen(layout_ + "\\column2");
  const std::wstring saved = Registry::GetStringAtt(nullptr, entry.c_str(), ustr()).c_str();
  ASSERT_EQ(L"|0|18", saved.substr(saved.find(L'|'))) << qt_test::Narrow(saved);
  ASSERT_TRUE(Registry::SetStringAtt(nullptr, entry.c_str(), (saved.substr(0, saved.find(L'|')) + L"|1|18").c_str()));
  ASSERT_EQ(0, Report({"--set", "DUCT", "--text", txt}).code);
  const std::string text = TextExport(txt);
  EXPECT_NE(std::string::npos, text.find("Id\tNAME\tWIDTH\tHEIGHT\tAHU\r\n")) << text.substr(0, 200);
}

}  // namespace
