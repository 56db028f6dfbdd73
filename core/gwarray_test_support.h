// Helpers of the array tests: reading an array's contents, capturing the
// error hook's reports and making global-memory calls fail.
#ifndef QUILTOOL_CORE_GWARRAY_TEST_SUPPORT_H
#define QUILTOOL_CORE_GWARRAY_TEST_SUPPORT_H

#include <cstdlib>
#include <string>
#include <vector>

#include "core/frame_state.h"
#include "core/gmem.h"
#include "gwarray.h"

namespace gwarray_test {

inline std::vector<int> Ints(const gwarraytype& a) {
  std::vector<int> v;
  for (int i = 0; i < a.count; ++i) v.push_back(*static_cast<const int*>(gwarray_at(&a, i)));
  return v;
}

inline std::vector<std::wstring> Texts(const gwarraytype& a) {
  std::vector<std::wstring> v;
  for (int i = 0; i < a.count; ++i) v.push_back(gwWszarray_at(&a, i));
  return v;
}

// Collects what reaches the error hook while it lives.
class ErrorCapture {
 public:
  ErrorCapture() : previous_(qt_set_error_hook(&Record)) { Messages().clear(); }
  ~ErrorCapture() { qt_set_error_hook(previous_); }
  static std::vector<std::string>& Messages() {
    static std::vector<std::string> messages;
    return messages;
  }
  static bool Saw(const std::string& text) {
    for (const std::string& m : Messages())
      if (m == text) return true;
    return false;
  }

 private:
  static void Record(long code, const char* message) {
    if (code == -2) Messages().push_back(message);
  }
  qt::ErrorHook previous_;
};

// Makes allocations (alloc) or resizes (realloc) fail while it lives.
class FailingMemory {
 public:
  enum Which { kAlloc = 1, kRealloc = 2 };
  explicit FailingMemory(int which) : saved_(*qt_gmem_calls()) {
    if (which & kAlloc) qt_gmem_calls()->alloc = [](size_t, bool) -> void* { return nullptr; };
    if (which & kRealloc) {
      qt_gmem_calls()->realloc = [](void*, size_t) -> void* { return nullptr; };
      qt_gmem_calls()->resizeInPlace = nullptr;
    }
  }
  ~FailingMemory() { *qt_gmem_calls() = saved_; }

 private:
  QtGmemCalls saved_;
};

// Plain heap blocks in place of the platform's global memory while it
// lives, for tests that need more live blocks than Windows allows movable
// handles (about 65535 per process). Only blocks made under it may be
// used under it.
class HeapMemory {
 public:
  HeapMemory() : saved_(*qt_gmem_calls()) {
    // Header: the size asked for, then the room held (doubled when it runs
    // out, so that a block grown record by record is not copied each time).
    QtGmemCalls& c = *qt_gmem_calls();
    c.alloc = [](size_t size, bool zero) -> void* {
      size_t* b = static_cast<size_t*>(zero ? std::calloc(1, size + 16) : std::malloc(size + 16));
      if (b) b[0] = b[1] = size;
      return b;
    };
    c.lock = [](void* h) -> void* { return static_cast<char*>(h) + 16; };
    c.handle = [](const void* p) -> void* { return const_cast<char*>(static_cast<const char*>(p) - 16); };
    c.unlock = [](void*) {};
    c.realloc = [](void* h, size_t size) -> void* {
      size_t* b = static_cast<size_t*>(h);
      if (size > b[1]) {
        const size_t room = size > 2 * b[1] ? size : 2 * b[1];
        b = static_cast<size_t*>(std::realloc(h, room + 16));
        if (!b) return nullptr;
        b[1] = room;
      }
      b[0] = size;
      return b;
    };
    c.free = [](void* h) { std::free(h); };
    c.size = [](void* h) { return *static_cast<size_t*>(h); };
    c.resizeInPlace = nullptr;
  }
  ~HeapMemory() { *qt_gmem_calls() = saved_; }

 private:
  QtGmemCalls saved_;
};

}  // namespace gwarray_test

#endif
