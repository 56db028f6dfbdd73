#include "pe_exports.h"
#include "pe_test_image.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace {

using qt_tool::ReadPeExportNames;

using qt_tool_test::BuildDll;
using qt_tool_test::Dll;
using qt_tool_test::Put16;
using qt_tool_test::Put32;

// Reads exactly the first size bytes from a heap block of that size, so
// that the address sanitizer sees any read past them.
bool Read(const std::vector<unsigned char>& bytes, size_t size, std::vector<std::string>& names, std::string& problem) {
  std::unique_ptr<unsigned char[]> copy(new unsigned char[size ? size : 1]);
  std::copy(bytes.begin(), bytes.begin() + size, copy.get());
  return ReadPeExportNames(copy.get(), size, names, problem);
}

struct Outcome {
  bool ok;
  std::vector<std::string> names;
  std::string problem;
};

Outcome Read(const std::vector<unsigned char>& bytes) {
  Outcome o;
  o.ok = Read(bytes, bytes.size(), o.names, o.problem);
  return o;
}

// False, nothing named, and a reason containing `words`.
void ExpectRefused(const std::vector<unsigned char>& bytes, const std::string& words) {
  const Outcome o = Read(bytes);
  EXPECT_FALSE(o.ok) << words;
  EXPECT_TRUE(o.names.empty()) << words;
  EXPECT_NE(std::string::npos, o.problem.find(words)) << "problem: " << o.problem;
}

const std::vector<std::string> kNames = {"GetAcadVersionQNC", "IsMyCommandQNE", "a", "?Decorated@@YAHXZ"};

}  // namespace

TEST(PeExports, NamesComeBackInTableOrderThroughTheSectionMapping) {
  const Outcome o = Read(BuildDll(kNames).bytes);
  ASSERT_TRUE(o.ok) << o.problem;
  EXPECT_EQ(kNames, o.names);
  EXPECT_TRUE(o.problem.empty());

  // Exporting nothing, or having no export directory, is a valid module.
  const Outcome none = Read(BuildDll({}).bytes);
  EXPECT_TRUE(none.ok) << none.problem;
  EXPECT_TRUE(none.names.empty());
  Dll bare = BuildDll(kNames);
  Put32(bare.bytes, bare.optional + 112, 0);
  const Outcome noDirectory = Read(bare.bytes);
  EXPECT_TRUE(noDirectory.ok) << noDirectory.problem;
  EXPECT_TRUE(noDirectory.names.empty());
}

TEST(PeExports, NamesUpToTheLinkersLimitAreRead) {
  const std::string longest(4096, 'n');
  const Outcome o = Read(BuildDll({"first", longest}).bytes);
  ASSERT_TRUE(o.ok) << o.problem;
  EXPECT_EQ(longest, o.names.at(1));
  ExpectRefused(BuildDll({"first", longest + "n"}).bytes, "longer than 4096");
}

TEST(PeExports, EveryCutOffImageIsRefused) {
  const std::vector<unsigned char> whole = BuildDll(kNames).bytes;
  for (size_t cut = 0; cut < whole.size(); ++cut) {
    std::vector<std::string> names{"left over"};
    std::string problem;
    EXPECT_FALSE(Read(whole, cut, names, problem)) << "cut at " << cut;
    EXPECT_TRUE(names.empty()) << "cut at " << cut;
    EXPECT_FALSE(problem.empty()) << "cut at " << cut;
  }
  std::vector<std::string> names;
  std::string problem;
  EXPECT_FALSE(ReadPeExportNames(nullptr, 0, names, problem));
  EXPECT_FALSE(ReadPeExportNames(nullptr, 4096, names, problem));
}

TEST(PeExports, OffsetsAndCountsPointingAwayAreRefused) {
  Dll d = BuildDll(kNames);
  Put32(d.bytes, d.optional + 112, 0x7FFFFFF0);
  ExpectRefused(d.bytes, "export directory lies outside");

  d = BuildDll(kNames);
  Put32(d.bytes, d.directory + 32, 0xFFFFFFFF);
  ExpectRefused(d.bytes, "name table lies outside");

  d = BuildDll(kNames);
  Put32(d.bytes, d.nameTable + 8, 0x3000 + 0x100000);
  ExpectRefused(d.bytes, "export name 3 lies outside");

  // A name pointer into the code section's zero-filled tail, which has no
  // bytes in the file.
  d = BuildDll(kNames);
  Put32(d.bytes, d.sections + 8, 0x2000);
  Put32(d.bytes, d.nameTable, 0x1000 + 0x1800);
  ExpectRefused(d.bytes, "export name 1 lies outside");

  d = BuildDll(kNames);
  Put32(d.bytes, d.directory + 24, 0xFFFFFFFF);
  ExpectRefused(d.bytes, "name table is cut off");

  // The last name runs into the end of the file.
  d = BuildDll(kNames);
  d.bytes.back() = 'x';
  ExpectRefused(d.bytes, "export name 4 is not terminated");

  // A section that claims file bytes beyond the end.
  d = BuildDll(kNames);
  Put32(d.bytes, d.sections + 40 + 20, 0xFFFFFF00);
  ExpectRefused(d.bytes, "export directory lies outside");

  d = BuildDll(kNames);
  Put16(d.bytes, d.pe + 6, 0xFFFF);
  ExpectRefused(d.bytes, "section table runs past");

  d = BuildDll(kNames);
  Put32(d.bytes, 0x3C, 0xFFFFFFF0);
  ExpectRefused(d.bytes, "cut off before its PE header");
}

TEST(PeExports, FilesThatAreNotX64ModulesAreNamedForWhatTheyAre) {
  ExpectRefused(std::vector<unsigned char>{'\x7f', 'E', 'L', 'F', 2, 1, 1, 0}, "not a Windows module (an ELF file");
  ExpectRefused(std::vector<unsigned char>(100, 'z'), "not a Windows module");

  Dll d = BuildDll(kNames);
  d.bytes[d.pe + 1] = 'X';
  ExpectRefused(d.bytes, "no PE signature");

  d = BuildDll(kNames);
  Put16(d.bytes, d.pe + 4, 0x014C);
  ExpectRefused(d.bytes, "32-bit (x86)");

  d = BuildDll(kNames);
  Put16(d.bytes, d.pe + 4, 0xAA64);
  ExpectRefused(d.bytes, "another processor (machine 0xaa64)");

  d = BuildDll(kNames);
  Put16(d.bytes, d.optional, 0x10B);
  ExpectRefused(d.bytes, "32-bit (PE32)");

  d = BuildDll(kNames);
  Put16(d.bytes, d.pe + 22, 0x0022);
  ExpectRefused(d.bytes, "a program, not a module");

  d = BuildDll(kNames);
  Put16(d.bytes, d.pe + 20, 2);
  ExpectRefused(d.bytes, "not a PE32+ image");
}
