#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "failure_points.h"
#include "files/files_test_support.h"
#include "files/lock_content.h"
#include "gwflock.h"
#include "qn_utf.h"
#include "qt_test.h"

namespace fs = std::filesystem;

namespace {

std::string Utf16le(const std::wstring& text) {
  std::string bytes;
  for (wchar_t c : text) {
    unsigned long v = static_cast<unsigned long>(c);
    if (v > 0xFFFF) {  // only where wchar_t is UTF-32
      v -= 0x10000;
      const unsigned units[2] = {0xD800 | static_cast<unsigned>(v >> 10), 0xDC00 | static_cast<unsigned>(v & 0x3FF)};
      for (unsigned u : units) {
        bytes += static_cast<char>(u & 0xFF);
        bytes += static_cast<char>(u >> 8);
      }
      continue;
    }
    bytes += static_cast<char>(v & 0xFF);
    bytes += static_cast<char>(v >> 8);
  }
  return bytes;
}

// What the lock file of `user` must hold, spelled out independently.
std::string Content(const std::wstring& user) {
  std::string bytes = Utf16le(user);
  while (bytes.size() < 200) bytes += std::string("*\0", 2);
  return bytes;
}

void WriteBytes(const std::string& path, const std::string& bytes) {
  FILE* f = std::fopen(path.c_str(), "wb");
  ASSERT_NE(nullptr, f);
  std::fwrite(bytes.data(), 1, bytes.size(), f);
  std::fclose(f);
}

struct Record {
  Record() { gwflock_init(&rec); }
  ~Record() { gwflock_unlock(&rec); }
  gwflocktype rec;
};

}  // namespace

// Holds a plain lock until a line arrives on stdin. Args: lock file, user.
QT_TEST_CHILD(hold_plain_lock) {
  Record r;
  const int result = gwflock_lockw(nullptr, &r.rec, qt_test::Widen(args.at(0)).c_str(),
                                   qt_test::Widen(args.at(1)).c_str(), nullptr, 0);
  std::printf("locked %d\n", result);
  std::fflush(stdout);
  char line[16];
  if (!std::fgets(line, sizeof line, stdin)) return 1;
  return 0;
}

// Takes and gives up the lock again and again, checking through a witness
// folder that nobody else holds it at the same time. Args: lock file, witness
// folder, rounds, user. Prints how often it won; exits 3 on a double holder,
// 4 on a result other than 0 or -2.
QT_TEST_CHILD(contend_plain_lock) {
  const std::wstring file = qt_test::Widen(args.at(0));
  const fs::path witness = fs::u8path(args.at(1));
  const int rounds = std::stoi(args.at(2));
  const std::wstring user = qt_test::Widen(args.at(3));
  int wins = 0;
  for (int i = 0; i < rounds; ++i) {
    Record r;
    wchar_t holder[GWFLOCK_NAME_SIZE];
    const int result = gwflock_lockw(nullptr, &r.rec, file.c_str(), user.c_str(), holder, 0);
    if (result == -2) continue;
    if (result != 0) return 4;
    std::error_code ec;
    if (!fs::create_directory(witness, ec)) return 3;
    ++wins;
    fs::remove(witness, ec);
  }
  std::printf("%d\n", wins);
  return 0;
}

TEST(PlainLock, WritesTheNameAndReleasesCompletely) {
  qt_test::TempDir dir;
  const std::string path = dir.file("plant.lkh");
  Record r;
  EXPECT_EQ(INVALID_HANDLE_VALUE, r.rec.handle);
  gwflock_unlock(&r.rec);  // nothing held: nothing happens
  EXPECT_EQ(L"", std::wstring(r.rec.lockFile));

  wchar_t holder[GWFLOCK_NAME_SIZE] = L"stale";
  ASSERT_EQ(0, gwflock_lockw(nullptr, &r.rec, qt_test::Widen(path).c_str(), L"jdoe", holder, 1));
  EXPECT_EQ(L"", std::wstring(holder));
  EXPECT_NE(INVALID_HANDLE_VALUE, r.rec.handle);
  EXPECT_TRUE(fs::equivalent(fs::u8path(path), fs::path(r.rec.lockFile)));
  EXPECT_EQ(Content(L"jdoe"), qt_test::ReadFileBytes(path));

  // Locking another file with the same record gives up the first one.
  const std::string other = dir.file("other.lck");
  ASSERT_EQ(0, gwflock_lockw(nullptr, &r.rec, qt_test::Widen(other).c_str(), L"jdoe", nullptr, 1));
  EXPECT_FALSE(fs::exists(fs::u8path(path)));

  gwflock_unlock(&r.rec);
  EXPECT_FALSE(fs::exists(fs::u8path(other)));
  EXPECT_EQ(INVALID_HANDLE_VALUE, r.rec.handle);
  EXPECT_EQ(L"", std::wstring(r.rec.lockFile));
}

