#include "file_problem.h"

#include "file_problem_platform.h"

namespace qt_tool {

const char* FileProblemText(FileProblem problem) {
  switch (problem) {
    case FileProblem::None: return "";
    case FileProblem::NotFound: return "no such file";
    case FileProblem::NoPermission: return "permission denied";
    case FileProblem::IsDirectory: return "it is a folder, not a file";
    case FileProblem::InUse: return "another process has it open and shares it with nobody";
    case FileProblem::Other: return "the system refuses to open it";
  }
  return "";
}

FileProblem DiagnoseFile(const std::string& path) { return qt::file_problem::platform::Diagnose(path); }

std::string CannotRead(const std::string& path) {
  const FileProblem problem = DiagnoseFile(path);
  std::string text = path + ": cannot read the file";
  if (problem != FileProblem::None) text += std::string(": ") + FileProblemText(problem);
  return text;
}

}  // namespace qt_tool
