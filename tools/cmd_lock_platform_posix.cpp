#include <fcntl.h>
#include <poll.h>
#include <pwd.h>
#include <sys/stat.h>
#include <signal.h>
#include <unistd.h>

#include <cerrno>
#include <vector>

#include "cmd_lock_platform.h"
#include "qn_utf.h"
#include "ustr.h"

namespace qt {
namespace cmd_lock {
namespace platform {

namespace {

const int kSignals[] = {SIGINT, SIGTERM, SIGHUP};
int g_pipe[2] = {-1, -1};
struct sigaction g_previous[3];

// The handler only writes a byte; everything else happens on the waiting
// thread, where it is safe to do.
void OnSignal(int) {
  const int saved = errno;
  const char byte = 1;
  if (write(g_pipe[1], &byte, 1) < 0) {
    // The pipe is full: an interruption is pending already.
  }
  errno = saved;
}

}  // namespace

bool Arm() {
  if (pipe2(g_pipe, O_CLOEXEC | O_NONBLOCK) != 0) return false;
  for (int i = 0; i < 3; ++i) {
    struct sigaction action = {};
    action.sa_handler = &OnSignal;
    sigemptyset(&action.sa_mask);
    sigaction(kSignals[i], &action, &g_previous[i]);
  }
  return true;
}

void Wait() {
  for (;;) {
    pollfd p = {g_pipe[0], POLLIN, 0};
    if (poll(&p, 1, -1) < 0 && errno != EINTR) return;
    char byte;
    if (read(g_pipe[0], &byte, 1) == 1) return;
  }
}

void Disarm() {
  for (int i = 0; i < 3; ++i) sigaction(kSignals[i], &g_previous[i], nullptr);
  close(g_pipe[0]);
  close(g_pipe[1]);
  g_pipe[0] = g_pipe[1] = -1;
}

void InterruptSelf() { kill(getpid(), SIGINT); }

std::wstring AccountName() {
  long size = sysconf(_SC_GETPW_R_SIZE_MAX);
  std::vector<char> buf(size > 0 ? static_cast<size_t>(size) : 16384);
  struct passwd pw;
  struct passwd* found = nullptr;
  if (getpwuid_r(geteuid(), &pw, buf.data(), buf.size(), &found) != 0 || !found) return std::wstring();
  return qn_utf8_to_wide(found->pw_name);
}

}  // namespace platform
}  // namespace cmd_lock
}  // namespace qt
