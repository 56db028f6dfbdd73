// The read cache of the Linux store: no SQL while nothing changes, and yet
// every change by any process, a killed writer's included, is seen by the
// very next read.
#include <gtest/gtest.h>
#include <sqlite3.h>
#include <stdlib.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <thread>

#include "Registry.h"
#include "qt_test.h"
#include "settings/reg_test_util.h"
#include "settings/regstore_cache_posix.h"

namespace {

template <class F>
unsigned long long StatementsDuring(F f) {
  const unsigned long long before = qt_reg::StoreStatementCount();
  f();
  return qt_reg::StoreStatementCount() - before;
}

// Answers commands on stdin with what this process reads and writes, so
// that a test can interleave two processes' work on one store. "stall"
// writes but stops inside the write, at the stage named, until killed.
QT_TEST_CHILD(cache_peer) {
  if (args.size() != 1) return 90;
  const std::wstring company = qt_test::Widen(args[0]);
  // Its result also says whether the machine key exists, which it need not.
  RegInt_Init(company.c_str(), L"App", L"1.0");
  static int stallAt = 0;
  qt_reg::SetStoreWriteHook([](int stage) {
    if (stage != stallAt) return;
    std::printf("stalled\n");
    for (;;) pause();
  });
  std::string line;
  while (std::getline(std::cin, line)) {
    std::istringstream in(line);
    std::string op, path, arg;
    in >> op >> path >> arg;
    if (op.empty()) continue;
    const std::wstring p = qt_test::Widen(path);
    const HKEY root = op.back() == 'm' ? HKEY_LOCAL_MACHINE : nullptr;
    bool ok = true;
    if (op == "get" || op == "getm") ok = std::printf("%d\n", Registry::GetIntAtt(root, p.c_str(), -1)) > 0;
    else if (op == "statements") ok = std::printf("%llu\n", qt_reg::StoreStatementCount()) > 0;
    else if (op == "set" || op == "setm") ok = Registry::SetIntAtt(root, p.c_str(), std::stoi(arg));
    else if (op == "del") ok = Registry::DeleteAtt(nullptr, p.c_str());
    else if (op == "delkey") ok = Registry::DeleteKey(nullptr, p.c_str());
    else if (op == "init") RegInt_Init(company.c_str(), L"App", L"1.0");
    else if (op == "recheck") qt_reg::SetStoreRecheckInterval(std::stoi(path));
    else if (op == "quit") return 0;
    else if (op == "stall") {
      stallAt = arg == "committed" ? qt_reg::kWriteCommitted : qt_reg::kWriteAnnounced;
      Registry::SetIntAtt(nullptr, p.c_str(), 1000);
      return 1;
    } else return 92;
    if (op.compare(0, 3, "get") != 0 && op != "statements") std::printf("%s\n", ok ? "ok" : "fail");
  }
  return 0;
}

class Peer {
 public:
  explicit Peer(const std::string& company) { started_ = child_.start("cache_peer", {company}); }
  ~Peer() {
    if (started_ && child_.running() && child_.writeLine("quit")) {
      EXPECT_EQ(child_.wait(), 0);
    }
  }
  std::string ask(const std::string& command) { return child_.writeLine(command) ? child_.readLine() : "no child"; }
  unsigned long long statementsFor(const std::string& command) {
    const unsigned long long before = std::stoull(ask("statements"));
    ask(command);
    return std::stoull(ask("statements")) - before;
  }
  void kill() {
    child_.kill();
    child_.wait();
  }

 private:
  qt_test::ChildProcess child_;
  bool started_ = false;
};

class StoreCache : public reg_test::AppKeyTest {
 protected:
  void SetUp() override {
    reg_test::AppKeyTest::SetUp();
    oldRecheck_ = qt_reg::SetStoreRecheckInterval(-1);
  }
  void TearDown() override {
    qt_reg::SetStoreRecheckInterval(oldRecheck_);
    reg_test::AppKeyTest::TearDown();
  }
  int get(const wchar_t* path) { return Registry::GetIntAtt(nullptr, path, -1); }
  std::string company() const { return qt_test::Narrow(company_); }

