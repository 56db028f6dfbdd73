// The platform step behind ChildProcess::readLine.
#ifndef QUILTOOL_TESTSUPPORT_CHILD_PROCESS_H
#define QUILTOOL_TESTSUPPORT_CHILD_PROCESS_H

#include <string>

#include "qt_test.h"

namespace qt_test {
// Appends what the child wrote within timeoutMs; returns the byte count
// (0 on timeout) or -1 at the end of its output.
int ReadSome(ChildProcess::Impl* impl, std::string* out, int timeoutMs);
// This process's id, for unique names.
unsigned long ProcessId();
}  // namespace qt_test

#endif
