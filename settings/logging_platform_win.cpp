#include <windows.h>

#include <cstdio>

#include "settings/logging_platform.h"

namespace qt {
namespace logging {
namespace platform {

FILE* OpenLogFile(const wchar_t* fileName) { return _wfopen(fileName, L"wb"); }

void DebuggerOutput(const wchar_t* text) { OutputDebugStringW(text); }

bool CounterFrequency(__int64* frequency) {
  LARGE_INTEGER f;
  if (!QueryPerformanceFrequency(&f) || f.QuadPart <= 0) return false;
  *frequency = f.QuadPart;
  return true;
}

__int64 Counter() {
  LARGE_INTEGER c;
  QueryPerformanceCounter(&c);
  return c.QuadPart;
}

__int64 TickCount() { return static_cast<__int64>(GetTickCount()); }

}  // namespace platform
}  // namespace logging
}  // namespace qt
