// The stopwatch: performance-counter ticks when the machine has a
// high-resolution counter, GetTickCount milliseconds otherwise.
#include "Logging.h"
#include "settings/logging_internal.h"
#include "settings/logging_platform.h"

namespace {

const QtLogClock kSystemClock = {&qt::logging::platform::CounterFrequency, &qt::logging::platform::Counter,
                                 &qt::logging::platform::TickCount};

struct Stopwatch {
  QtLogClock clock = kSystemClock;
  bool highResolution = false;
  __int64 frequency = 0;

  void readFrequency() {
    __int64 f = 0;
    highResolution = clock.frequency(&f) && f > 0;
    frequency = highResolution ? f : 0;
  }
  __int64 now() const { return highResolution ? clock.counter() : clock.ticks(); }
  double toMs(__int64 raw) const {
    return highResolution ? static_cast<double>(raw) * 1000.0 / static_cast<double>(frequency) : static_cast<double>(raw);
  }
};

Stopwatch& Watch() {
  static Stopwatch watch;
  return watch;
}

// The frequency is taken once, when the library is loaded.
[[maybe_unused]] const bool g_frequencyRead = (Watch().readFrequency(), true);

}  // namespace

void qt_logging_use_clock(const QtLogClock* clock) {
  Watch().clock = clock ? *clock : kSystemClock;
  Watch().readFrequency();
}

__int64 Logging_StartTiming() { return Watch().now(); }

__int64 Logging_EndTiming(__int64& start, bool restart) {
  const __int64 now = Watch().now();
  const __int64 raw = now - start;
  if (restart) start = now;
  return raw;
}

double Logging_EndTimingMs(__int64& start, bool restart) { return Watch().toMs(Logging_EndTiming(start, restart)); }

__int64 Logging_EndTimingWithMs(__int64& start, double& milliseconds, bool restart) {
  const __int64 raw = Logging_EndTiming(start, restart);
  milliseconds = Watch().toMs(raw);
  return raw;
}

bool Logging_IsHighResolutionTimerAvailable() { return Watch().highResolution; }
