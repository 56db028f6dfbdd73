#include "reports/report_platform.h"

#include <spawn.h>
#include <sys/wait.h>

#include <cstdlib>
#include <thread>

#include "qn_utf.h"
#include "reports/report_template_data.h"

extern char** environ;

namespace qt {
namespace report {
namespace platform {

namespace {

HWND ForegroundWindow() { return nullptr; }

bool AskSaveName(HWND, const std::wstring&, const std::wstring&, std::wstring*) { return false; }

bool HasDesktop() {
  const char* x = std::getenv("DISPLAY");
  const char* wayland = std::getenv("WAYLAND_DISPLAY");
  return (x && *x) || (wayland && *wayland);
}

// Without a desktop there is nobody to show the file to, and xdg-open
// would fall back to a terminal browser or fail noisily.
void OpenWithDesktop(const std::wstring& path) {
  if (!HasDesktop()) return;
  std::string file = qn_wide_to_utf8(path.c_str(), path.size());
  char program[] = "xdg-open";
  char* argv[] = {program, &file[0], nullptr};
  pid_t pid = 0;
  if (posix_spawnp(&pid, program, nullptr, nullptr, argv, environ) != 0) return;
  // xdg-open may wait for the program it starts; the caller must not.
  std::thread([pid]() {
    int status = 0;
    waitpid(pid, &status, 0);
  }).detach();
}

bool LoadTemplate(std::string* bytes) {
  bytes->assign(reinterpret_cast<const char*>(kReportTemplate), kReportTemplateSize);
  return true;
}

}  // namespace

const Calls& SystemCalls() {
  static const Calls calls = {&ForegroundWindow, &AskSaveName, &OpenWithDesktop, &OpenWithDesktop, &LoadTemplate};
  return calls;
}

}  // namespace platform
}  // namespace report
}  // namespace qt
