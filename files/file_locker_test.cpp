#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "FileLocker.h"
#include "failure_points.h"
#include "files/files_test_support.h"
#include "files/sharing_service.h"
#include "qt_test.h"

namespace fs = std::filesystem;

namespace {

std::wstring MakeFile(const qt_test::TempDir& dir, const std::string& name) {
  const std::string path = dir.file(name);
  FILE* f = std::fopen(path.c_str(), "wb");
  if (f) std::fclose(f);
  return qt_test::Widen(path);
}

bool Exists(const std::wstring& path) { return fs::exists(fs::path(path)); }

std::wstring LockOf(const std::wstring& file) { return FileSharingServiceManager::LockFileName(file.c_str()).str(); }

}  // namespace

// Locks a file with FileLocker until a line arrives. Args: file.
QT_TEST_CHILD(hold_file_locker) {
  FileLocker locker(L"", ustr(qt_test::Widen(args.at(0))));
  std::printf("locked %d\n", locker.IsLocked() ? 0 : 1);
  std::fflush(stdout);
  char line[16];
  return std::fgets(line, sizeof line, stdin) ? 0 : 1;
}

TEST(LockFileName, ReplacesKnownExtensionsAndAppendsTildeToOthers) {
  EXPECT_EQ(L"plant.lck", FileSharingServiceManager::LockFileName(L"plant.qep"));
  EXPECT_EQ(L"PLANT.lkh", FileSharingServiceManager::LockFileName(L"PLANT.EPJ"));
  EXPECT_EQ(L"dir/s.lck", FileSharingServiceManager::LockFileName(L"dir/s.QsD"));
  EXPECT_EQ(L"r.v2.lrd", FileSharingServiceManager::LockFileName(L"r.v2.qrd"));
  EXPECT_EQ(L"notes.txt~", FileSharingServiceManager::LockFileName(L"notes.txt"));
  EXPECT_EQ(L"plant.epjx~", FileSharingServiceManager::LockFileName(L"plant.epjx"));
  EXPECT_EQ(L"Makefile~", FileSharingServiceManager::LockFileName(L"Makefile"));
  // A dot in a folder name is no extension.
  EXPECT_EQ(L"v1.epj/plant~", FileSharingServiceManager::LockFileName(L"v1.epj/plant"));
}

TEST(FileLocker, LocksBesideTheFileAndLeavesNestedLocksToTheirOwner) {
  qt_test::TempDir dir;
  const std::wstring file = MakeFile(dir, "plant.epj");
  const std::wstring lock = LockOf(file);
  files_test::RecordingPresenter boxes;
  {
    FileLocker outer(L"The file is locked.", file);
    ASSERT_TRUE(outer.IsLocked());
    EXPECT_FALSE(outer.IsAlreadyOwned());
    EXPECT_TRUE(Exists(lock));
    EXPECT_TRUE(fs::equivalent(fs::path(file), fs::path(outer.GetLockedFile().str())));
    EXPECT_EQ(L"File system", outer.GetServiceName());
    EXPECT_EQ(L"plant.epj", outer.GetRelativeFilePathName(file.c_str()));
    EXPECT_TRUE(outer.IsValidFilePathName(file.c_str()));

    ustr owner;
    EXPECT_EQ(FileSharingServiceManager::LockStateLockedByMe, outer.GetFileLockState(file.c_str(), &owner));
    EXPECT_FALSE(owner.empty());
    EXPECT_EQ(FileSharingServiceManager::GetFileOwner(lock.c_str()), owner);
    EXPECT_EQ(L"Locked", outer.GetFileLockStatusText(file.c_str()));
    {
      FileLocker inner(L"The file is locked.", file);
      EXPECT_TRUE(inner.IsLocked());
      EXPECT_TRUE(inner.IsAlreadyOwned());
      EXPECT_TRUE(inner.GetLockedFile().empty());
    }
    EXPECT_TRUE(Exists(lock));
    EXPECT_TRUE(outer.Unlock());
    EXPECT_FALSE(outer.IsLocked());
    EXPECT_FALSE(Exists(lock));
    EXPECT_TRUE(outer.Unlock());  // nothing held: nothing to do
    EXPECT_TRUE(outer.Lock(file));
  }
  EXPECT_FALSE(Exists(lock));
  EXPECT_TRUE(boxes.shown.empty());
}

