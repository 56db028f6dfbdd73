#include <fcntl.h>
#include <limits.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <thread>

#include "child_process_platform.h"

namespace qt_test {

struct ChildProcess::Impl {
  pid_t pid = -1;
  int toChild = -1;
  int fromChild = -1;
  int exitCode = -1;
  bool reaped = false;
};

ChildProcess::ChildProcess() : impl_(new Impl) {}

ChildProcess::~ChildProcess() {
  if (running()) kill();
  if (impl_->toChild >= 0) close(impl_->toChild);
  if (impl_->fromChild >= 0) close(impl_->fromChild);
}

unsigned long child_process::platform::ProcessId() { return static_cast<unsigned long>(getpid()); }

void SetEnv(const char* name, const std::string& value) { setenv(name, value.c_str(), 1); }

std::string SelfPath() {
  char buf[PATH_MAX];
  const ssize_t n = readlink("/proc/self/exe", buf, sizeof buf - 1);
  return n > 0 ? std::string(buf, static_cast<size_t>(n)) : std::string();
}

bool ChildProcess::start(const std::string& name, const std::vector<std::string>& args) {
  int in[2], out[2];
  if (pipe2(in, O_CLOEXEC) != 0) return false;
  if (pipe2(out, O_CLOEXEC) != 0) {
    close(in[0]);
    close(in[1]);
    return false;
  }
  const std::string self = SelfPath();
  std::vector<std::string> argvStore{self, "--qt-child=" + name};
  argvStore.insert(argvStore.end(), args.begin(), args.end());
  std::vector<char*> argv;
  for (auto& a : argvStore) argv.push_back(&a[0]);
  argv.push_back(nullptr);

  const pid_t pid = fork();
  if (pid < 0) return false;
  if (pid == 0) {
    dup2(in[0], 0);
    dup2(out[1], 1);
    execv(self.c_str(), argv.data());
    _exit(126);
  }
  close(in[0]);
  close(out[1]);
  impl_->pid = pid;
  impl_->toChild = in[1];
  impl_->fromChild = out[0];
  impl_->reaped = false;
  return true;
}

int child_process::platform::ReadSome(ChildProcess::Impl* impl, std::string* out, int timeoutMs) {
  if (impl->fromChild < 0) return -1;
  pollfd p{impl->fromChild, POLLIN, 0};
  const int ready = poll(&p, 1, timeoutMs);
  if (ready == 0) return 0;
  if (ready < 0) return errno == EINTR ? 0 : -1;
  char buf[4096];
  const ssize_t n = read(impl->fromChild, buf, sizeof buf);
  if (n <= 0) return -1;
  out->append(buf, static_cast<size_t>(n));
  return static_cast<int>(n);
}

bool ChildProcess::writeLine(const std::string& line) {
  if (impl_->toChild < 0) return false;
  const std::string data = line + "\n";
  return write(impl_->toChild, data.data(), data.size()) == static_cast<ssize_t>(data.size());
}

int ChildProcess::wait(int timeoutMs) {
  if (impl_->pid < 0) return -1;
  if (impl_->reaped) return impl_->exitCode;
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
  for (;;) {
    int status = 0;
    const pid_t r = waitpid(impl_->pid, &status, WNOHANG);
    if (r == impl_->pid) {
      impl_->reaped = true;
      impl_->exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
      return impl_->exitCode;
    }
    if (r < 0) return -1;
    if (std::chrono::steady_clock::now() >= deadline) return -1;
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
}

void ChildProcess::kill() {
  if (impl_->pid < 0 || impl_->reaped) return;
  ::kill(impl_->pid, SIGKILL);
  wait(10000);
}

bool ChildProcess::running() const {
  if (impl_->pid < 0 || impl_->reaped) return false;
  int status = 0;
  if (waitpid(impl_->pid, &status, WNOHANG) != impl_->pid) return true;
  // Gone: keep its exit code for wait().
  impl_->reaped = true;
  impl_->exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  return false;
}

}  // namespace qt_test
