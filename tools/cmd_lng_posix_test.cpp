// lng import run by an account that may write the folder but not the file.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <string>

#include "tool_test_support.h"
#include "testsupport/qt_test.h"

namespace {

const char kDefinition[] = "qlgdef 1\nsource 1512\nlanguage 1512 en \"English\"\nlanguage 1515 fr \"French\"\n";
const char kModule[] = "qlg 1\nmodule QNC\n\ntext 607\n\t1512 \"File not found\"\n";
const char kPo[] =
    "msgid \"\"\nmsgstr \"\"\n\"Language: fr\\n\"\n\"Content-Type: text/plain; charset=UTF-8\\n\"\n\n"
    "msgctxt \"QNC:607\"\nmsgid \"File not found\"\nmsgstr \"Fichier introuvable\"\n";

void Put(const std::string& path, const std::string& text, mode_t mode) {
  FILE* f = std::fopen(path.c_str(), "wb");
  ASSERT_NE(nullptr, f);
  std::fwrite(text.data(), 1, text.size(), f);
  std::fclose(f);
  ASSERT_EQ(0, chmod(path.c_str(), mode));
}

// Runs "quiltool lng import QLG PO" as the unprivileged account 65534 and
// prints its exit code. Args: qlg, po.
QT_TEST_CHILD(lng_import_as_other_account) {
  if (setgid(65534) != 0 || setuid(65534) != 0) return 5;
  std::printf("%d\n", qt_tool_test::RunTool("lng", {"import", args.at(0), args.at(1)}).code);
  return 0;
}

TEST(LngToolPosix, ImportLeavesAFileTheAccountMayNotWriteAsItWas) {
  if (geteuid() != 0) GTEST_SKIP() << "acting as a second account needs root";
  qt_test::TempDir dir;
  ASSERT_EQ(0, chmod(dir.path().c_str(), 0777));
  Put(dir.file("QuilQlg.ddq"), kDefinition, 0644);
  Put(dir.file("QNCommon.qlg"), kModule, 0644);
  Put(dir.file("fr.po"), kPo, 0644);
  qt_test::ChildProcess other;
  ASSERT_TRUE(other.start("lng_import_as_other_account", {dir.file("QNCommon.qlg"), dir.file("fr.po")}));
  EXPECT_NE("0", other.readLine());
  EXPECT_EQ(0, other.wait());
  EXPECT_EQ(kModule, qt_test::ReadFileBytes(dir.file("QNCommon.qlg")));
  struct stat st;
  ASSERT_EQ(0, stat(dir.file("QNCommon.qlg").c_str(), &st));
  EXPECT_EQ(0u, st.st_uid);
  EXPECT_EQ(0644u, st.st_mode & 07777);

  // Where it may write the file, the import goes through and the file keeps
  // its owner's permissions.
  ASSERT_EQ(0, chmod(dir.file("QNCommon.qlg").c_str(), 0666));
  qt_test::ChildProcess writer;
  ASSERT_TRUE(writer.start("lng_import_as_other_account", {dir.file("QNCommon.qlg"), dir.file("fr.po")}));
  EXPECT_EQ("0", writer.readLine());
  EXPECT_EQ(0, writer.wait());
  EXPECT_NE(std::string::npos, qt_test::ReadFileBytes(dir.file("QNCommon.qlg")).find("Fichier introuvable"));
  ASSERT_EQ(0, stat(dir.file("QNCommon.qlg").c_str(), &st));
  EXPECT_EQ(0666u, st.st_mode & 07777);
}

}  // namespace