TEST(FileLocker, LockHeldByAnotherProcessNamesItsOwner) {
  qt_test::TempDir dir;
  const std::wstring file = MakeFile(dir, "plant.qep");
  qt_test::ChildProcess holder;
  ASSERT_EQ(0, files_test::StartHolder(holder, "hold_file_locker", {qt_test::Narrow(file)}));

  FileSharingServiceManager manager;
  ustr owner;
  EXPECT_EQ(FileSharingServiceManager::LockStateLockedByOther, manager.GetFileLockState(file.c_str(), &owner));
  EXPECT_EQ(FileSharingServiceManager::GetFileOwner(LockOf(file).c_str()), owner);
  ASSERT_FALSE(owner.empty());

  files_test::RecordingPresenter boxes;
  FileLocker silent;
  EXPECT_FALSE(silent.Lock(file));
  EXPECT_TRUE(boxes.shown.empty());

  FileLocker told(L"The file is locked.");
  EXPECT_FALSE(told.Lock(file));
  EXPECT_FALSE(told.IsLocked());
  ASSERT_EQ(1u, boxes.shown.size());
  EXPECT_EQ(L"The file is locked.\r\n\r\n" + file + L"\r\n\r\nLocked: " + owner.str(), boxes.shown[0].text);
  // Task-modal unless Windows has a foreground window to put it on.
  EXPECT_EQ(static_cast<unsigned>(MB_ICONINFORMATION), boxes.shown[0].style & ~static_cast<unsigned>(MB_TASKMODAL));

  // A crashed holder's lock file locks nothing.
  holder.kill();
  EXPECT_TRUE(Exists(LockOf(file)));
  EXPECT_EQ(FileSharingServiceManager::LockStateNotLocked, manager.GetFileLockState(file.c_str()));
  EXPECT_TRUE(told.Lock(file));
}

TEST(FileLocker, MissingFileIsReportedOnlyWithAMessage) {
  qt_test::TempDir dir;
  const std::wstring missing = qt_test::Widen(dir.file("gone.qrd"));
  files_test::RecordingPresenter boxes;
  FileLocker silent(L"", missing);
  EXPECT_FALSE(silent.IsLocked());
  EXPECT_TRUE(boxes.shown.empty());
  FileLocker told(L"locked", missing);
  EXPECT_FALSE(told.IsLocked());
  ASSERT_EQ(1u, boxes.shown.size());
  EXPECT_EQ(L"File not found\r\n\r\n" + missing, boxes.shown[0].text);
  EXPECT_FALSE(Exists(LockOf(missing)));
}

TEST(FileLocker, MovingTransfersTheLock) {
  qt_test::TempDir dir;
  const std::wstring first = MakeFile(dir, "a.epj"), second = MakeFile(dir, "b.epj");
  FileLocker a(L"", first);
  ASSERT_TRUE(a.IsLocked());
  FileLocker b(std::move(a));
  EXPECT_FALSE(a.IsLocked());
  EXPECT_TRUE(b.IsLocked());
  a = FileLocker();  // the moved-from object releases nothing
  EXPECT_TRUE(Exists(LockOf(first)));

  FileLocker c(L"", second);
  ASSERT_TRUE(Exists(LockOf(second)));
  c = std::move(b);  // c gives up its own lock first
  EXPECT_FALSE(Exists(LockOf(second)));
  EXPECT_TRUE(c.IsLocked());
  EXPECT_TRUE(c.Unlock());
  EXPECT_FALSE(Exists(LockOf(first)));
}

