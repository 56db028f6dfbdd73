// Child processes for tests (child_process_platform_win.cpp /
// child_process_platform_posix.cpp). Those files also hold the members of
// ChildProcess and the environment helpers of qt_test.h that differ by
// platform; the steps below serve the portable test support.
#ifndef QUILTOOL_TESTSUPPORT_CHILD_PROCESS_PLATFORM_H
#define QUILTOOL_TESTSUPPORT_CHILD_PROCESS_PLATFORM_H

#include <string>

#include "qt_test.h"

namespace qt_test {
namespace child_process {
namespace platform {
// Appends what the child wrote within timeoutMs (a pipe polled on Linux,
// PeekNamedPipe on Windows); returns the byte count
// (0 on timeout) or -1 at the end of its output.
int ReadSome(ChildProcess::Impl* impl, std::string* out, int timeoutMs);
// This process's id, for unique names.
unsigned long ProcessId();
}  // namespace platform
}  // namespace child_process
}  // namespace qt_test

#endif
