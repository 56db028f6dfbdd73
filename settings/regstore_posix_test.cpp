// The Linux store itself: names, bytes, journal modes, and what several
// processes, a crash and a damaged file do to it.
#include <gtest/gtest.h>
#include <sqlite3.h>
#include <stdlib.h>

#include <cstdio>
#include <fstream>
#include <memory>
#include <string>

#include "Registry.h"
#include "core/fs.h"
#include "qt_test.h"
#include "settings/monitors.h"
#include "settings/reg_test_util.h"

namespace {

using reg_test::ReadRaw;
using reg_test::Utf16;
using reg_test::WriteRaw;

bool FileExists(const std::string& path) { return qt::fs::Exists(qt_test::Widen(path)); }

// Sets an environment variable for the children started in its lifetime.
class ScopedEnv {
 public:
  ScopedEnv(const char* name, const std::string& value) : name_(name) {
    const char* old = getenv(name);
    had_ = old != nullptr;
    if (had_) old_ = old;
    setenv(name, value.c_str(), 1);
  }
  ~ScopedEnv() {
    if (had_) setenv(name_, old_.c_str(), 1);
    else unsetenv(name_);
  }

 private:
  const char* name_;
  bool had_ = false;
  std::string old_;
};

std::string SqliteText(const std::string& file, const char* sql) {
  sqlite3* db = nullptr;
  std::string result;
  if (sqlite3_open_v2(file.c_str(), &db, SQLITE_OPEN_READONLY, nullptr) == SQLITE_OK) {
    sqlite3_stmt* s = nullptr;
    if (sqlite3_prepare_v2(db, sql, -1, &s, nullptr) == SQLITE_OK && sqlite3_step(s) == SQLITE_ROW)
      result = reinterpret_cast<const char*>(sqlite3_column_text(s, 0));
    sqlite3_finalize(s);
  }
  sqlite3_close(db);
  return result;
}

class Store : public reg_test::AppKeyTest {};

TEST_F(Store, KeysAndValueNamesIgnoreCaseButKeepIt) {
  HKEY key = nullptr;
  ASSERT_EQ(qt_reg::CreateKey(HKEY_CURRENT_USER, under(L"MixedCase\\Ärger").c_str(), qt_reg::kKeyAllAccess, &key), 0);
  qt_reg::CloseKey(key);
  ASSERT_EQ(qt_reg::CreateKey(HKEY_CURRENT_USER, under(L"MIXEDCASE\\ärger").c_str(), qt_reg::kKeyAllAccess, &key), 0);
  ASSERT_EQ(qt_reg::SetValue(key, L"Name", REG_DWORD, reinterpret_cast<const BYTE*>("\1\0\0\0"), 4), 0);
  ASSERT_EQ(qt_reg::SetValue(key, L"NAME", REG_DWORD, reinterpret_cast<const BYTE*>("\2\0\0\0"), 4), 0);
  qt_reg::CloseKey(key);

  ASSERT_EQ(qt_reg::OpenKey(HKEY_CURRENT_USER, under(L"mixedcase").c_str(), qt_reg::kKeyRead, &key), 0);
  std::wstring name;
  EXPECT_EQ(qt_reg::EnumKey(key, 0, &name), 0);
  EXPECT_EQ(name, L"Ärger");
  EXPECT_EQ(qt_reg::EnumKey(key, 1, &name), qt_reg::kNoMoreItems);
  qt_reg::CloseKey(key);
  const auto values = Registry::EnumerateValues(nullptr, L"mixedCASE/ÄRGER/");
  ASSERT_EQ(values.size(), 1u);
  EXPECT_EQ(values[0].first, L"Name");
  EXPECT_EQ(Registry::GetIntAtt(nullptr, L"MixedCase/Ärger/name", 0), 2);
}

TEST_F(Store, ValuesKeepTheirTypeAndBytes) {
  const std::vector<BYTE> multi = {'a', 0, 0, 0, 'b', 0, 0, 0, 0, 0};
  const std::vector<BYTE> qword = {1, 2, 3, 4, 5, 6, 7, 8};
  ASSERT_EQ(WriteRaw(HKEY_CURRENT_USER, under(L"Types"), L"multi", REG_MULTI_SZ, multi), 0);
  ASSERT_EQ(WriteRaw(HKEY_CURRENT_USER, under(L"Types"), L"qword", REG_QWORD, qword), 0);
  ASSERT_EQ(WriteRaw(HKEY_CURRENT_USER, under(L"Types"), L"", REG_EXPAND_SZ, Utf16(L"%HOME%/x", true)), 0);
  ASSERT_EQ(WriteRaw(HKEY_CURRENT_USER, under(L"Types"), L"empty", REG_BINARY, {}), 0);
  reg_test::Raw raw = ReadRaw(HKEY_CURRENT_USER, under(L"Types"), L"multi");
  EXPECT_EQ(raw.type, static_cast<DWORD>(REG_MULTI_SZ));
  EXPECT_EQ(raw.data, multi);
  EXPECT_EQ(ReadRaw(HKEY_CURRENT_USER, under(L"Types"), L"qword").data, qword);
  EXPECT_EQ(ReadRaw(HKEY_CURRENT_USER, under(L"Types"), L"").type, static_cast<DWORD>(REG_EXPAND_SZ));
  raw = ReadRaw(HKEY_CURRENT_USER, under(L"Types"), L"empty");
  EXPECT_EQ(raw.rc, 0);
  EXPECT_TRUE(raw.data.empty());

  HKEY key = nullptr;
  ASSERT_EQ(qt_reg::OpenKey(HKEY_CURRENT_USER, under(L"Types").c_str(), qt_reg::kKeyQueryValue, &key), 0);
  BYTE small[4];
  DWORD size = sizeof small;
  EXPECT_EQ(qt_reg::QueryValue(key, L"qword", nullptr, small, &size), qt_reg::kMoreData);
  EXPECT_EQ(size, 8u);
  // The owned reader expands REG_EXPAND_SZ as Windows does.
  wchar_t text[512];
  size = sizeof text / 2;
  ASSERT_EQ(qt_reg::GetSzValue(key, L"", text, &size), 0);
  EXPECT_EQ(std::wstring(text), qt_test::Widen(getenv("HOME")) + L"/x");
  EXPECT_EQ(qt_reg::SetValue(key, L"denied", REG_DWORD, qword.data(), 4), qt_reg::kAccessDenied);
  qt_reg::CloseKey(key);
  EXPECT_EQ(qt_reg::CloseKey(key), qt_reg::kInvalidHandle);
}

TEST_F(Store, HandlesOfDeletedKeysFailCleanly) {
  HKEY key = nullptr;
  ASSERT_EQ(qt_reg::CreateKey(HKEY_CURRENT_USER, under(L"Doomed").c_str(), qt_reg::kKeyAllAccess, &key), 0);
  ASSERT_EQ(qt_reg::DeleteTree(HKEY_CURRENT_USER, under(L"Doomed").c_str()), 0);
  const BYTE one[4] = {1, 0, 0, 0};
  EXPECT_EQ(qt_reg::SetValue(key, L"late", REG_DWORD, one, 4), qt_reg::kKeyDeleted);
  HKEY child = nullptr;
  EXPECT_EQ(qt_reg::CreateKey(key, L"child", qt_reg::kKeyAllAccess, &child), qt_reg::kKeyDeleted);
  qt_reg::CloseKey(key);
  EXPECT_EQ(qt_reg::OpenKey(HKEY_CURRENT_USER, L"\\Software", qt_reg::kKeyRead, &key), qt_reg::kBadPathname);
  EXPECT_EQ(qt_reg::DeleteKey(HKEY_CURRENT_USER, L""), qt_reg::kAccessDenied) << "a root stays";
}

TEST_F(Store, LivesUnderTheConfiguredFoldersWithTheirJournals) {
  const std::string user = qt_reg::StoreFile(HKEY_CURRENT_USER), machine = qt_reg::StoreFile(HKEY_LOCAL_MACHINE);
  EXPECT_EQ(user, std::string(getenv("QUILTOOL_HKCU_DIR")) + "/settings.db");
  EXPECT_EQ(machine, std::string(getenv("QUILTOOL_HKLM_DIR")) + "/settings.db");
  ASSERT_TRUE(Registry::SetIntAtt(nullptr, L"J/x", 1));
  ASSERT_EQ(WriteRaw(HKEY_LOCAL_MACHINE, under(L"J"), L"x", REG_DWORD, {1, 0, 0, 0}), 0);
  EXPECT_EQ(SqliteText(user, "PRAGMA journal_mode"), "wal");
  EXPECT_EQ(SqliteText(machine, "PRAGMA journal_mode"), "delete") << "readable without write access to the folder";
}

// Reports on stdout what a process with its own store folders sees.
QT_TEST_CHILD(store_probe) {
  const bool write = !args.empty() && args[0] == "write";
  RegInt_Init(L"Probe", L"App", L"1");
  std::printf("read=%d\n", Registry::GetIntAtt(nullptr, L"Key/Value", 7));
  wchar_t fallback[] = L"dflt";
  std::printf("text=%ls\n", Registry::GetStringAtt(nullptr, L"Key/Text", fallback));
  std::printf("keys=%d\n", static_cast<int>(Registry::EnumerateSubKeys(nullptr, L"").size()));
  if (write) std::printf("write=%d\n", Registry::SetIntAtt(nullptr, L"Key/Value", 5) ? 1 : 0);
  std::printf("journal=%s\n", SqliteText(qt_reg::StoreFile(HKEY_CURRENT_USER), "PRAGMA journal_mode").c_str());
  return 0;
}

std::string ProbeOutput(const std::string& userDir, bool write) {
  ScopedEnv env("QUILTOOL_HKCU_DIR", userDir);
  qt_test::ChildProcess child;
  if (!child.start("store_probe", {write ? "write" : "read"})) return "not started";
  std::string all;
  for (std::string line = child.readLine(); !line.empty(); line = child.readLine()) all += line + "\n";
  all += "exit=" + std::to_string(child.wait());
  return all;
}

TEST(StoreFile, ReadersLeaveNoTraceAndTheJournalCanBeChosen) {
  qt_test::TempDir dir;
  const std::string userDir = dir.file("fresh");
  // RegInt_Init creates the user key, so the store exists afterwards.
  EXPECT_NE(ProbeOutput(userDir, false).find("read=7\ntext=dflt\nkeys=0\n"), std::string::npos);
  EXPECT_TRUE(FileExists(userDir + "/settings.db"));

  ScopedEnv journal("QUILTOOL_STORE_JOURNAL", "delete");
  EXPECT_NE(ProbeOutput(dir.file("rollback"), true).find("write=1\njournal=delete\n"), std::string::npos);
}

TEST(StoreFile, DamagedFilesGiveDefaultsAndRefuseWrites) {
  qt_test::TempDir dir;
  {
    std::ofstream garbage(dir.file("settings.db"), std::ios::binary);
    for (int i = 0; i < 2000; ++i) garbage << "not a database " << i;
  }
  const std::string before = qt_test::ReadFileBytes(dir.file("settings.db"));
  EXPECT_EQ(ProbeOutput(dir.path(), true), "read=7\ntext=dflt\nkeys=0\nwrite=0\njournal=\nexit=0");
  EXPECT_EQ(qt_test::ReadFileBytes(dir.file("settings.db")), before) << "a damaged file is left as it was";

  // Another program's SQLite file is not taken over either.
  qt_test::TempDir foreign;
  sqlite3* db = nullptr;
  ASSERT_EQ(sqlite3_open(foreign.file("settings.db").c_str(), &db), SQLITE_OK);
  sqlite3_exec(db, "CREATE TABLE keys(x); INSERT INTO keys VALUES(1);", nullptr, nullptr, nullptr);
  sqlite3_close(db);
  EXPECT_NE(ProbeOutput(foreign.path(), true).find("read=7\ntext=dflt\nkeys=0\nwrite=0\n"), std::string::npos);
  EXPECT_EQ(SqliteText(foreign.file("settings.db"), "SELECT count(*) FROM sqlite_master"), "1");

  // A store whose pages were overwritten after it was written.
  qt_test::TempDir torn;
  EXPECT_NE(ProbeOutput(torn.path(), true).find("write=1"), std::string::npos);
  EXPECT_NE(ProbeOutput(torn.path(), false).find("read=5"), std::string::npos);
  {
    std::fstream f(torn.file("settings.db"), std::ios::in | std::ios::out | std::ios::binary);
    f.seekp(100);
    for (int i = 0; i < 8000; ++i) f.put(static_cast<char>(0xA5));
  }
  std::remove(torn.file("settings.db-wal").c_str());
  std::remove(torn.file("settings.db-shm").c_str());
  const std::string output = ProbeOutput(torn.path(), true);
  EXPECT_NE(output.find("exit=0"), std::string::npos) << output;
  EXPECT_EQ(output.find("read=5"), std::string::npos) << "no stale or invented value: " << output;
}

// Writes count values under its own key, one acknowledged write after
// another, and says so for each.
QT_TEST_CHILD(store_writer) {
  if (args.size() != 3) return 90;
  RegInt_Init(qt_test::Widen(args[0]).c_str(), L"App", L"1.0");
  const std::wstring prefix = L"Writer" + qt_test::Widen(args[1]) + L"/V";
  const int count = std::stoi(args[2]);
  for (int i = 0; count < 0 || i < count; ++i) {
    if (!Registry::SetIntAtt(nullptr, (prefix + std::to_wstring(i)).c_str(), i * 3 + 1)) return 1;
    std::printf("ack %d\n", i);
  }
  return 0;
}

TEST_F(Store, ConcurrentWritersLoseNothing) {
  const int kWriters = 4, kValues = 150;
  std::vector<std::unique_ptr<qt_test::ChildProcess>> children;
  for (int w = 0; w < kWriters; ++w) {
    children.emplace_back(new qt_test::ChildProcess());
    ASSERT_TRUE(children.back()->start("store_writer", {qt_test::Narrow(company_), std::to_string(w), std::to_string(kValues)}));
  }
  // Drain the pipes while the children run so that none blocks on them.
  for (auto& child : children) {
    while (!child->readLine().empty()) {
    }
    EXPECT_EQ(child->wait(), 0);
  }
  int missing = 0;
  for (int w = 0; w < kWriters; ++w) {
    for (int i = 0; i < kValues; ++i) {
      const std::wstring path = L"Writer" + std::to_wstring(w) + L"/V" + std::to_wstring(i);
      if (Registry::GetIntAtt(nullptr, path.c_str(), -1) != i * 3 + 1) ++missing;
    }
  }
  EXPECT_EQ(missing, 0);
}

TEST_F(Store, AWriterKilledMidWayKeepsWhatItAcknowledged) {
  qt_test::ChildProcess child;
  ASSERT_TRUE(child.start("store_writer", {qt_test::Narrow(company_), "K", "-1"}));
  int acknowledged = -1;
  while (acknowledged < 60) {
    const std::string line = child.readLine();
    ASSERT_EQ(line.rfind("ack ", 0), 0u) << "writer stopped: " << line;
    acknowledged = std::stoi(line.substr(4));
  }
  child.kill();
  child.wait();
  for (int i = 0; i <= acknowledged; ++i) {
    const std::wstring path = L"WriterK/V" + std::to_wstring(i);
    ASSERT_EQ(Registry::GetIntAtt(nullptr, path.c_str(), -1), i * 3 + 1) << "value " << i;
  }
  EXPECT_EQ(SqliteText(qt_reg::StoreFile(HKEY_CURRENT_USER), "PRAGMA integrity_check"), "ok");
  EXPECT_TRUE(Registry::SetIntAtt(nullptr, L"WriterK/After", 1)) << "the store still takes writes";
}

TEST_F(Store, WindowPositionsCheckAScreenSizedByTheSettings) {
  // No window exists here, so only the checks can succeed.
  ASSERT_TRUE(Registry::SetStringAtt(nullptr, L"Dlg/Position", L"100 100 300 200"));
  ASSERT_TRUE(Registry::SetStringAtt(nullptr, L"Dlg/Show", L"1"));
  HWND someWindow = reinterpret_cast<HWND>(static_cast<ULONG_PTR>(0x10010));
  EXPECT_TRUE(Reg_GetWindowPos(nullptr, L"Dlg", nullptr, nullptr, nullptr, true));
  EXPECT_FALSE(Reg_GetWindowPos(nullptr, L"Dlg", someWindow, nullptr, nullptr, true));
  EXPECT_FALSE(Reg_SetWindowPos(nullptr, L"Other", someWindow));
  EXPECT_FALSE(Reg_SetWindowPosOnly(nullptr, L"Other", someWindow, true));
  EXPECT_EQ(ReadRaw(HKEY_CURRENT_USER, under(L"Other"), L"Position").rc, qt_reg::kFileNotFound);

  const bool wasForced = qt::monitors::ForceSubstitutes(true);
  EXPECT_EQ(qt::monitors::SystemMetrics(qt::monitors::kCxScreen), 1920);
  EXPECT_EQ(qt::monitors::SystemMetrics(qt::monitors::kCyScreen), 1080);
  ASSERT_EQ(WriteRaw(HKEY_LOCAL_MACHINE, L"Software\\QuilTool\\Display", L"ScreenWidth", REG_DWORD, {0x20, 3, 0, 0}), 0);
  ASSERT_EQ(WriteRaw(HKEY_CURRENT_USER, L"Software\\QuilTool\\Display", L"ScreenHeight", REG_DWORD, {0x58, 2, 0, 0}), 0);
  EXPECT_EQ(qt::monitors::SystemMetrics(qt::monitors::kCxScreen), 800);
  EXPECT_EQ(qt::monitors::SystemMetrics(qt::monitors::kCyScreen), 600);
  const RECT beyond = {850, 10, 900, 20};
  EXPECT_EQ(qt::monitors::RectMonitor(&beyond, qt::monitors::kDefaultToNull), nullptr);
  qt_reg::DeleteTree(HKEY_CURRENT_USER, L"Software\\QuilTool");
  qt_reg::DeleteTree(HKEY_LOCAL_MACHINE, L"Software\\QuilTool");
  qt::monitors::ForceSubstitutes(wasForced);
}

}  // namespace

// Initialises while the store folder cannot be made (a file stands in its
// way), then clears the way and writes. Args: the blocking file.
QT_TEST_CHILD(store_retry) {
  RegInt_Init(L"Retry", L"App", L"1");
  std::remove(args.at(0).c_str());
  mkdir(args.at(0).c_str(), 0700);
  std::printf("write=%d\n", Registry::SetIntAtt(nullptr, L"Key/Value", 5) ? 1 : 0);
  std::printf("read=%d\n", Registry::GetIntAtt(nullptr, L"Key/Value", 7));
  return 0;
}

TEST(StoreFile, AnApplicationKeyThatCouldNotBeOpenedIsOpenedOnNextUse) {
  qt_test::TempDir dir;
  const std::string blocker = dir.file("blocked");
  { std::ofstream(blocker) << "in the way"; }
  ScopedEnv env("QUILTOOL_HKCU_DIR", blocker + "/store");
  qt_test::ChildProcess child;
  ASSERT_TRUE(child.start("store_retry", {blocker}));
  std::string all;
  for (std::string line = child.readLine(); !line.empty(); line = child.readLine()) all += line + "\n";
  EXPECT_EQ(0, child.wait());
  EXPECT_EQ("write=1\nread=5\n", all);
}
