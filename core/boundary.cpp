#include "core/boundary.h"

#include "gwframe.h"

namespace qt {

void NoteEscapedException(const char* where, bool outOfMemory) noexcept {
  // The trace itself may fail for want of memory; it must not throw either.
  try {
    gwdebug("QuilTool: %s failed: %s", where ? where : "?", outOfMemory ? "out of memory" : "unexpected exception");
  } catch (...) {
  }
}

}  // namespace qt
