#include <windows.h>

#include <cstdlib>

#include <chrono>
#include <thread>

#include "child_process_platform.h"

namespace qt_test {

struct ChildProcess::Impl {
  HANDLE process = nullptr;
  HANDLE toChild = nullptr;
  HANDLE fromChild = nullptr;
};

ChildProcess::ChildProcess() : impl_(new Impl) {}

ChildProcess::~ChildProcess() {
  if (running()) kill();
  if (impl_->toChild) CloseHandle(impl_->toChild);
  if (impl_->fromChild) CloseHandle(impl_->fromChild);
  if (impl_->process) CloseHandle(impl_->process);
}

unsigned long child_process::platform::ProcessId() { return GetCurrentProcessId(); }

void SetEnv(const char* name, const std::string& value) { _putenv_s(name, value.c_str()); }

std::string SelfPath() {
  wchar_t buf[MAX_PATH * 4];
  const DWORD n = GetModuleFileNameW(nullptr, buf, static_cast<DWORD>(sizeof buf / sizeof buf[0]));
  return Narrow(std::wstring(buf, n));
}

namespace {

std::wstring Quote(const std::wstring& arg) {
  std::wstring q = L"\"";
  for (wchar_t c : arg) {
    if (c == L'"') q += L'\\';
    q += c;
  }
  return q + L"\"";
}

}  // namespace

bool ChildProcess::start(const std::string& name, const std::vector<std::string>& args) {
  SECURITY_ATTRIBUTES sa{sizeof sa, nullptr, TRUE};
  HANDLE inRead, inWrite, outRead, outWrite;
  if (!CreatePipe(&inRead, &inWrite, &sa, 0)) return false;
  if (!CreatePipe(&outRead, &outWrite, &sa, 0)) {
    CloseHandle(inRead);
    CloseHandle(inWrite);
    return false;
  }
  SetHandleInformation(inWrite, HANDLE_FLAG_INHERIT, 0);
  SetHandleInformation(outRead, HANDLE_FLAG_INHERIT, 0);

  const std::wstring self = Widen(SelfPath());
  std::wstring cmd = Quote(self) + L" " + Quote(Widen("--qt-child=" + name));
  for (const auto& a : args) cmd += L" " + Quote(Widen(a));

  STARTUPINFOW si{};
  si.cb = sizeof si;
  si.dwFlags = STARTF_USESTDHANDLES;
  si.hStdInput = inRead;
  si.hStdOutput = outWrite;
  si.hStdError = GetStdHandle(STD_ERROR_HANDLE);
  PROCESS_INFORMATION pi{};
  const BOOL ok = CreateProcessW(self.c_str(), &cmd[0], nullptr, nullptr, TRUE, 0, nullptr, nullptr, &si, &pi);
  CloseHandle(inRead);
  CloseHandle(outWrite);
  if (!ok) {
    CloseHandle(inWrite);
    CloseHandle(outRead);
    return false;
  }
  CloseHandle(pi.hThread);
  impl_->process = pi.hProcess;
  impl_->toChild = inWrite;
  impl_->fromChild = outRead;
  return true;
}

int child_process::platform::ReadSome(ChildProcess::Impl* impl, std::string* out, int timeoutMs) {
  // Anonymous pipes have no timed read: poll for data.
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
  for (;;) {
    DWORD available = 0;
    if (!PeekNamedPipe(impl->fromChild, nullptr, 0, nullptr, &available, nullptr)) return -1;
    if (available > 0) {
      char buf[4096];
      DWORD got = 0;
      if (!ReadFile(impl->fromChild, buf, available < sizeof buf ? available : sizeof buf, &got, nullptr) || got == 0) return -1;
      out->append(buf, got);
      return static_cast<int>(got);
    }
    if (std::chrono::steady_clock::now() >= deadline) return 0;
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
}

bool ChildProcess::writeLine(const std::string& line) {
  if (!impl_->toChild) return false;
  const std::string data = line + "\n";
  DWORD written = 0;
  return WriteFile(impl_->toChild, data.data(), static_cast<DWORD>(data.size()), &written, nullptr) && written == data.size();
}

int ChildProcess::wait(int timeoutMs) {
  if (!impl_->process) return -1;
  if (WaitForSingleObject(impl_->process, static_cast<DWORD>(timeoutMs)) != WAIT_OBJECT_0) return -1;
  DWORD code = 0;
  GetExitCodeProcess(impl_->process, &code);
  return static_cast<int>(code);
}

void ChildProcess::kill() {
  if (!impl_->process || !running()) return;
  TerminateProcess(impl_->process, 137);
  WaitForSingleObject(impl_->process, 10000);
}

bool ChildProcess::running() const {
  return impl_->process && WaitForSingleObject(impl_->process, 0) == WAIT_TIMEOUT;
}

}  // namespace qt_test
