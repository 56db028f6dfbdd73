// The system's side of file_problem.h (file_problem_platform_posix.cpp /
// _win.cpp).
#ifndef QUILTOOL_TOOLS_FILE_PROBLEM_PLATFORM_H
#define QUILTOOL_TOOLS_FILE_PROBLEM_PLATFORM_H

#include <string>

#include "file_problem.h"

namespace qt {
namespace file_problem {
namespace platform {

// Looks at the file (stat and a read-only open on Linux, its attributes and
// a read-only open on Windows), changing nothing.
qt_tool::FileProblem Diagnose(const std::string& utf8Path);

// The process holding a project database's write lock, 0 when unknown or
// none. Linux reads it from the record lock the database engine keeps on
// the file; Windows' byte-range locks do not tell, so it is always 0 there.
long DatabaseLockHolder(const std::string& utf8Path);

}  // namespace platform
}  // namespace file_problem
}  // namespace qt

#endif