  int oldRecheck_ = 0;
};

TEST_F(StoreCache, RepeatedReadsOfAnUnchangedStoreRunNoSql) {
  ASSERT_TRUE(Registry::SetIntAtt(nullptr, L"Grid/Width", 42));
  ASSERT_TRUE(Registry::SetIntAtt(nullptr, L"Top", 7));
  const auto readAll = [&] {
    EXPECT_EQ(get(L"Grid/Width"), 42);
    EXPECT_EQ(get(L"grid/WIDTH"), 42);
    EXPECT_EQ(get(L"Top"), 7);
    EXPECT_EQ(get(L"Grid/Missing"), -1);
    wchar_t no[] = L"no";
    EXPECT_STREQ(Registry::GetStringAtt(nullptr, L"Developer/ShowStringIDs", no), L"no");
  };
  EXPECT_GT(StatementsDuring(readAll), 0u) << "a write came first, so SQLite answers";
  EXPECT_EQ(StatementsDuring([&] {
              for (int i = 0; i < 20; ++i) readAll();
            }),
            0u);
  // This process's own writes are changes as well.
  ASSERT_TRUE(Registry::SetIntAtt(nullptr, L"Grid/Width", 43));
  EXPECT_EQ(get(L"Grid/Width"), 43);
  ASSERT_TRUE(Registry::DeleteAtt(nullptr, L"Top"));
  EXPECT_EQ(get(L"Top"), -1);
}

TEST_F(StoreCache, AnotherProcessesChangesAreSeenByTheNextRead) {
  Peer peer(company());
  ASSERT_TRUE(Registry::SetIntAtt(nullptr, L"Shared/A", 1));
  // Both processes hold the value before each change.
  EXPECT_EQ(peer.ask("get Shared/A"), "1");
  EXPECT_EQ(peer.statementsFor("get Shared/A"), 0u);
  EXPECT_EQ(get(L"Shared/A"), 1);
  EXPECT_EQ(StatementsDuring([&] { get(L"Shared/A"); }), 0u);

  EXPECT_EQ(peer.ask("set Shared/A 2"), "ok");
  EXPECT_EQ(get(L"Shared/A"), 2);
  ASSERT_TRUE(Registry::SetIntAtt(nullptr, L"Shared/A", 3));
  EXPECT_EQ(peer.ask("get Shared/A"), "3");
  EXPECT_EQ(peer.ask("del Shared/A"), "ok");
  EXPECT_EQ(get(L"Shared/A"), -1);
  EXPECT_EQ(peer.ask("set Shared/A 4"), "ok");
  EXPECT_EQ(get(L"Shared/A"), 4) << "a kept 'missing' goes as well";

  // A switch in a key that is usually absent, turned on and off elsewhere.
  EXPECT_EQ(get(L"Developer/Switch"), -1);
  EXPECT_EQ(peer.ask("set Developer/Switch 1"), "ok");
  EXPECT_EQ(get(L"Developer/Switch"), 1);
  EXPECT_EQ(peer.ask("delkey Developer/Switch"), "ok");
  EXPECT_EQ(get(L"Developer/Switch"), -1);

  // A read group keeps the state its transaction began with, and nothing it
  // read from that older state is kept for the reads after it.
  ASSERT_TRUE(Registry::SetIntAtt(nullptr, L"Shared/B", 1));
  {
    qt_reg::ReadScope group;
    EXPECT_EQ(get(L"Shared/A"), 4);
    EXPECT_EQ(peer.ask("set Shared/B 2"), "ok");
    EXPECT_EQ(get(L"Shared/B"), 1);
  }
  EXPECT_EQ(get(L"Shared/B"), 2);
}

// A mark checked without the store's lock must fall the moment anything
// changes, from any process, and once a look at the files is due.
TEST_F(StoreCache, AMarkCheckedWithoutTheLockHoldsOnlyWhileNothingChanges) {
  Peer peer(company());
  ASSERT_TRUE(Registry::SetIntAtt(nullptr, L"Shared/A", 1));
  uint64_t counter = 0, epoch = 0;
  qt_reg::UnlockedCheck check;
  const auto mark = [&] { return qt_reg::UserStoreMark(&counter, &epoch, &check); };
  const auto holds = [&] { return qt_reg::UserStoreMarkHolds(check, counter, epoch); };

  ASSERT_TRUE(mark());
  ASSERT_NE(nullptr, check.word);
  EXPECT_TRUE(holds());
  EXPECT_EQ(get(L"Shared/A"), 1);
  EXPECT_TRUE(holds()) << "reading changes nothing";

  EXPECT_EQ(peer.ask("set Shared/A 2"), "ok");
  EXPECT_FALSE(holds()) << "another process wrote";
  ASSERT_TRUE(mark());
  EXPECT_TRUE(holds());
  ASSERT_TRUE(Registry::SetIntAtt(nullptr, L"Shared/A", 3));
  EXPECT_FALSE(holds()) << "this process wrote";

  qt_reg::SetStoreRecheckInterval(5);
  ASSERT_TRUE(mark());
  std::this_thread::sleep_for(std::chrono::milliseconds(30));
  EXPECT_FALSE(holds()) << "a look at the files is due";
  qt_reg::SetStoreRecheckInterval(0);
  ASSERT_TRUE(mark());
  EXPECT_FALSE(holds()) << "looks due on every call leave nothing to check without the lock";
}

TEST_F(StoreCache, AKilledWriterLeavesNoStaleAnswerBehind) {
  ASSERT_TRUE(Registry::SetIntAtt(nullptr, L"Job/State", 1));
  EXPECT_EQ(get(L"Job/State"), 1);
  ASSERT_EQ(StatementsDuring([&] { get(L"Job/State"); }), 0u) << "the value is kept";

  Peer committed(company());
  ASSERT_EQ(committed.ask("stall Job/State committed"), "stalled");
  committed.kill();
  EXPECT_EQ(get(L"Job/State"), 1000);
  EXPECT_EQ(get(L"Job/State"), 1000);
  EXPECT_EQ(StatementsDuring([&] { get(L"Job/State"); }), 0u) << "a reader cleared up after the dead writer";

  // While a write is under way nothing is kept; killed before its commit
  // it changes nothing, and its lock goes with it.
  ASSERT_TRUE(Registry::SetIntAtt(nullptr, L"Job/State", 2));
  Peer announced(company());
  ASSERT_EQ(announced.ask("stall Job/State announced"), "stalled");
  EXPECT_EQ(get(L"Job/State"), 2);
  EXPECT_GT(StatementsDuring([&] { get(L"Job/State"); }), 0u);
  announced.kill();
  EXPECT_EQ(get(L"Job/State"), 2);
  ASSERT_TRUE(Registry::SetIntAtt(nullptr, L"Job/State", 4));
  EXPECT_EQ(get(L"Job/State"), 4);
}

// Each test below runs its peers on stores of their own.
class StoreCacheFolders : public ::testing::Test {
 protected:
  void SetUp() override {
    setenv("QUILTOOL_HKCU_DIR", dir_.file("user").c_str(), 1);
    setenv("QUILTOOL_HKLM_DIR", dir_.file("machine").c_str(), 1);
  }
  void TearDown() override {
    setenv("QUILTOOL_HKCU_DIR", user_.c_str(), 1);
    setenv("QUILTOOL_HKLM_DIR", machine_.c_str(), 1);
    unsetenv("QUILTOOL_STORE_JOURNAL");
  }
  qt_test::TempDir dir_;
  const std::string user_ = getenv("QUILTOOL_HKCU_DIR"), machine_ = getenv("QUILTOOL_HKLM_DIR");
};

TEST_F(StoreCacheFolders, EachRootHasItsOwnCacheAndOnlyWalStoresAreCached) {
  setenv("QUILTOOL_STORE_JOURNAL", "wal", 1);
  {
    Peer peer("Roots");
    // Fresh stores of the same shape: the same key ids in both files.
    ASSERT_EQ(peer.ask("set Same 1"), "ok");
    ASSERT_EQ(peer.ask("setm Software/Roots/App/1.0/Same 2"), "ok");
    EXPECT_EQ(peer.ask("get Same") + peer.ask("getm Software/Roots/App/1.0/Same"), "12");
    EXPECT_EQ(peer.statementsFor("get Same") + peer.statementsFor("getm Software/Roots/App/1.0/Same"), 0u);
    EXPECT_EQ(peer.ask("get Same") + peer.ask("getm Software/Roots/App/1.0/Same"), "12");
  }
  setenv("QUILTOOL_STORE_JOURNAL", "delete", 1);
  Peer rollback("Rollback");
  ASSERT_EQ(rollback.ask("set Same 1"), "ok");
  EXPECT_EQ(rollback.ask("get Same"), "1");
  EXPECT_GT(rollback.statementsFor("get Same"), 0u);
}

bool Sql(const std::string& file, const char* sql) {
  sqlite3* db = nullptr;
  const bool ok = sqlite3_open(file.c_str(), &db) == SQLITE_OK && sqlite3_exec(db, sql, nullptr, nullptr, nullptr) == SQLITE_OK;
  sqlite3_close(db);
  return ok;
}

void Sleep(int ms) { std::this_thread::sleep_for(std::chrono::milliseconds(ms)); }

TEST_F(StoreCacheFolders, ChangesBehindTheLibrarysBackAreSeenAtTheNextLook) {
  const std::string store = dir_.file("user") + "/settings.db";
  Peer reader("Files");
  ASSERT_EQ(reader.ask("recheck 40"), "ok");
  ASSERT_EQ(reader.ask("set K/V 5"), "ok");
  EXPECT_EQ(reader.ask("get K/V"), "5");

  // Another program edits the file itself.
  ASSERT_TRUE(Sql(store, "UPDATE vals SET data=x'07000000' WHERE fold='V'"));
  Sleep(80);
  EXPECT_EQ(reader.ask("get K/V"), "7");

  // The counter file removed and made anew by another process's write;
  // once the reader has looked, it follows the new counter.
  ASSERT_EQ(std::remove((store + "-changes").c_str()), 0);
  EXPECT_EQ(Peer("Files").ask("set K/V 9"), "ok");
  Sleep(80);
  EXPECT_EQ(reader.ask("get K/V"), "9");
  ASSERT_EQ(reader.ask("recheck -1"), "ok");
  EXPECT_EQ(Peer("Files").ask("set K/V 10"), "ok");
  EXPECT_EQ(reader.ask("get K/V"), "10");
  ASSERT_EQ(reader.ask("recheck 40"), "ok");

  // The store replaced by a damaged file (its journals go too, or SQLite
  // would still read their pages): defaults, refused writes, no crash.
  std::ofstream(dir_.file("garbage"), std::ios::binary) << std::string(20000, 'x');
  ASSERT_EQ(std::rename(dir_.file("garbage").c_str(), store.c_str()), 0);
  std::remove((store + "-wal").c_str());
  std::remove((store + "-shm").c_str());
  Sleep(80);
  EXPECT_EQ(reader.ask("get K/V"), "-1");
  EXPECT_EQ(reader.ask("set K/V 1"), "fail");

  // Moved away, and a new store made by another application: keys opened
  // in the former file do not wander into the new one's keys, whose ids
  // are the same numbers.
  ASSERT_EQ(std::remove(store.c_str()), 0);
  Peer other("Other");
  ASSERT_EQ(other.ask("set X/Y 1"), "ok");
  EXPECT_EQ(reader.ask("get K/V"), "-1");
  EXPECT_EQ(reader.ask("set K/V 12"), "fail");
  EXPECT_EQ(other.ask("get K/V"), "-1");
  ASSERT_EQ(reader.ask("init"), "ok");
  ASSERT_EQ(reader.ask("set K/V 11"), "ok");
  EXPECT_EQ(reader.ask("get K/V"), "11");
}

}  // namespace
