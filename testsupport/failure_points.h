// Runs a call with memory running out at each of its allocations in turn.
#ifndef QUILTOOL_TESTSUPPORT_FAILURE_POINTS_H
#define QUILTOOL_TESTSUPPORT_FAILURE_POINTS_H

#include <gtest/gtest.h>

#include "failing_allocations.h"

namespace qt_test {

// Runs call once for each allocation it makes, that allocation and every
// later one failing, and once more with all memory granted. check sees
// whether allocations were refused in that run; nothing may be thrown.
template <class Call, class Check>
void AtEveryFailurePoint(Call call, Check check) {
  for (long allowed = 0; allowed < 400; ++allowed) {
    bool refused = false;
    {
      FailingAllocations failing(allowed);
      EXPECT_NO_THROW(call()) << "with " << allowed << " allocations granted";
      refused = failing.refused() > 0;
    }
    check(refused);
    if (!refused) return;
  }
  ADD_FAILURE() << "the call never ran to its end";
}

}  // namespace qt_test

#endif
