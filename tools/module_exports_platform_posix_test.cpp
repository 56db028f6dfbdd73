#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

#include "gwframe.h"
#include "module_exports_platform.h"
#include "pe_test_image.h"
#include "testsupport/qt_test.h"

namespace {

std::string FixtureBytes() {
  ustr folder;
  EXPECT_EQ(0, GetModuleDirectory(static_cast<HMODULE>(nullptr), folder));
  return qt_test::ReadFileBytes(qt_test::Narrow(folder.str()) + "/module_fixtures/QNCommon_r24x64.arx");
}

// The reason the reader gives for a file of these bytes; empty when it
// reads the file.
std::string ProblemWith(const qt_test::TempDir& dir, const std::string& bytes) {
  const std::string path = dir.file("module.arx");
  std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
  std::vector<std::string> names{"left over"};
  std::string problem;
  if (qt::module_exports::platform::ReadExportNames(path, names, problem)) return std::string();
  EXPECT_TRUE(names.empty());
  EXPECT_FALSE(problem.empty());
  return problem.empty() ? "(no reason given)" : problem;
}

}  // namespace

TEST(ModuleExportsPosix, OnlyX8664SharedObjectsAreModules) {
  qt_test::TempDir dir;
  const std::string fixture = FixtureBytes();
  ASSERT_GT(fixture.size(), 64u);
  EXPECT_EQ("", ProblemWith(dir, fixture));

  const std::vector<unsigned char> pe = qt_tool_test::BuildDll({"GetAcadVersionQNC"}).bytes;
  EXPECT_EQ("not an ELF shared object (a Windows module)", ProblemWith(dir, std::string(pe.begin(), pe.end())));
  EXPECT_EQ("not an ELF shared object (not an ELF file)", ProblemWith(dir, "#!/bin/sh\n"));

  std::string other = fixture;
  other[18] = static_cast<char>(183);  // e_machine: AArch64
  other[19] = 0;
  EXPECT_NE(std::string::npos, ProblemWith(dir, other).find("another platform"));
  std::string program = fixture;
  program[16] = 2;  // e_type: an executable
  EXPECT_NE(std::string::npos, ProblemWith(dir, program).find("not a shared object"));
  std::string narrow = fixture;
  narrow[4] = 1;  // a 32-bit ELF file
  EXPECT_NE("", ProblemWith(dir, narrow));

  // The section headers sit at the end of the file: every cut loses them.
  for (size_t cut : {size_t(0), size_t(4), size_t(40), size_t(64), fixture.size() / 2, fixture.size() - 1})
    EXPECT_NE("", ProblemWith(dir, fixture.substr(0, cut))) << "cut at " << cut;

  std::vector<std::string> names;
  std::string problem;
  EXPECT_FALSE(qt::module_exports::platform::ReadExportNames(dir.file("none.arx"), names, problem));
  EXPECT_NE(std::string::npos, problem.find("cannot open the file")) << problem;
}