namespace {

// A service standing in for a document-management connector; it manages
// the paths that start with "fake:" and does what the test tells it.
struct FakeWorld {
  int state = FileSharingServiceManager::LockStateNotLocked;
  bool syncWorks = true;
  bool lockWorks = true;
  std::map<std::wstring, bool> unlockWorks;  // default: works
  std::vector<std::wstring> calls;
};
FakeWorld g_fake;

class FakeService : public qt::files::SharingService {
 public:
  ustr Name() const override { return L"Fake"; }
  bool Init(const ustr& file) override { return FileExists(file); }
  bool FileExists(const ustr& file) override { return file.find(L"missing") == ustr::npos; }
  int LockState(const ustr&, ustr* owner) override {
    if (owner) *owner = L"someone";
    return g_fake.state;
  }
  bool Sync(const ustr& file, bool) override {
    g_fake.calls.push_back(L"sync " + file.str());
    return g_fake.syncWorks;
  }
  bool Lock(const ustr& file) override {
    g_fake.calls.push_back(L"lock " + file.str());
    return g_fake.lockWorks;
  }
  bool Unlock(const ustr& file) override {
    g_fake.calls.push_back(L"unlock " + file.str());
    const auto it = g_fake.unlockWorks.find(file.str());
    return it == g_fake.unlockWorks.end() || it->second;
  }
  ustr RelativeName(const ustr& file) override { return file.mid(5); }
  ustr FullName(const ustr& file) override { return file; }
};

qt::files::SharingService* FakeFactory(const ustr& file) {
  return file.startsWith(L"fake:") ? new FakeService : nullptr;
}

class WithFakeService : public ::testing::Test {
 protected:
  WithFakeService() {
    g_fake = FakeWorld();
    qt::files::RegisterSharingService(&FakeFactory);
  }
  ~WithFakeService() override {
    // Released before the fake goes away, whatever a test left locked.
    g_fake.unlockWorks.clear();
    qt::files::UnregisterSharingService(&FakeFactory);
  }
  files_test::RecordingPresenter boxes;
};

}  // namespace

TEST_F(WithFakeService, EachLockStateTakesItsOwnPath) {
  FileLocker locker(L"Locked by a colleague.");
  g_fake.state = FileSharingServiceManager::LockStateUnknown;
  EXPECT_FALSE(locker.Lock(L"fake:a.epj"));
  EXPECT_TRUE(boxes.shown.empty());
  EXPECT_EQ(L"Fake", locker.GetServiceName());
  EXPECT_EQ(L"a.epj", locker.GetRelativeFilePathName(L"fake:a.epj"));

  g_fake.state = FileSharingServiceManager::LockStateLockedByOther;
  EXPECT_FALSE(locker.Lock(L"fake:a.epj"));
  ASSERT_EQ(1u, boxes.shown.size());
  EXPECT_EQ(L"Locked by a colleague.\r\n\r\nfake:a.epj\r\n\r\nLocked: someone", boxes.shown[0].text);

  g_fake.state = FileSharingServiceManager::LockStateNotLocked;
  g_fake.syncWorks = false;
  EXPECT_FALSE(locker.Lock(L"fake:a.epj"));
  ASSERT_EQ(2u, boxes.shown.size());
  EXPECT_EQ(L"Quillon cannot synchronize the file. Try to do it manually.\r\n\r\nfake:a.epj", boxes.shown[1].text);

  g_fake.syncWorks = true;
  g_fake.lockWorks = false;
  EXPECT_FALSE(locker.Lock(L"fake:a.epj"));
  EXPECT_EQ(2u, boxes.shown.size());
  EXPECT_TRUE(g_fake.calls.empty() || g_fake.calls.back() == L"lock fake:a.epj");

  g_fake.lockWorks = true;
  g_fake.calls.clear();
  EXPECT_TRUE(locker.Lock(L"fake:a.epj"));
  EXPECT_EQ((std::vector<std::wstring>{L"sync fake:a.epj", L"lock fake:a.epj"}), g_fake.calls);

  // A refused release keeps the lock; a later one syncs after unlocking.
  g_fake.unlockWorks[L"fake:a.epj"] = false;
  EXPECT_FALSE(locker.Unlock());
  EXPECT_TRUE(locker.IsLocked());
  g_fake.unlockWorks.clear();
  g_fake.calls.clear();
  EXPECT_TRUE(locker.Unlock());
  EXPECT_EQ((std::vector<std::wstring>{L"unlock fake:a.epj", L"sync fake:a.epj"}), g_fake.calls);
  EXPECT_FALSE(locker.IsLocked());
}

TEST_F(WithFakeService, MultiUnlockTriesEveryFileAndReportsFailure) {
  MultiFileLocker set(L"", {L"fake:1", L"fake:2", L"fake:3"}, MultiFileLocker::LockAllFiles);
  ASSERT_TRUE(set.IsLocked());
  g_fake.unlockWorks[L"fake:1"] = false;
  g_fake.calls.clear();
  EXPECT_FALSE(set.Unlock());
  EXPECT_FALSE(set.IsLocked());
  std::vector<std::wstring> unlocks;
  for (const auto& call : g_fake.calls) {
    if (call.compare(0, 7, L"unlock ") == 0) unlocks.push_back(call.substr(7));
  }
  // Every file in order; the refused one tried once more as its locker goes.
  EXPECT_EQ((std::vector<std::wstring>{L"fake:1", L"fake:2", L"fake:3", L"fake:1"}), unlocks);
}