TEST(PlainLock, ContentIsTheSameUtf16OnEveryTarget) {
  qt_test::TempDir dir;
  const std::string path = dir.file("a.lck");
  // U+1F600 after an accented letter: a surrogate pair in the file.
  const std::wstring smiling = qt_test::Widen("J\xC3\xA9r\xC3\xB4me \xF0\x9F\x98\x80");
  const std::wstring hundred(100, L'x'), longer(130, L'y');
  const std::wstring pairAtTheEdge = std::wstring(99, L'z') + qt_test::Widen("\xF0\x9F\x98\x80");
  struct Case {
    std::wstring user;
    std::string expected;
  } cases[] = {
      {smiling, Content(smiling)},
      {hundred, Utf16le(hundred)},
      {longer, Utf16le(std::wstring(100, L'y'))},
      // A pair that would straddle the 100th unit is left out whole.
      {pairAtTheEdge, Utf16le(std::wstring(99, L'z')) + std::string("*\0", 2)},
      {L"", Content(L"")},
  };
  for (const Case& c : cases) {
    Record r;
    ASSERT_EQ(0, gwflock_lockw(nullptr, &r.rec, qt_test::Widen(path).c_str(), c.user.c_str(), nullptr, 0));
    EXPECT_EQ(c.expected, qt_test::ReadFileBytes(path)) << qt_test::Narrow(c.user);
  }
}

TEST(PlainLock, LeftoverFileOfAnotherUserIsTakenOverAndRewritten) {
  qt_test::TempDir dir;
  const std::string path = dir.file("plant.lkh");
  WriteBytes(path, Content(L"Other User"));
  files_test::RecordingPresenter boxes;
  Record r;
  wchar_t holder[GWFLOCK_NAME_SIZE];
  EXPECT_EQ(0, gwflock_lockw(nullptr, &r.rec, qt_test::Widen(path).c_str(), L"me", holder, 1));
  EXPECT_EQ(Content(L"me"), qt_test::ReadFileBytes(path));
  EXPECT_TRUE(boxes.shown.empty());
}

TEST(PlainLock, HolderInAnotherProcessIsNamed) {
  qt_test::TempDir dir;
  const std::string path = dir.file("plant.lkh");
  qt_test::ChildProcess holder;
  ASSERT_EQ(0, files_test::StartHolder(holder, "hold_plain_lock", {path, "Holder Name"}));

  files_test::RecordingPresenter boxes;
  Record r;
  wchar_t by[GWFLOCK_NAME_SIZE];
  EXPECT_EQ(-2, gwflock_lockw(nullptr, &r.rec, qt_test::Widen(path).c_str(), L"me", by, 0));
  EXPECT_EQ(L"Holder Name", std::wstring(by));
  EXPECT_TRUE(boxes.shown.empty());
  EXPECT_EQ(INVALID_HANDLE_VALUE, r.rec.handle);

  EXPECT_EQ(-2, gwflock_lockw(nullptr, &r.rec, qt_test::Widen(path).c_str(), L"me", nullptr, 1));
  ASSERT_EQ(1u, boxes.shown.size());
  EXPECT_TRUE(boxes.shown[0].wide);
  EXPECT_EQ(L"File is in use by\r\nHolder Name", boxes.shown[0].text);
  EXPECT_EQ(L"", boxes.shown[0].caption);
  EXPECT_EQ(static_cast<unsigned>(MB_TASKMODAL), boxes.shown[0].style);

  char byA[GWFLOCK_NAME_SIZE];
  EXPECT_EQ(-2, gwflock_lock(nullptr, &r.rec, path.c_str(), "me", byA, 0));
  EXPECT_STREQ("Holder Name", byA);

  // The holder's content is untouched by the losers.
  EXPECT_EQ(Content(L"Holder Name"), qt_test::ReadFileBytes(path));
  holder.writeLine("release");
  EXPECT_EQ(0, holder.wait());
  EXPECT_FALSE(fs::exists(fs::u8path(path)));
  EXPECT_EQ(0, gwflock_lock(nullptr, &r.rec, path.c_str(), "me", byA, 0));
}

