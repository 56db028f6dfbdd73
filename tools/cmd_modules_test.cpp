#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>
#include <vector>

#include "gwframe.h"
#include "module_exports_platform.h"
#include "project/interapp_modules.h"
#include "qn_utf.h"
#include "testsupport/qt_test.h"
#include "tool_test_support.h"

namespace fs = std::filesystem;

namespace {

using qt_tool_test::Result;

// What the fixture module (tools/fixtures/module_fixture.c) exports.
std::set<std::string> FixtureExports() {
  std::set<std::string> names = {"GetAcadVersionQNC", "IsMyCommandQNC", "ReadSiteInfoFromFileQRP",
                                 "FixtureOnlyExport", "fixture_data"};
#ifndef _WIN32
  names.insert({"CallsAnImport", "ZoomToQNC", "GetCurDwgFilePathNameQNC"});
#endif
  return names;
}

std::string ProgramFolder() {
  ustr folder;
  EXPECT_EQ(0, GetModuleDirectory(static_cast<HMODULE>(nullptr), folder));
  return qt_test::Narrow(folder.str());
}

std::string FixturePath() { return ProgramFolder() + "/module_fixtures/QNCommon_r24x64.arx"; }

std::string FileName(int module) { return qt_test::Narrow(qt::bridge::ModuleFileOf(module).fileName); }

void PutFixture(const qt_test::TempDir& dir, int module) {
  fs::copy_file(fs::u8path(FixturePath()), fs::u8path(dir.file(FileName(module))));
}

void PutBytes(const qt_test::TempDir& dir, int module, const std::string& bytes) {
  std::ofstream(fs::u8path(dir.file(FileName(module))), std::ios::binary) << bytes;
}

Result Modules(const std::vector<std::string>& args) { return qt_tool_test::RunTool("modules", args); }

// The lines the command owes a module that is the fixture.
std::string FixtureBlock(int module, int* missing) {
  const std::set<std::string> exported = FixtureExports();
  std::string text = FileName(module) + ": present\n";
  for (const char* name : qt::bridge::ExportsIn(module)) {
    if (exported.count(name)) continue;
    text += std::string("  missing: ") + name + "\n";
    ++*missing;
  }
  return text;
}

int CountLines(const std::string& text, const std::string& part) {
  int n = 0;
  for (size_t at = 0; (at = text.find(part, at)) != std::string::npos; at += part.size()) ++n;
  return n;
}

bool Contains(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

}  // namespace

TEST(ModulesCommand, TheFixtureExportsExactlyItsVisibleDefinitions) {
  std::vector<std::string> names;
  std::string problem;
  ASSERT_TRUE(qt::module_exports::platform::ReadExportNames(FixturePath(), names, problem)) << problem;
  const std::set<std::string> read(names.begin(), names.end());
  for (const std::string& name : FixtureExports()) EXPECT_EQ(1u, read.count(name)) << name;
  // The Linux fixture also holds a hidden definition and an undefined
  // reference, neither of which is an export.
  EXPECT_EQ(0u, read.count("GetAcadNameQNC"));
  EXPECT_EQ(0u, read.count("SaveDatabaseQNC"));
}

TEST(ModulesCommand, PresentModulesListWhatTheyLackInTableOrder) {
  // A folder name outside any code page: Windows must open wide names.
  qt_test::TempDir top;
  const std::string folder = top.file("m\xc3\xb6" "dule \xe6\x97\xa5");
  ASSERT_TRUE(fs::create_directory(fs::u8path(folder)));
  const std::vector<int> present = {qt::bridge::Qne, qt::bridge::QNCommon, qt::bridge::QNCommonUi,
                                    qt::bridge::QuilQRP};
  for (int m : present) fs::copy_file(fs::u8path(FixturePath()), fs::u8path(folder) / fs::u8path(FileName(m)));
  std::ofstream(fs::u8path(folder) / "unrelated.dll", std::ios::binary) << "not looked at";

  int missing = 0;
  std::string expected = "folder: " + folder + "\n";
  for (int m = 0; m < qt::bridge::kModuleCount; ++m) {
    const bool there = std::find(present.begin(), present.end(), m) != present.end();
    expected += there ? FixtureBlock(m, &missing) : FileName(m) + ": absent\n";
  }
  expected += "summary: 4 of 16 present, " + std::to_string(missing) + " missing exports, 0 unreadable\n";
  expected += "note: an absent module is not installed here, which is fine\n";

  const Result r = Modules({folder});
  EXPECT_EQ(expected, r.out);
  EXPECT_EQ("", r.err);
  EXPECT_EQ(missing > 0 ? 1 : 0, r.code);
}

TEST(ModulesCommand, NothingInstalledOrNothingLackingIsSuccess) {
  qt_test::TempDir dir;
  const Result empty = Modules({dir.path()});
  EXPECT_EQ(0, empty.code) << empty.err;
  EXPECT_EQ(16, CountLines(empty.out, ": absent\n"));
  EXPECT_TRUE(Contains(empty.out, "summary: 0 of 16 present, 0 missing exports, 0 unreadable\n"));
  EXPECT_TRUE(Contains(empty.out, "is not installed here, which is fine"));

  // Every module whose exports the fixture has is present and complete.
  const std::set<std::string> exported = FixtureExports();
  int complete = 0;
  for (int m = 0; m < qt::bridge::kModuleCount; ++m) {
    const std::vector<const char*> wanted = qt::bridge::ExportsIn(m);
    if (std::all_of(wanted.begin(), wanted.end(), [&](const char* n) { return exported.count(n) > 0; })) {
      PutFixture(dir, m);
      ++complete;
    }
  }
  const Result r = Modules({dir.path() + "/"});
  EXPECT_EQ(0, r.code) << r.out;
  EXPECT_EQ(complete, CountLines(r.out, ": present\n"));
  EXPECT_FALSE(Contains(r.out, "missing:"));
}

TEST(ModulesCommand, UnreadableModuleFilesAreNamedAndTheRestStillListed) {
  qt_test::TempDir dir;
  PutFixture(dir, qt::bridge::QNCommon);
  PutBytes(dir, qt::bridge::QnCs, "garbage, not a module at all");
  PutBytes(dir, qt::bridge::QnHpv, "");
  fs::create_directory(fs::u8path(dir.file(FileName(qt::bridge::QnSd))));

  const Result r = Modules({dir.path()});
  EXPECT_EQ(2, r.code);
  int missing = 0;
  EXPECT_TRUE(Contains(r.out, FixtureBlock(qt::bridge::QNCommon, &missing))) << r.out;
  for (int m : {qt::bridge::QnCs, qt::bridge::QnHpv, qt::bridge::QnSd})
    EXPECT_TRUE(Contains(r.out, FileName(m) + ": present, unreadable\n")) << r.out;
  EXPECT_EQ(12, CountLines(r.out, ": absent\n"));
  EXPECT_TRUE(Contains(r.out, "summary: 4 of 16 present, " + std::to_string(missing) + " missing exports, 3 unreadable"));

  const std::string garbage = dir.file(FileName(qt::bridge::QnCs));
  EXPECT_TRUE(Contains(r.err, garbage + ": not a")) << r.err;
  EXPECT_TRUE(Contains(r.err, dir.file(FileName(qt::bridge::QnSd)) + ": a folder, not a module file")) << r.err;
  EXPECT_EQ(3, CountLines(r.err, "quiltool modules: "));
}

TEST(ModulesCommand, BadUseAndTheDefaultFolder) {
  qt_test::TempDir dir;
  const Result gone = Modules({dir.file("nowhere")});
  EXPECT_EQ(2, gone.code);
  EXPECT_TRUE(Contains(gone.err, dir.file("nowhere") + ": no such folder")) << gone.err;
  EXPECT_EQ("", gone.out);

  std::ofstream(fs::u8path(dir.file("plain.txt"))) << "x";
  const Result file = Modules({dir.file("plain.txt")});
  EXPECT_EQ(2, file.code);
  EXPECT_TRUE(Contains(file.err, "plain.txt: not a folder")) << file.err;

  EXPECT_EQ(2, Modules({dir.path(), dir.path()}).code);
  EXPECT_EQ(2, Modules({""}).code);
  const Result unknown = Modules({"--frob", dir.path()});
  EXPECT_EQ(2, unknown.code);
  EXPECT_TRUE(Contains(unknown.err, "unknown option --frob")) << unknown.err;
  for (const char* help : {"--help", "-h", "/?"}) {
    const Result r = Modules({dir.file("nowhere"), help});
    EXPECT_EQ(0, r.code) << help;
    EXPECT_TRUE(Contains(r.out, "usage: quiltool modules [FOLDER]")) << help;
  }

  // Without a folder: the library's own, which here is the test program's.
  const Result own = Modules({});
  EXPECT_EQ(0, own.out.find("folder: " + ProgramFolder() + "\n")) << own.out;
  EXPECT_TRUE(Contains(own.out, "summary: ")) << own.out;
}

namespace {

// The bridge tests' stand-in modules are built from the bridge's own table:
// the complete ones must lack nothing, the bare ones everything.
TEST(ModulesCommand, AgreesWithTheBridgesStandInModules) {
  const std::string siblings = ProgramFolder() + "/siblings/";
  const Result full = Modules({siblings + "full"});
  EXPECT_EQ(full.code, 0) << full.out << full.err;
  EXPECT_NE(full.out.find("summary: 16 of 16 present, 0 missing exports, 0 unreadable"), std::string::npos)
      << full.out;

  size_t total = 0;
  for (int m = 0; m < qt::bridge::kModuleCount; ++m) total += qt::bridge::ExportsIn(m).size();
  const Result bare = Modules({siblings + "bare"});
  EXPECT_EQ(bare.code, 1) << bare.err;
  EXPECT_NE(bare.out.find("16 of 16 present, " + std::to_string(total) + " missing exports"), std::string::npos)
      << bare.out;
}

}  // namespace
