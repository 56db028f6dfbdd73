// Heap blocks standing in for movable global memory. A handle is the block
// header; its pointer is the data right behind the header. Every live block
// is registered, so a pointer that the library did not hand out is told
// apart without reading memory in front of it.
#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <new>
#include <unordered_set>

#include "core/gmem_platform.h"

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
// initial-exec: the library is loaded with its host, and the general TLS
// model would cost a __tls_get_addr call on every lookup.
__attribute__((tls_model("initial-exec"))) thread_local CachedLookup t_lookup;

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

inline void* Handle(const void* pointer) {
  if (!pointer) return nullptr;
  const Block* candidate = reinterpret_cast<const Block*>(static_cast<const char*>(pointer) - sizeof(Block));
  const uint64_t generation = g_generation.load(std::memory_order_acquire);
  if (t_lookup.block == candidate && t_lookup.generation == generation) return const_cast<Block*>(candidate);
  return LookUp(candidate, generation);
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

// The copy sizes of common records are spelt out, so that they become
// single moves instead of a call.
void CopyRecord(char* to, const void* from, size_t n) {
  switch (n) {
    case 4:
      std::memmove(to, from, 4);
      break;
    case 8:
      std::memmove(to, from, 8);
      break;
    case 16:
      std::memmove(to, from, 16);
      break;
    default:
      std::memmove(to, from, n);
  }
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

bool AppendInPlace(void* pointer, size_t size, const void* source, size_t n) {
  Block* b = static_cast<Block*>(Handle(pointer));
  if (!b || size > b->capacity || n > size) return false;
  QT_UNPOISON(DataOf(b), b->capacity);
  b->size = size;
  HideSpare(b);
  // A source inside the block stays where it was: the block did not move.
  CopyRecord(DataOf(b) + size - n, source, n);
  return true;
}

}  // namespace platform
}  // namespace gmem
}  // namespace qt