TEST(MultiFileLocker, LocksAllOrNothingAndNamesTheFailures) {
  qt_test::TempDir dir;
  const std::wstring a = MakeFile(dir, "a.epj"), b = MakeFile(dir, "b.qep"), held = MakeFile(dir, "c.txt");
  const std::wstring missing = qt_test::Widen(dir.file("d.qrd"));
  qt_test::ChildProcess holder;
  ASSERT_EQ(0, files_test::StartHolder(holder, "hold_file_locker", {qt_test::Narrow(held)}));

  files_test::RecordingPresenter boxes;
  MultiFileLocker set(L"Some files are locked:");
  EXPECT_FALSE(set.Lock({a, held, b, missing}, MultiFileLocker::LockAllFiles));
  EXPECT_FALSE(set.IsLocked());
  EXPECT_FALSE(Exists(LockOf(a)));
  EXPECT_FALSE(Exists(LockOf(b)));
  EXPECT_TRUE(Exists(LockOf(held)));
  ASSERT_FALSE(boxes.shown.empty());
  EXPECT_EQ(L"Some files are locked:\r\n\r\n" + held + L"\r\n\r\nFile not found\r\n\r\n" + missing,
            boxes.shown.back().text);

  // Without the held file only the missing one fails the set, unless it
  // may be left out.
  boxes.shown.clear();
  EXPECT_FALSE(set.Lock({a, missing}, MultiFileLocker::LockAllFiles));
  ASSERT_EQ(1u, boxes.shown.size());
  EXPECT_EQ(L"File not found\r\n\r\n" + missing, boxes.shown[0].text);
  EXPECT_FALSE(Exists(LockOf(a)));
  EXPECT_TRUE(set.Lock({a, b, missing}, MultiFileLocker::LockExistingFiles));
  EXPECT_TRUE(Exists(LockOf(a)));
  EXPECT_TRUE(Exists(LockOf(b)));
  EXPECT_TRUE(set.Unlock());
  EXPECT_FALSE(Exists(LockOf(a)));
  EXPECT_FALSE(Exists(LockOf(b)));
}

// Out of memory at each allocation in turn, through construction, Lock and
// the destructor: nothing is thrown and no lock is lost.
TEST(FileLockerOutOfMemory, LocksOrFailsAndNeverLosesALock) {
  qt_test::TempDir dir;
  const std::wstring file = MakeFile(dir, "plant.epj");
  const std::wstring lock = LockOf(file);
  // Long enough that copying it always needs memory of its own.
  const std::wstring message(300, L'm');
  files_test::RecordingPresenter boxes;
  // The arguments are made beforehand: copying them is the caller's part.
  std::vector<ustr> args;
  for (int i = 0; i < 400; ++i) {
    args.push_back(ustr(L"The file is locked."));
    args.push_back(ustr(file));
    args.push_back(ustr(message));
    args.push_back(ustr(file));
  }
  size_t next = 0;
  bool locked = false;
  qt_test::AtEveryFailurePoint(
      [&] {
        FileLocker locker(std::move(args[next]), std::move(args[next + 1]));
        locked = locker.IsLocked();
        FileLocker second(std::move(args[next + 2]));
        second.Lock(std::move(args[next + 3]));
        next += 4;
      },
      [&](bool refused) {
        if (!refused) {
          EXPECT_TRUE(locked);
          EXPECT_FALSE(Exists(lock));
        } else if (Exists(lock)) {
          // Giving a lock back needs memory too. What stays is either still
          // this process's to release or a leftover the next locker takes.
          bool owned = false;
          {
            FileLocker again(ustr(L""), ustr(file));
            EXPECT_TRUE(again.IsLocked());
            owned = again.IsAlreadyOwned();
          }
          if (owned) {
            FileSharingServiceManager manager;
            EXPECT_TRUE(manager.UnlockFile(file.c_str()));
          }
          EXPECT_FALSE(Exists(lock));
        }
      });
}
