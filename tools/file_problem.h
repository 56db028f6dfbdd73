// Why a file the quiltool program was given cannot be used, in words a
// user can act on, for when the library only says that it failed.
#ifndef QUILTOOL_TOOLS_FILE_PROBLEM_H
#define QUILTOOL_TOOLS_FILE_PROBLEM_H

#include <string>

namespace qt_tool {

enum class FileProblem {
  None,          // the file is there and can be opened for reading
  NotFound,      // neither it nor (maybe) its folder exists
  NoPermission,  // this account may not read it or look into its folder
  IsDirectory,
  InUse,         // another process keeps it from being opened (Windows)
  Other,         // it cannot be opened, for a reason not listed here
};

// "no such file", "permission denied", ...; empty for None.
const char* FileProblemText(FileProblem problem);

// The reason a file named by UTF-8 cannot be read; None when it can.
FileProblem DiagnoseFile(const std::string& path);

// "PATH: cannot read the file: REASON" or, when nothing is wrong with the
// file itself, "PATH: cannot read the file".
std::string CannotRead(const std::string& path);

}  // namespace qt_tool

#endif