TEST(PlainLock, HolderWithoutNameOrWithAFullLengthName) {
  qt_test::TempDir dir;
  const std::string anonymous = dir.file("anon.lck"), full = dir.file("full.lck");
  const std::string hundred(100, 'n');
  qt_test::ChildProcess first, second;
  ASSERT_EQ(0, files_test::StartHolder(first, "hold_plain_lock", {anonymous, ""}));
  ASSERT_EQ(0, files_test::StartHolder(second, "hold_plain_lock", {full, hundred}));

  files_test::RecordingPresenter boxes;
  Record r;
  wchar_t by[GWFLOCK_NAME_SIZE] = L"x";
  EXPECT_EQ(-2, gwflock_lockw(nullptr, &r.rec, qt_test::Widen(anonymous).c_str(), L"me", by, 1));
  EXPECT_EQ(L"", std::wstring(by));
  ASSERT_EQ(1u, boxes.shown.size());
  EXPECT_FALSE(boxes.shown[0].wide);
  EXPECT_EQ("File is currently in use", boxes.shown[0].textA);

  // Only 196 bytes are read back: the name loses its last two characters.
  EXPECT_EQ(-2, gwflock_lockw(nullptr, &r.rec, qt_test::Widen(full).c_str(), L"me", by, 0));
  EXPECT_EQ(std::wstring(98, L'n'), std::wstring(by));
}

TEST(PlainLock, NameCutInsideAPairByTheReaderStillNamesTheHolder) {
  // 1 + 49 characters beyond the first plane fill 99 units; a reader takes
  // 98 of them, which ends between the halves of the last pair.
  const std::wstring face = qn_utf16le_to_wide("\x3D\xD8\x00\xDE", 4);
  std::wstring name = L"a";
  for (int i = 0; i < 49; ++i) name += face;
  const std::string content = qt::lock_file::LockContent(name.c_str());
  std::wstring back;
  ASSERT_TRUE(qt::lock_file::HolderName(content.data(), qt::lock_file::kHolderReadBytes, &back));
  EXPECT_EQ(name.substr(0, name.size() - face.size()), back);
  // A short read that ends inside a pair is not a cut: those bytes are
  // nobody's name.
  EXPECT_FALSE(qt::lock_file::HolderName(content.data(), 8, &back));
}

TEST(PlainLock, KilledHolderIsTakenOverAtOnce) {
  qt_test::TempDir dir;
  const std::string path = dir.file("plant.lkh");
  qt_test::ChildProcess holder;
  ASSERT_EQ(0, files_test::StartHolder(holder, "hold_plain_lock", {path, "Crashing"}));
  Record r;
  ASSERT_EQ(-2, gwflock_lockw(nullptr, &r.rec, qt_test::Widen(path).c_str(), L"me", nullptr, 0));
  holder.kill();
  EXPECT_TRUE(fs::exists(fs::u8path(path)));  // left behind, as a crash leaves it
  EXPECT_EQ(0, gwflock_lockw(nullptr, &r.rec, qt_test::Widen(path).c_str(), L"me", nullptr, 0));
  EXPECT_EQ(Content(L"me"), qt_test::ReadFileBytes(path));
}

