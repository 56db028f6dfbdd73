// The SQLite file behind the Linux settings store: who may create it, which
// files it takes as its own, and what a damaged file is allowed to do.
#include <gtest/gtest.h>
#include <sqlite3.h>
#include <stdlib.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "Registry.h"
#include "qt_test.h"
#include "settings/reg_test_util.h"

namespace {

// Points the user root of the children started in its lifetime elsewhere.
class ScopedUserDir {
 public:
  explicit ScopedUserDir(const std::string& dir) {
    const char* old = getenv("QUILTOOL_HKCU_DIR");
    old_ = old ? old : "";
    setenv("QUILTOOL_HKCU_DIR", dir.c_str(), 1);
  }
  ~ScopedUserDir() { setenv("QUILTOOL_HKCU_DIR", old_.c_str(), 1); }

 private:
  std::string old_;
};

std::string Sql(const std::string& file, const char* sql) {
  sqlite3* db = nullptr;
  std::string result;
  if (sqlite3_open_v2(file.c_str(), &db, SQLITE_OPEN_READWRITE, nullptr) == SQLITE_OK) {
    sqlite3_stmt* s = nullptr;
    if (sqlite3_prepare_v2(db, sql, -1, &s, nullptr) == SQLITE_OK && sqlite3_step(s) == SQLITE_ROW &&
        sqlite3_column_text(s, 0))
      result = reinterpret_cast<const char*>(sqlite3_column_text(s, 0));
    sqlite3_finalize(s);
  }
  sqlite3_close(db);
  return result;
}

// Waits for "go" on stdin so that all children meet the fresh file at
// once, then writes count values, failing at the first refusal.
QT_TEST_CHILD(fresh_store_writer) {
  if (args.size() != 2) return 90;
  char line[16];
  if (!std::fgets(line, sizeof line, stdin)) return 91;
  RegInt_Init(L"Fresh", L"App", L"1.0");
  const std::wstring prefix = L"W" + qt_test::Widen(args[0]) + L"/V";
  const int count = std::stoi(args[1]);
  for (int i = 0; i < count; ++i) {
    if (!Registry::SetIntAtt(nullptr, (prefix + std::to_wstring(i)).c_str(), i)) {
      std::printf("failed at %d\n", i);
      return 1;
    }
  }
  std::printf("done\n");
  return 0;
}

// A process that lost the race to create the store once failed every
// write of its life; about one round in eight showed it.
TEST(SqliteStore, ProcessesMeetingAFreshStoreAllWrite) {
  const int kRounds = 32, kProcesses = 8, kValues = 200;
  for (int round = 0; round < kRounds; ++round) {
    qt_test::TempDir dir;
    ScopedUserDir user(dir.file("store"));
    std::vector<std::unique_ptr<qt_test::ChildProcess>> children;
    for (int p = 0; p < kProcesses; ++p) {
      children.emplace_back(new qt_test::ChildProcess());
      ASSERT_TRUE(children.back()->start("fresh_store_writer", {std::to_string(p), std::to_string(kValues)}));
    }
    for (auto& child : children) child->writeLine("go");
    int failed = 0;
    std::string why;
    for (auto& child : children) {
      const std::string line = child->readLine();
      if (child->wait() != 0) {
        ++failed;
        why += line + "; ";
      }
    }
    ASSERT_EQ(failed, 0) << "round " << round << ": " << why;
    EXPECT_EQ(Sql(dir.file("store/settings.db"), "SELECT count(*) FROM vals"), std::to_string(kProcesses * kValues));
  }
}

// In a store folder of its own (args[0], also its working folder, where
// the debug trace goes), one operation on "Software\\S" of the user root:
// "fill N" (values v0..vN-1), "delete NAME" or "read NAME". Prints the
// result and what the store says against its file.
QT_TEST_CHILD(store_op) {
  if (args.size() != 3 || chdir(args[0].c_str()) != 0) return 90;
  setenv("QUILTOOL_HKCU_DIR", args[0].c_str(), 1);
  const std::wstring name = qt_test::Widen(args[2]);
  long rc = -1;
  HKEY key = nullptr;
  if (args[1] == "fill") {
    rc = qt_reg::CreateKey(HKEY_CURRENT_USER, L"Software\\S", qt_reg::kKeyAllAccess, &key);
    const std::vector<BYTE> data(64, 'x');
    for (int i = 0; rc == 0 && i < std::stoi(args[2]); ++i)
      rc = qt_reg::SetValue(key, (L"v" + std::to_wstring(i)).c_str(), REG_BINARY, data.data(), 64);
  } else if (args[1] == "delete") {
    rc = qt_reg::OpenKey(HKEY_CURRENT_USER, L"Software\\S", qt_reg::kKeyAllAccess, &key);
    if (rc == 0) rc = qt_reg::DeleteValue(key, name.c_str());
  } else if (args[1] == "read") {
    rc = reg_test::ReadRaw(HKEY_CURRENT_USER, L"Software\\S", name).rc;
  }
  if (key) qt_reg::CloseKey(key);
  std::printf("rc=%ld\nproblem=%s\n", rc, qt_reg::StoreProblem(HKEY_CURRENT_USER).c_str());
  return 0;
}

struct OpResult {
  long rc = -1;
  std::string problem;
};

OpResult StoreOp(const std::string& dir, const std::string& op, const std::string& arg) {
  qt_test::ChildProcess child;
  OpResult r;
  if (!child.start("store_op", {dir, op, arg})) return r;
  const std::string rc = child.readLine(), problem = child.readLine();
  child.wait();
  if (rc.rfind("rc=", 0) == 0) r.rc = std::stol(rc.substr(3));
  if (problem.rfind("problem=", 0) == 0) r.problem = problem.substr(8);
  return r;
}

bool Contains(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

TEST(SqliteStore, AnotherProgramsDatabaseIsNeverWritten) {
  qt_test::TempDir dir;
  const std::string file = dir.file("settings.db");
  sqlite3* db = nullptr;
  ASSERT_EQ(sqlite3_open(file.c_str(), &db), SQLITE_OK);
  ASSERT_EQ(sqlite3_exec(db, "CREATE TABLE t(x)", nullptr, nullptr, nullptr), SQLITE_OK);
  sqlite3_close(db);
  const std::string before = qt_test::ReadFileBytes(file);

  const OpResult write = StoreOp(dir.path(), "fill", "1");
  EXPECT_EQ(write.rc, qt_reg::kBadDb);
  EXPECT_TRUE(Contains(write.problem, file) && Contains(write.problem, "not a settings store")) << write.problem;
  EXPECT_EQ(StoreOp(dir.path(), "read", "v0").rc, qt_reg::kBadDb);
  EXPECT_TRUE(qt_test::ReadFileBytes(file) == before) << "left as it was";
  EXPECT_TRUE(Contains(qt_test::ReadFileBytes(dir.file("GWDEBUG.TXT")), write.problem)) << "traced for the library's users";

  // Our mark alone does not make a file ours either.
  ASSERT_EQ(sqlite3_open(file.c_str(), &db), SQLITE_OK);
  ASSERT_EQ(sqlite3_exec(db, "PRAGMA application_id=1414812231", nullptr, nullptr, nullptr), SQLITE_OK);
  sqlite3_close(db);
  EXPECT_EQ(StoreOp(dir.path(), "fill", "1").rc, qt_reg::kBadDb);
  EXPECT_EQ(Sql(file, "SELECT count(*) FROM sqlite_master"), "1");
}

TEST(SqliteStore, ADamagedStoreIsNamedAndNeverWritten) {
  qt_test::TempDir dir;
  const std::string file = dir.file("settings.db");
  ASSERT_EQ(StoreOp(dir.path(), "fill", "200").rc, 0);
  const int pageSize = std::stoi(Sql(file, "PRAGMA page_size"));
  ASSERT_GE(qt_test::ReadFileBytes(file).size(), 20000u);
  {
    std::fstream f(file, std::ios::in | std::ios::out | std::ios::binary);
    f.seekp(pageSize);
    for (int i = 0; i < pageSize; ++i) f.put(0);
  }
  const std::string before = qt_test::ReadFileBytes(file);

  const OpResult removal = StoreOp(dir.path(), "delete", "v5");
  EXPECT_EQ(removal.rc, qt_reg::kBadDb);
  EXPECT_TRUE(Contains(removal.problem, file) && Contains(removal.problem, "damaged")) << removal.problem;
  EXPECT_EQ(StoreOp(dir.path(), "fill", "1").rc, qt_reg::kBadDb);
  EXPECT_TRUE(qt_test::ReadFileBytes(file) == before) << "the damaged file is left for rescue";
}

// A write group is one transaction: undone, none of its changes stays.
TEST(SqliteStore, AWriteGroupIsKeptOrUndoneWhole) {
  const std::wstring top = qt_test::Widen(qt_test::UniqueName("Software\\Group"));
  const std::vector<BYTE> one = {1, 0, 0, 0};
  for (const bool keep : {false, true}) {
    ASSERT_EQ(qt_reg::BeginWrite(HKEY_CURRENT_USER), 0);
    EXPECT_EQ(qt_reg::BeginWrite(HKEY_CURRENT_USER), qt_reg::kInvalidParameter) << "groups do not nest";
    EXPECT_EQ(reg_test::WriteRaw(HKEY_CURRENT_USER, top + L"\\a\\b", L"v", REG_DWORD, one), 0);
    HKEY key = nullptr;
    // A change that fails inside the group undoes only itself.
    EXPECT_NE(qt_reg::CreateKey(HKEY_CURRENT_USER, (top + L"\\" + std::wstring(256, L'x')).c_str(),
                                qt_reg::kKeyAllAccess, &key), 0);
    EXPECT_EQ(reg_test::ReadRaw(HKEY_CURRENT_USER, top + L"\\a\\b", L"v").rc, 0) << "seen inside the group";
    EXPECT_EQ(qt_reg::EndWrite(HKEY_CURRENT_USER, keep), 0);
    EXPECT_EQ(reg_test::KeyExists(HKEY_CURRENT_USER, top), keep);
  }
  EXPECT_EQ(qt_reg::EndWrite(HKEY_CURRENT_USER, true), qt_reg::kInvalidParameter);
  qt_reg::DeleteTree(HKEY_CURRENT_USER, top.c_str());
}

}  // namespace
