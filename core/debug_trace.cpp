#include <cstdarg>
#include <cstdio>

#include "core/frame_state.h"
#include "gwframe.h"

void gwdebug(const char* format, ...) {
  if (!format) return;
  // Formatted without a bound, so the buffer holds any line the suite writes.
  char line[8192];
  va_list args;
  va_start(args, format);
  std::vsnprintf(line, sizeof line, format, args);
  va_end(args);

  qt::FrameState& f = qt::Frame();
  FILE* file = nullptr;
  if (f.debugLogStarted) file = std::fopen("GWDEBUG.TXT", "a+t");
  if (!file) {
    file = std::fopen("GWDEBUG.TXT", "w+t");
    f.debugLogStarted = true;
  }
  if (!file) return;
  std::fprintf(file, "%s\n", line);
  // Closed after every line so that the trace survives a crash.
  std::fclose(file);
}
