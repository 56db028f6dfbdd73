// Internals of the log shared by its source files, and the clock seam that
// lets tests drive the stopwatch through both of its paths.
#ifndef QUILTOOL_SETTINGS_LOGGING_INTERNAL_H
#define QUILTOOL_SETTINGS_LOGGING_INTERNAL_H

#include <string>

#include "qn_wintypes.h"

namespace qt {
namespace logging {

// The switch tested before every output; on from the start and never turned
// off by the library itself.
bool& GlobalSwitch();
// Set by the first output of any Logging object.
bool& AnyOutputSeen();

}  // namespace logging
}  // namespace qt

// The clock behind the stopwatch. Tests install one to make the counter,
// its frequency and the tick count what they need; null restores the
// system's clock. Installing reads the frequency again, as a load does.
struct QtLogClock {
  bool (*frequency)(__int64* frequency);
  __int64 (*counter)();
  __int64 (*ticks)();
};
void qt_logging_use_clock(const QtLogClock* clock);

#endif
