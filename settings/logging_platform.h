// What the log needs of the operating system (logging_platform_win.cpp /
// logging_platform_posix.cpp).
#ifndef QUILTOOL_SETTINGS_LOGGING_PLATFORM_H
#define QUILTOOL_SETTINGS_LOGGING_PLATFORM_H

#include <cstdio>

#include "qn_wintypes.h"

namespace qt {
namespace logging {
namespace platform {

// Opens a file for binary writing, truncating it (_wfopen "wb"); null on
// failure. Linux: the name converted to UTF-8.
FILE* OpenLogFile(const wchar_t* fileName);

// The debugger sink: OutputDebugStringW on Windows; on Linux one write(2)
// of the text as UTF-8 to stderr, unbuffered so that pieces join in order.
void DebuggerOutput(const wchar_t* text);

// QueryPerformanceFrequency / QueryPerformanceCounter; Linux:
// CLOCK_MONOTONIC in nanoseconds, frequency 1e9.
bool CounterFrequency(__int64* frequency);
__int64 Counter();
// GetTickCount: milliseconds in 32 bits, wrapping after 49.7 days.
__int64 TickCount();

}  // namespace platform
}  // namespace logging
}  // namespace qt

#endif