TEST(PlainLock, SecondLockInTheSameProcessIsRefused) {
  qt_test::TempDir dir;
  const std::wstring path = qt_test::Widen(dir.file("plant.lkh"));
  Record first, second;
  ASSERT_EQ(0, gwflock_lockw(nullptr, &first.rec, path.c_str(), L"first", nullptr, 0));
  wchar_t by[GWFLOCK_NAME_SIZE];
  EXPECT_EQ(-2, gwflock_lockw(nullptr, &second.rec, path.c_str(), L"second", by, 0));
  EXPECT_EQ(L"first", std::wstring(by));
  gwflock_unlock(&first.rec);
  EXPECT_EQ(0, gwflock_lockw(nullptr, &second.rec, path.c_str(), L"second", nullptr, 0));
}

TEST(PlainLock, UncreatableAndUnreadableLockFiles) {
  qt_test::TempDir dir;
  files_test::RecordingPresenter boxes;
  Record r;
  EXPECT_EQ(-1, gwflock_lockw(nullptr, &r.rec, qt_test::Widen(dir.file("no/such/dir/x.lck")).c_str(), L"me", nullptr, 1));
  EXPECT_EQ(-1, gwflock_lockw(nullptr, nullptr, L"x.lck", L"me", nullptr, 0));
  EXPECT_EQ(-1, gwflock_lockw(nullptr, &r.rec, nullptr, L"me", nullptr, 0));

  // A folder where the lock file should be can be neither held nor read.
  const std::string folder = dir.file("plant.lkh");
  fs::create_directory(fs::u8path(folder));
  wchar_t by[GWFLOCK_NAME_SIZE] = L"x";
  EXPECT_EQ(-3, gwflock_lockw(nullptr, &r.rec, qt_test::Widen(folder).c_str(), L"me", by, 1));
  EXPECT_EQ(L"", std::wstring(by));
  EXPECT_EQ(INVALID_HANDLE_VALUE, r.rec.handle);

  ASSERT_EQ(2u, boxes.shown.size());
  EXPECT_EQ("You have not permission\r\nto the specific directory (?)", boxes.shown[0].textA);
  EXPECT_EQ("I/O - error", boxes.shown[1].textA);
  EXPECT_TRUE(fs::is_directory(fs::u8path(folder)));
}

TEST(PlainLock, OnlyOneHolderAtAnyMomentAcrossProcesses) {
  qt_test::TempDir dir;
  const std::string path = dir.file("busy.lck"), witness = dir.file("witness");
  const int kChildren = 3;
  qt_test::ChildProcess children[kChildren];
  for (int i = 0; i < kChildren; ++i) {
    ASSERT_TRUE(children[i].start("contend_plain_lock", {path, witness, "150", "user" + std::to_string(i)}));
  }
  int wins = 0;
  for (auto& child : children) {
    const std::string line = child.readLine(120000);
    EXPECT_EQ(0, child.wait(120000)) << "3: two holders at once, 4: unexpected result";
    if (!line.empty()) wins += std::stoi(line);
  }
  EXPECT_GT(wins, 0);
  EXPECT_FALSE(fs::exists(fs::u8path(path)));
}

// Out of memory at each allocation in turn: the lock is either taken whole
// or not at all (-1), and a failed attempt leaves nothing held or behind.
TEST(PlainLockOutOfMemory, TakenWholeOrNotAtAll) {
  qt_test::TempDir dir;
  const std::string path = dir.file("plant.lkh");
  const std::wstring wide = qt_test::Widen(path);
  int result = 0;
  Record r;
  qt_test::AtEveryFailurePoint(
      [&] { result = gwflock_lockw(nullptr, &r.rec, wide.c_str(), L"jdoe", nullptr, 0); },
      [&](bool refused) {
        if (!refused) {
          EXPECT_EQ(0, result);
        }
        if (result == 0) {
          EXPECT_EQ(Content(L"jdoe"), qt_test::ReadFileBytes(path));
          gwflock_unlock(&r.rec);
        } else {
          EXPECT_EQ(-1, result);
          EXPECT_EQ(INVALID_HANDLE_VALUE, r.rec.handle);
        }
        EXPECT_FALSE(fs::exists(fs::u8path(path)));
      });
}
