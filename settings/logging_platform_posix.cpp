// Linux stands in for the Windows calls with the monotonic clock and stderr.
// stderr is what a developer sees here: in the terminal that started the
// host, or in the user journal when a desktop session started it.
#include <time.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <string>

#include "settings/logging_platform.h"
#include "ustr.h"

namespace qt {
namespace logging {
namespace platform {

FILE* OpenLogFile(const wchar_t* fileName) {
  const std::string name = qn_wide_to_ansi(fileName);
  return std::fopen(name.c_str(), "wb");
}

void DebuggerOutput(const wchar_t* text) {
  const std::string utf8 = qn_wide_to_ansi(text);
  const char* p = utf8.data();
  size_t left = utf8.size();
  while (left > 0) {
    const ssize_t n = write(STDERR_FILENO, p, left);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return;  // nobody listens; the log never fails its caller
    p += n;
    left -= static_cast<size_t>(n);
  }
}

namespace {
struct timespec Now() {
  struct timespec ts;
  clock_gettime(CLOCK_MONOTONIC, &ts);
  return ts;
}
}  // namespace

bool CounterFrequency(__int64* frequency) {
  struct timespec res;
  if (clock_getres(CLOCK_MONOTONIC, &res) != 0) return false;
  *frequency = 1000000000LL;
  return true;
}

__int64 Counter() {
  const struct timespec ts = Now();
  return static_cast<__int64>(ts.tv_sec) * 1000000000LL + ts.tv_nsec;
}

__int64 TickCount() {
  const struct timespec ts = Now();
  const unsigned long long ms = static_cast<unsigned long long>(ts.tv_sec) * 1000ULL + static_cast<unsigned long long>(ts.tv_nsec) / 1000000ULL;
  return static_cast<__int64>(static_cast<uint32_t>(ms));
}

}  // namespace platform
}  // namespace logging
}  // namespace qt
