// The SQLite file behind the Linux settings store: who may create it, which
// files it takes as its own, and what a damaged file is allowed to do.
#include <gtest/gtest.h>
#include <sqlite3.h>
#include <stdlib.h>

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

}  // namespace
