// What every subcommand shares: help, option mistakes, the version, and the
// text handling of the program's input and output.
#include <gtest/gtest.h>

#include <string>

#include "command.h"
#include "console_text.h"
#include "testsupport/qt_test.h"
#include "tool_test_support.h"

namespace {

using qt_tool_test::Result;

Result Program(const std::vector<std::string>& args) {
  FILE* out = std::tmpfile();
  FILE* err = std::tmpfile();
  Result r;
  r.code = qt_tool::Run(args, out, err);
  r.out = qt_tool_test::DrainAndClose(out);
  r.err = qt_tool_test::DrainAndClose(err);
  return r;
}

bool Contains(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

}  // namespace

TEST(ToolOptions, HelpIsAnsweredByEveryCommandAndAction) {
  const std::vector<std::vector<std::string>> lines = {
      {"--help"},
      {"db", "--help"},
      {"db", "info", "--help"},
      {"db", "dump", "some.qep", "-h"},
      {"lock", "--help"},
      {"lock", "status", "--help"},
      {"lock", "take", "x", "--help"},
      {"lng", "--help"},
      {"lng", "import", "--help"},
      {"version", "--help"},
  };
  for (const auto& line : lines) {
    SCOPED_TRACE(line.size() > 1 ? line[0] + " " + line[1] : line[0]);
    const Result r = Program(line);
    EXPECT_EQ(0, r.code) << r.err;
    EXPECT_TRUE(Contains(r.out, "usage: quiltool")) << r.out;
    EXPECT_EQ("", r.err);
  }
}

TEST(ToolOptions, UnknownOptionsAreNamedAndNeverTakenForFiles) {
  const std::vector<std::vector<std::string>> lines = {
      {"db", "info", "--frob", "x.qep"},
      {"db", "info", "--set", "PANEL", "x.qep"},  // dump's option only
      {"lock", "release-stale", "-f"},
      {"lock", "status", "--user", "me", "x"},  // take's option only
      {"lng", "check", "--nope"},
      {"version", "--all"},
      {"--frob"},
  };
  for (const auto& line : lines) {
    std::string option;
    for (const std::string& a : line)
      if (option.empty() && a[0] == '-') option = a;
    SCOPED_TRACE(option);
    const Result r = Program(line);
    EXPECT_EQ(2, r.code);
    EXPECT_TRUE(Contains(r.err, "unknown option " + option)) << r.err;
    EXPECT_FALSE(Contains(r.err, "cannot open")) << r.err;
  }
  Result r = Program({"db", "dump", "x.qep", "--set"});
  EXPECT_EQ(2, r.code);
  EXPECT_TRUE(Contains(r.err, "--set needs a value")) << r.err;
  // After "--" a name that starts with a dash is a file.
  r = Program({"db", "info", "--", "-odd.qep"});
  EXPECT_EQ(1, r.code);
  EXPECT_TRUE(Contains(r.err, "-odd.qep: no such file")) << r.err;
}

TEST(ToolOptions, VersionAsOptionAndAsCommandAgree) {
  const Result option = Program({"--version"});
  const Result command = Program({"version"});
  EXPECT_EQ(0, option.code) << option.err;
  EXPECT_EQ(command.out, option.out);
  EXPECT_GT(std::atol(option.out.c_str()), 0) << option.out;
}

TEST(ToolText, ChunkedUtf8IsCutOnlyBetweenCharacters) {
  const std::string text = "a\xC3\xA9\xE6\x97\xA5\xF0\x9F\x98\x80";  // a é 日 😀
  // Every cut inside a character moves back to its start.
  const size_t starts[] = {0, 1, 3, 6, 10};
  for (size_t cut = 0; cut <= text.size(); ++cut) {
    size_t expected = 0;
    for (size_t s : starts)
      if (s <= cut) expected = s;
    EXPECT_EQ(expected, qt_tool::CompleteUtf8Prefix(text.data(), cut)) << cut;
  }
  // Bytes that can never finish a character do not hold the stream up.
  EXPECT_EQ(2u, qt_tool::CompleteUtf8Prefix("\xFF\xC0", 2));
  EXPECT_EQ(2u, qt_tool::CompleteUtf8Prefix("\xE6\x41", 2));
}

TEST(ToolText, IllFormedUtf8BecomesReplacementCharacters) {
  const std::string fffd = "\xEF\xBF\xBD";
  EXPECT_EQ("Gr\xC3\xBC\xC3\x9F" "e", qt_tool::SanitizeUtf8("Gr\xC3\xBC\xC3\x9F" "e"));
  EXPECT_EQ("a" + fffd + "b", qt_tool::SanitizeUtf8("a\xFF" "b"));
  EXPECT_EQ(fffd + "/", qt_tool::SanitizeUtf8("\xC0\xAF/"));              // overlong
  EXPECT_EQ(fffd, qt_tool::SanitizeUtf8("\xED\xA0\x80"));                 // surrogate
  EXPECT_EQ(fffd, qt_tool::SanitizeUtf8("\xF4\x90\x80\x80"));             // above U+10FFFF
  EXPECT_EQ(fffd + fffd + "x", qt_tool::SanitizeUtf8("\xF8\x88\x80\x80\x80\xFEx"));
  EXPECT_EQ("ok" + fffd, qt_tool::SanitizeUtf8("ok\xE6\x97"));            // cut off
  EXPECT_EQ("\xF0\x9F\x98\x80", qt_tool::SanitizeUtf8("\xF0\x9F\x98\x80"));
}

TEST(ToolText, EngineTextBecomesWellFormedUtf8) {
  // Plain ASCII is the same in every 8-bit encoding.
  EXPECT_EQ("PANEL 7", qt_tool::EightBitToUtf8("PANEL 7"));
  // Whatever the code page makes of high bytes, the result is UTF-8.
  const std::string high = qt_tool::EightBitToUtf8("\xE4\xFF\x80\xC3");
  EXPECT_EQ(high, qt_tool::SanitizeUtf8(high));
  EXPECT_FALSE(high.empty());
}
