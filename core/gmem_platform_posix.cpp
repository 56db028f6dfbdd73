// Heap blocks standing in for movable global memory. A handle is the block
// header; its pointer is the data right behind the header. Every live block
// is registered, so a pointer that the library did not hand out is told
// apart without reading memory in front of it.
#include <atomic>
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <new>
#include <unordered_set>

#include "core/gmem_platform.h"
#include "core/hot_thread_local.h"

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/asan_interface.h>
#define QT_POISON(addr, size) ASAN_POISON_MEMORY_REGION(addr, size)
#define QT_UNPOISON(addr, size) ASAN_UNPOISON_MEMORY_REGION(addr, size)
#else
#define QT_POISON(addr, size) ((void)(addr), (void)(size))
#define QT_UNPOISON(addr, size) ((void)(addr), (void)(size))
#endif

namespace {

struct alignas(16) Block {
  size_t size;      // what the owner asked for
  size_t capacity;  // what the heap block holds
  int locks;
};

char* DataOf(Block* b) { return reinterpret_cast<char*>(b + 1); }

struct Registry {
  std::mutex mutex;
  std::unordered_set<const Block*> live;
};
Registry& Blocks() {
  static Registry* registry = new Registry;  // outlives static destructors
  return *registry;
}

// Bumped whenever a block goes away or moves, so a thread's cached lookup is
// trusted only while nothing has changed.
std::atomic<uint64_t> g_generation{1};
struct CachedLookup {
  const Block* block = nullptr;
  uint64_t generation = 0;
};
QT_HOT_THREAD_LOCAL CachedLookup t_lookup;

void Register(Block* b) {
  std::lock_guard<std::mutex> lock(Blocks().mutex);
  Blocks().live.insert(b);
}

void Unregister(Block* b) {
  g_generation.fetch_add(1, std::memory_order_acq_rel);
  std::lock_guard<std::mutex> lock(Blocks().mutex);
  Blocks().live.erase(b);
}

void HideSpare(Block* b) { QT_POISON(DataOf(b) + b->size, b->capacity - b->size); }

void* Alloc(size_t size, bool zero) {
  Block* b = static_cast<Block*>(std::malloc(sizeof(Block) + (size ? size : 1)));
  if (!b) return nullptr;
  b->size = size;
  b->capacity = size;
  b->locks = 0;
  if (zero) std::memset(DataOf(b), 0, size);
  Register(b);
  return b;
}

void* Lock(void* handle) {
  Block* b = static_cast<Block*>(handle);
  ++b->locks;
  return DataOf(b);
}

// Kept out of line so that the cached case stays a leaf without a frame.
__attribute__((noinline)) void* LookUp(const Block* candidate, uint64_t generation) {
  {
    std::lock_guard<std::mutex> lock(Blocks().mutex);
    if (!Blocks().live.count(candidate)) return nullptr;
  }
  t_lookup.block = candidate;
  t_lookup.generation = generation;
  return const_cast<Block*>(candidate);
}

// The block of pointer when it is the one this thread looked up last and
// nothing has gone away or moved since; null otherwise.
inline Block* CachedHandle(const void* pointer) {
  // Computed as a number: a null pointer gives a candidate that no block
  // has, without arithmetic on the null pointer itself.
  const uintptr_t candidate = reinterpret_cast<uintptr_t>(pointer) - sizeof(Block);
  if (reinterpret_cast<uintptr_t>(t_lookup.block) == candidate &&
      t_lookup.generation == g_generation.load(std::memory_order_acquire))
    return const_cast<Block*>(t_lookup.block);
  return nullptr;
}

inline void* Handle(const void* pointer) {
  if (!pointer) return nullptr;
  if (Block* cached = CachedHandle(pointer)) return cached;
  const Block* candidate = reinterpret_cast<const Block*>(static_cast<const char*>(pointer) - sizeof(Block));
  return LookUp(candidate, g_generation.load(std::memory_order_acquire));
}

void Unlock(void* handle) {
  Block* b = static_cast<Block*>(handle);
  if (b->locks > 0) --b->locks;
}

// std::realloc, out of line: Realloc below goes on with the old block only
// after a failed call, when it is still there, which the compiler's
// use-after-free check cannot see through an inlined realloc.
[[gnu::noinline]] void* Reallocate(void* block, size_t bytes) { return std::realloc(block, bytes); }

void* Realloc(void* handle, size_t size) {
  Block* b = static_cast<Block*>(handle);
  if (size <= b->capacity) {
    QT_UNPOISON(DataOf(b), b->capacity);
    b->size = size;
    HideSpare(b);
    return b;
  }
  // Doubling keeps n one-record steps at O(n) copying; realloc lets large
  // blocks move by remapping pages instead of copying them.
  size_t capacity = b->capacity * 2;
  if (capacity < size) capacity = size;
  QT_UNPOISON(DataOf(b), b->capacity);
  // The block leaves the registry before it may move, so no lookup can meet
  // it half-moved; on failure it comes back unchanged.
  Unregister(b);
  void* grown = Reallocate(b, sizeof(Block) + capacity);
  if (!grown && capacity > size) {
    capacity = size;
    grown = Reallocate(b, sizeof(Block) + capacity);
  }
  if (!grown) {
    Register(b);
    HideSpare(b);
    return nullptr;
  }
  Block* moved = static_cast<Block*>(grown);
  Register(moved);
  moved->size = size;
  moved->capacity = capacity;
  HideSpare(moved);
  return moved;
}

void Free(void* handle) {
  Block* b = static_cast<Block*>(handle);
  Unregister(b);
  QT_UNPOISON(DataOf(b), b->capacity);
  std::free(b);
}

size_t Size(void* handle) { return static_cast<Block*>(handle)->size; }

// The last step of an append with room, for records of other sizes than
// the common ones.
[[gnu::noinline]] int AppendOtherRecord(gwarraytype* array, char* slot, const void* record, size_t n) {
  std::memmove(slot, record, n);
  ++array->count;
  return 0;
}

inline void CopyWord(char* to, const char* from) {
  uint32_t word;
  std::memcpy(&word, from, 4);
  std::memcpy(to, &word, 4);
}

// Appends to b, which holds the array's records, when it has room. Every
// call below is a tail call, so that the common case needs no frame; an
// append costs a few nanoseconds, and a frame would be a good part of it.
inline int AppendTo(Block* b, gwarraytype* array, const void* record,
                    qt::gmem::platform::AppendRecordStep otherwise) {
  const int count = array->count;
  // A negative record size turns into a size beyond any block's room.
  const size_t n = static_cast<size_t>(array->recordSize);
  const size_t size = (static_cast<size_t>(count) + 1) * n;
  if (static_cast<unsigned>(count) >= INT_MAX || size > b->capacity || n == 0) return otherwise(array, record);
  QT_UNPOISON(DataOf(b), b->capacity);
  b->size = size;
  HideSpare(b);
  // A record from inside the block stays where it was: the block did not
  // move, and the new slot lies beyond every old record.
  char* slot = DataOf(b) + size - n;
  // Callers fill a record field by field just before appending it. Read in
  // 4-byte words, each part comes straight from the caller's store; a wider
  // read over several narrower stores waits until they reach the cache,
  // which costs more than the rest of the append.
  const char* source = static_cast<const char*>(record);
  switch (n) {
    case 16:
      CopyWord(slot + 12, source + 12);
      CopyWord(slot + 8, source + 8);
      // fall through
    case 8:
      CopyWord(slot + 4, source + 4);
      // fall through
    case 4:
      CopyWord(slot, source);
      break;
    default:
      return AppendOtherRecord(array, slot, record, n);
  }
  array->count = count + 1;
  return 0;
}

// The append when the array's block is not the one this thread looked up
// last: the full look-up first.
[[gnu::noinline]] int AppendAfterLookUp(gwarraytype* array, const void* record,
                                        qt::gmem::platform::AppendRecordStep otherwise) {
  Block* b = array->data ? static_cast<Block*>(Handle(array->data)) : nullptr;
  if (!b) return otherwise(array, record);
  return AppendTo(b, array, record, otherwise);
}

const QtGmemCalls kPosixCalls = {Alloc, Lock, Handle, Unlock, Realloc, Free, Size,
                                 qt::gmem::platform::ResizeInPlace};

}  // namespace

namespace qt {
namespace gmem {
namespace platform {

const QtGmemCalls* DefaultCalls() { return &kPosixCalls; }

bool ResizeInPlace(void* pointer, size_t size) {
  Block* b = static_cast<Block*>(Handle(pointer));
  if (!b || size > b->capacity) return false;
  QT_UNPOISON(DataOf(b), b->capacity);
  b->size = size;
  HideSpare(b);
  return true;
}

int AppendRecord(gwarraytype* array, const void* record, AppendRecordStep otherwise) {
  Block* b = CachedHandle(array->data);
  if (!b) return AppendAfterLookUp(array, record, otherwise);
  return AppendTo(b, array, record, otherwise);
}

}  // namespace platform
}  // namespace gmem
}  // namespace qt
