// quiltool reg on Linux stores that are not fit for use: it names the file
// and what is wrong with it instead of reporting a missing key.
#include <gtest/gtest.h>
#include <sqlite3.h>
#include <stdlib.h>

#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

#include "qt_test.h"
#include "settings/regstore.h"
#include "tool_test_support.h"

namespace {

// "quiltool reg ..." with the user store in args[0]; prints the exit code,
// then what went to stderr.
QT_TEST_CHILD(reg_in_store) {
  if (args.size() < 2) return 90;
  setenv("QUILTOOL_HKCU_DIR", args[0].c_str(), 1);
  const qt_tool_test::Result r = qt_tool_test::RunTool("reg", std::vector<std::string>(args.begin() + 1, args.end()));
  std::printf("%d\n%s", r.code, r.err.c_str());
  return 0;
}

struct Outcome {
  int code = -1;
  std::string err;
};

Outcome RegIn(const std::string& dir, std::vector<std::string> args) {
  args.insert(args.begin(), dir);
  qt_test::ChildProcess child;
  Outcome o;
  if (!child.start("reg_in_store", args)) return o;
  const std::string code = child.readLine();
  for (std::string line = child.readLine(); !line.empty(); line = child.readLine()) o.err += line + "\n";
  child.wait();
  if (!code.empty()) o.code = std::stoi(code);
  return o;
}

bool Contains(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

TEST(RegStoreProblems, AreNamedWithTheirFile) {
  qt_test::TempDir foreign, garbage;
  sqlite3* db = nullptr;
  ASSERT_EQ(sqlite3_open(foreign.file("settings.db").c_str(), &db), SQLITE_OK);
  ASSERT_EQ(sqlite3_exec(db, "CREATE TABLE t(x)", nullptr, nullptr, nullptr), SQLITE_OK);
  sqlite3_close(db);
  {
    std::ofstream f(garbage.file("settings.db"), std::ios::binary);
    for (int i = 0; i < 500; ++i) f << "not a database " << i;
  }
  const std::vector<std::vector<std::string>> commands = {
      {"add", "HKCU\\Software\\Velmora\\W", "/v", "n", "/d", "x", "/f"},
      {"query", "HKCU\\Software\\Velmora"},
      {"delete", "HKCU\\Software\\Velmora", "/v", "n", "/f"},
  };
  for (const auto& command : commands) {
    const Outcome a = RegIn(foreign.path(), command);
    EXPECT_EQ(a.code, 1) << command[0];
    EXPECT_TRUE(Contains(a.err, foreign.file("settings.db")) && Contains(a.err, "not a settings store")) << a.err;
    const Outcome b = RegIn(garbage.path(), command);
    EXPECT_EQ(b.code, 1) << command[0];
    EXPECT_TRUE(Contains(b.err, garbage.file("settings.db")) && Contains(b.err, "damaged")) << b.err;
    EXPECT_FALSE(Contains(b.err, "unable to find")) << b.err;
  }
}

// Linux's 8-bit text is UTF-8, so an old 8-bit file is read as UTF-8: well
// formed, or refused whole with the line, never imported under a name with
// a stand-in character.
TEST(Regedit4OnLinux, IsExactUtf8) {
  const std::string company = qt_test::UniqueName("QtRegUtf8");
  const std::wstring wkey = L"Software\\" + qt_test::Widen(company);
  const std::string key = "HKEY_CURRENT_USER\\Software\\" + company;
  qt_test::TempDir dir;
  const std::string file = dir.file("old.reg");
  const std::string good = "REGEDIT4\n\n[" + key + "\\First]\n\"a\"=\"1\"\n";
  for (const std::string& tail : std::vector<std::string>{"[" + key + "\\\xFF\x98\x98\x98]\n", "\"\xE6\x97\"=dword:1\n",
                                  "\"x\"=\"\xC0\xAF\"\n", "\"p\"=hex(2):41,\\\n  ff,00\n"}) {
    std::ofstream(file, std::ios::binary) << good + tail;
    const qt_tool_test::Result r = qt_tool_test::RunTool("reg", {"import", file});
    EXPECT_EQ(r.code, 1);
    EXPECT_TRUE(Contains(r.err, "line 5: ") && Contains(r.err, "not valid UTF-8")) << r.err;
    HKEY k = nullptr;
    EXPECT_NE(qt_reg::OpenKey(HKEY_CURRENT_USER, wkey.c_str(), qt_reg::kKeyRead, &k), 0) << "nothing imported";
    if (k) qt_reg::CloseKey(k);
  }

  // "日本語" as a key and a value name, "名前" as data.
  const std::string japanese = "\xE6\x97\xA5\xE6\x9C\xAC\xE8\xAA\x9E", name = "\xE5\x90\x8D\xE5\x89\x8D";
  std::ofstream(file, std::ios::binary) << "REGEDIT4\n\n[" + key + "\\" + japanese + "]\n\"" + japanese + "\"=\"" +
                                              name + "\"\n";
  qt_tool_test::Result r = qt_tool_test::RunTool("reg", {"import", file});
  ASSERT_EQ(r.code, 0) << r.err;
  const std::string out = dir.file("out.reg");
  r = qt_tool_test::RunTool("reg", {"export", key + "\\" + japanese, out});
  ASSERT_EQ(r.code, 0) << r.err;
  const std::wstring text = L"[" + qt_test::Widen(key + "\\" + japanese) + L"]\r\n\"" + qt_test::Widen(japanese) +
                            L"\"=\"" + qt_test::Widen(name) + L"\"\r\n";
  const std::vector<BYTE> bytes = qt_reg::ToUtf16Bytes(text, false);
  EXPECT_TRUE(Contains(qt_test::ReadFileBytes(out), std::string(bytes.begin(), bytes.end()))) << "exported unchanged";
  qt_reg::DeleteTree(HKEY_CURRENT_USER, wkey.c_str());
}

}  // namespace
