// Out of memory on demand: while a FailingAllocations lives, the calling
// thread's allocations through operator new succeed `allowed` more times and
// then fail (std::bad_alloc, or null from the nothrow forms) until it ends.
// A test program that uses it replaces the global operator new; the library
// code it holds then runs out of memory where the test chooses.
#ifndef QUILTOOL_TESTSUPPORT_FAILING_ALLOCATIONS_H
#define QUILTOOL_TESTSUPPORT_FAILING_ALLOCATIONS_H

namespace qt_test {

class FailingAllocations {
 public:
  explicit FailingAllocations(long allowed = 0);
  ~FailingAllocations();
  FailingAllocations(const FailingAllocations&) = delete;
  FailingAllocations& operator=(const FailingAllocations&) = delete;

  // How many allocations were refused so far.
  long refused() const;

 private:
  long previousAllowed_;
  bool previousArmed_;
};

}  // namespace qt_test

#endif
