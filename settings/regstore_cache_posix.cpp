// The change counter file and the read cache of the Linux settings store.
#include "settings/regstore_cache_posix.h"

#include <errno.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <cstring>
#include <new>

namespace qt_reg {

namespace {

// One cache line; the counter is the first eight bytes, the rest reserved.
const off_t kCounterFileBytes = 64;

const size_t kMaxEntries = 4096;
const size_t kMaxBytes = 1 << 20;
const size_t kMaxValueBytes = 64 << 10;
// Bookkeeping of one entry beside its key and data, roughly.
const size_t kEntryOverhead = 96;

uint64_t Load(const uint64_t* word) { return __atomic_load_n(word, __ATOMIC_SEQ_CST); }
void Store(uint64_t* word, uint64_t v) { __atomic_store_n(word, v, __ATOMIC_SEQ_CST); }

// A fresh file starts from the clock rather than from zero, so that a file
// made anew in place of a removed one does not repeat values a process may
// still hold.
uint64_t Seed() {
  struct timespec now;
  clock_gettime(CLOCK_REALTIME, &now);
  return ((static_cast<uint64_t>(now.tv_sec) * 1000000000u + static_cast<uint64_t>(now.tv_nsec)) << 1) | 2u;
}

void SleepMs(int ms) {
  struct timespec pause = {0, ms * 1000000L};
  nanosleep(&pause, nullptr);
}

}  // namespace

bool ChangeCounter::open(const std::string& path, bool create, mode_t mode, const std::string& ownerFile) {
  close();
  // Close-on-exec: a program started from this process would otherwise
  // share the open file, and with it the lock of a writer here.
  int fd = ::open(path.c_str(), O_RDWR | O_CLOEXEC | (create ? O_CREAT : 0), mode);
  bool writable = fd >= 0;
  if (fd < 0 && !create) fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return false;
  struct stat st;
  // A file too short would fault on access; only a writer may lengthen it.
  // Lengthening never clears what another process already counted.
  if (fstat(fd, &st) != 0 || !S_ISREG(st.st_mode) ||
      (st.st_size < kCounterFileBytes && (!writable || ftruncate(fd, kCounterFileBytes) != 0))) {
    ::close(fd);
    return false;
  }
  // Made by root in a user's store (sudo keeping HOME), the file would lock
  // its owner out of writing; like SQLite's journals it belongs to whoever
  // owns the store.
  struct stat owner;
  if (writable && geteuid() == 0 && stat(ownerFile.c_str(), &owner) == 0 &&
      (owner.st_uid != st.st_uid || owner.st_gid != st.st_gid) && fchown(fd, owner.st_uid, owner.st_gid) != 0) {
    // Left as it is: the owner then gets a clear refusal from writes.
  }
  void* map = mmap(nullptr, kCounterFileBytes, writable ? PROT_READ | PROT_WRITE : PROT_READ, MAP_SHARED, fd, 0);
  if (map == MAP_FAILED) {
    ::close(fd);
    return false;
  }
  fd_ = fd;
  word_ = static_cast<uint64_t*>(map);
  writable_ = writable;
  dev_ = st.st_dev;
  ino_ = st.st_ino;
  if (writable) {
    uint64_t zero = 0;
    __atomic_compare_exchange_n(word_, &zero, Seed(), false, __ATOMIC_SEQ_CST, __ATOMIC_SEQ_CST);
  }
  return true;
}

void ChangeCounter::close() {
  if (announced_) complete();
  // The mapping is left in place: callers that check a mark without the
  // store's lock may still read the word. A counter file is opened again
  // only when a store is closed, which is rare, and costs a page of
  // address space each time.
  if (fd_ >= 0) ::close(fd_);
  word_ = nullptr;
  fd_ = -1;
  writable_ = false;
}

bool ChangeCounter::isFile(const std::string& path) const {
  struct stat st;
  return word_ && stat(path.c_str(), &st) == 0 && st.st_dev == dev_ && st.st_ino == ino_;
}

bool ChangeCounter::settled(uint64_t* value) {
  if (!word_) return false;
  uint64_t v = Load(word_);
  if ((v & 1) == 0) {
    *value = v;
    return true;
  }
  // Odd. Holding the lock proves that no writer is under way, so the odd
  // value is a dead writer's and can be cleared up.
  if (!writable_ || flock(fd_, LOCK_EX | LOCK_NB) != 0) return false;
  v = Load(word_);
  if (v & 1) Store(word_, ++v);
  flock(fd_, LOCK_UN);
  *value = v;
  return true;
}

bool ChangeCounter::announce(int timeoutMs) {
  if (!word_ || !writable_ || announced_) return false;
  int waited = 0, pause = 1;
  while (flock(fd_, LOCK_EX | LOCK_NB) != 0) {
    if ((errno != EWOULDBLOCK && errno != EINTR) || waited >= timeoutMs) return false;
    SleepMs(pause);
    waited += pause;
    if (pause < 16) pause *= 2;
  }
  const uint64_t v = Load(word_);
  // Odd already: the previous writer died; skip to the next odd value so
  // the change is still seen by whoever kept the even one before.
  Store(word_, (v & 1) ? v + 2 : v + 1);
  announced_ = true;
  return true;
}

void ChangeCounter::complete() {
  if (!announced_) return;
  Store(word_, (Load(word_) | 1) + 1);
  flock(fd_, LOCK_UN);
  announced_ = false;
}

void ChangeCounter::forgetAfterFork() {
  // Closing the inherited descriptor leaves the parent's flock alone (it
  // belongs to the open file, which the parent keeps open); unlocking
  // would not.
  announced_ = false;
  // Left mapped, as in close().
  if (fd_ >= 0) ::close(fd_);
  word_ = nullptr;
  fd_ = -1;
  writable_ = false;
}

const CachedRead* ReadCache::find(const std::string& key) const {
  if (!valid_) return nullptr;
  auto it = entries_.find(key);
  return it == entries_.end() ? nullptr : &it->second;
}

void ReadCache::put(const std::string& key, CachedRead&& entry) {
  if (!valid_ || entry.data.size() > kMaxValueBytes) return;
  const size_t cost = key.size() + entry.data.size() + kEntryOverhead;
  if (entries_.size() >= kMaxEntries || bytes_ + cost > kMaxBytes) drop();
  try {
    entries_[key] = std::move(entry);
    bytes_ += cost;
  } catch (const std::bad_alloc&) {
    drop();
  }
}

void ReadCache::drop() {
  entries_.clear();
  bytes_ = 0;
}

void ReadCache::clear() {
  drop();
  valid_ = false;
}

void ReadCache::startAt(uint64_t value) {
  if (valid_ && value_ == value) return;
  drop();
  valid_ = true;
  value_ = value;
}

std::string ReadCache::Key(char kind, int64_t id, const std::string& fold) {
  std::string key(1 + sizeof id, kind);
  std::memcpy(&key[1], &id, sizeof id);
  key += fold;
  return key;
}

}  // namespace qt_reg
