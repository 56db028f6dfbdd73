#include "failing_allocations.h"

#include <cstdlib>
#include <new>

namespace {

// Per thread, so that threads a test does not drive never see a failure.
thread_local bool t_armed = false;
thread_local long t_allowed = 0;
thread_local long t_refused = 0;

bool Refuse() {
  if (!t_armed) return false;
  if (t_allowed > 0) {
    --t_allowed;
    return false;
  }
  ++t_refused;
  return true;
}

void* Allocate(std::size_t size) {
  if (Refuse()) throw std::bad_alloc();
  void* p = std::malloc(size ? size : 1);
  if (!p) throw std::bad_alloc();
  return p;
}

void* AllocateNoThrow(std::size_t size) noexcept {
  if (Refuse()) return nullptr;
  return std::malloc(size ? size : 1);
}

}  // namespace

void* operator new(std::size_t size) { return Allocate(size); }
void* operator new[](std::size_t size) { return Allocate(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return AllocateNoThrow(size); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return AllocateNoThrow(size); }
void operator delete(void* p) noexcept { std::free(p); }
void operator delete[](void* p) noexcept { std::free(p); }
void operator delete(void* p, std::size_t) noexcept { std::free(p); }
void operator delete[](void* p, std::size_t) noexcept { std::free(p); }
void operator delete(void* p, const std::nothrow_t&) noexcept { std::free(p); }
void operator delete[](void* p, const std::nothrow_t&) noexcept { std::free(p); }

namespace qt_test {

FailingAllocations::FailingAllocations(long allowed) : previousAllowed_(t_allowed), previousArmed_(t_armed) {
  t_refused = 0;
  t_allowed = allowed;
  t_armed = true;
}

FailingAllocations::~FailingAllocations() {
  t_armed = previousArmed_;
  t_allowed = previousAllowed_;
}

long FailingAllocations::refused() const { return t_refused; }

}  // namespace qt_test
