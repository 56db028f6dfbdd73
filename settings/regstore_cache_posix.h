// What lets the Linux settings store answer repeated reads without SQL and
// still be exactly as fresh as a read of the file: a change counter shared
// by every process using the store, and the in-process cache it guards.
#ifndef QUILTOOL_SETTINGS_REGSTORE_CACHE_POSIX_H
#define QUILTOOL_SETTINGS_REGSTORE_CACHE_POSIX_H

#include <sys/types.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "qn_wintypes.h"

namespace qt_reg {

// A few bytes in a file beside the store, mapped by every process that uses
// the store. Even: no write of this library is under way. Odd: one is, or
// its writer died before finishing.
//
// A writer takes an exclusive flock on the file, makes the counter odd,
// writes and commits, makes it even again and unlocks. A reader loads the
// counter BEFORE its SQL read and keeps what it read under that value, and
// only when it is even; a kept answer is used while the counter still
// holds exactly that value. This can never serve stale data:
// - An even value means every write announced before it has committed (the
//   counter turns even only after the commit), so the SQL read that follows
//   sees all of them.
// - Any later write turns the counter odd before its commit can be seen, so
//   it differs from the kept value before the new data exists.
// - A writer killed between the two steps leaves the counter odd, and
//   nothing is kept while it is odd. The kernel drops the dead writer's
//   flock, so whoever next gets the lock (the next writer, or a reader that
//   tries it without waiting) knows no write is under way and makes the
//   counter even again; the dead writer's commit is then final either way.
// A single bump after the commit could be lost in such a crash and leave a
// reader trusting a value forever; a bump before the commit alone would let
// a reader keep the old data under the new value.
class ChangeCounter {
 public:
  ChangeCounter() = default;
  ~ChangeCounter() { close(); }
  ChangeCounter(const ChangeCounter&) = delete;
  ChangeCounter& operator=(const ChangeCounter&) = delete;

  // Maps an existing counter file (read-write when allowed, else
  // read-only); with create, makes it when it is missing and insists on
  // write access. The mode is for a new file, ownerFile the store whose
  // owner the file should have.
  bool open(const std::string& path, bool create, mode_t mode, const std::string& ownerFile);
  void close();
  bool isOpen() const { return word_ != nullptr; }
  // The mapped word, null when closed; it stays mapped after close.
  const uint64_t* word() const { return word_; }
  bool writable() const { return writable_; }
  // Whether path still names the file that is mapped.
  bool isFile(const std::string& path) const;

  // The counter when it is even; false while a write is under way (or
  // left unfinished by a writer that nobody could yet clear up).
  bool settled(uint64_t* value);

  // Around a write: announce waits up to timeoutMs for other writers.
  bool announce(int timeoutMs);
  void complete();

  // In a child after fork: lets go of the parent's mapping and descriptor
  // without touching the lock the parent may hold through it.
  void forgetAfterFork();

 private:
  int fd_ = -1;
  uint64_t* word_ = nullptr;
  bool writable_ = false;
  bool announced_ = false;
  dev_t dev_ = 0;
  ino_t ino_ = 0;
};

// One answer of the store: a child key's id, a value, or that there is
// none (kept as well, as most settings read are usually absent).
struct CachedRead {
  long rc = 0;
  int64_t id = 0;
  DWORD type = 0;
  std::vector<BYTE> data;
};

// The answers read under one counter value. Bounded: when full it starts
// over, which costs a few SQL reads.
class ReadCache {
 public:
  const CachedRead* find(const std::string& key) const;
  // Never fails: a value too large, or no memory, just is not kept.
  void put(const std::string& key, CachedRead&& entry);
  void clear();
  // Empties the cache unless it holds answers read under value.
  void startAt(uint64_t value);

  static std::string Key(char kind, int64_t id, const std::string& fold);

 private:
  void drop();

  std::unordered_map<std::string, CachedRead> entries_;
  size_t bytes_ = 0;
  bool valid_ = false;
  uint64_t value_ = 0;
};

// What tells, without the store's lock, that a mark still holds: the
// counter's word, which stays mapped for the life of the process, the
// store's epoch, and when the store's files are next due to be looked at.
struct UnlockedCheck {
  const uint64_t* word = nullptr;
  const std::atomic<uint64_t>* epoch = nullptr;
  int64_t dueMs = 0;
};

// The current user's store's mark (Store::mark), taken before reading
// settings that a caller keeps while the mark stays the same; with check,
// also what UserStoreMarkHolds needs.
bool UserStoreMark(uint64_t* counter, uint64_t* epoch, UnlockedCheck* check = nullptr);
// Whether nothing has changed since UserStoreMark gave counter and epoch
// with check, told with two loads and the coarse clock. False also when a
// look at the files is due: the caller then takes a new mark, which looks.
bool UserStoreMarkHolds(const UnlockedCheck& check, uint64_t counter, uint64_t epoch);

// Test seams, not for callers.
// Statements the store has run in this process.
unsigned long long StoreStatementCount();
// How often a process looks at the store's files for changes made behind
// the library's back, in milliseconds (0 on every call, -1 never).
// Returns the previous setting.
int SetStoreRecheckInterval(int ms);
// Called inside every write: after it is announced, and after it is
// committed but before the counter says so.
enum WriteStage { kWriteAnnounced = 1, kWriteCommitted = 2 };
void SetStoreWriteHook(void (*hook)(int stage));

}  // namespace qt_reg

#endif
