#include "reports/msexcel_fake_server_win.h"

#include <ole2.h>

#include <sstream>

#include "reports/fake_excel/fake_excel_ids.h"

namespace excel_test {

namespace {

const wchar_t kClassesKey[] = L"Software\\Classes\\";

std::wstring ClassIdText() {
  wchar_t text[64];
  StringFromGUID2(fake_excel::kClassId, text, 64);
  return text;
}

bool SetDefault(HKEY root, const std::wstring& key, const std::wstring& value) {
  HKEY k = nullptr;
  if (RegCreateKeyExW(root, key.c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, &k, nullptr) != ERROR_SUCCESS) return false;
  const LONG rc = RegSetValueExW(k, nullptr, 0, REG_SZ, reinterpret_cast<const BYTE*>(value.c_str()),
                                 static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t)));
  RegCloseKey(k);
  return rc == ERROR_SUCCESS;
}

bool ResolvesToFake() {
  CLSID found;
  return SUCCEEDED(CLSIDFromProgID(L"Excel.Application", &found)) && IsEqualCLSID(found, fake_excel::kClassId);
}

// Local servers and the running-object table live in the prefix's COM
// service. Its first start in a fresh Wine session is slow on a loaded
// machine, and the service manager may restart it once, which forgets every
// registration made before; activation then hangs for minutes. The tests
// start once it has run under one process for a few seconds.
void WaitForComService() {
  SC_HANDLE manager = OpenSCManagerW(nullptr, nullptr, SC_MANAGER_CONNECT);
  if (!manager) return;
  SC_HANDLE service = OpenServiceW(manager, L"RpcSs", SERVICE_QUERY_STATUS | SERVICE_START);
  if (service) {
    DWORD stableSince = 0, process = 0;
    for (int i = 0; i < 240; ++i) {
      SERVICE_STATUS_PROCESS status{};
      DWORD needed = 0;
      if (!QueryServiceStatusEx(service, SC_STATUS_PROCESS_INFO, reinterpret_cast<BYTE*>(&status), sizeof status,
                                &needed)) {
        break;
      }
      if (status.dwCurrentState == SERVICE_STOPPED) StartServiceW(service, 0, nullptr);
      if (status.dwCurrentState != SERVICE_RUNNING || status.dwProcessId != process) {
        process = status.dwCurrentState == SERVICE_RUNNING ? status.dwProcessId : 0;
        stableSince = GetTickCount();
      } else if (GetTickCount() - stableSince >= 3000) {
        break;
      }
      Sleep(250);
    }
    CloseServiceHandle(service);
  }
  CloseServiceHandle(manager);
}

}  // namespace

FakeServer::FakeServer() {
  lane_ = CreateMutexW(nullptr, FALSE, L"QuilToolSpreadsheetAutomationTests");
  if (lane_) WaitForSingleObject(lane_, 120000);
  WaitForComService();
  unregister();
}

FakeServer::~FakeServer() {
  if (running_.hProcess) {
    // Asked to stop, the server revokes its running registration itself.
    PostThreadMessageW(running_.dwThreadId, WM_QUIT, 0, 0);
    if (WaitForSingleObject(running_.hProcess, 10000) != WAIT_OBJECT_0) TerminateProcess(running_.hProcess, 9);
    CloseHandle(running_.hProcess);
    CloseHandle(running_.hThread);
  }
  unregister();
  if (lane_) {
    ReleaseMutex(lane_);
    CloseHandle(lane_);
  }
}

std::wstring FakeServer::serverCommand(const std::wstring& extraSwitches) const {
  const std::wstring self = qt_test::Widen(qt_test::SelfPath());
  const std::wstring exe = self.substr(0, self.find_last_of(L"\\/") + 1) + fake_excel::kExecutable;
  std::wstring command = L"\"" + exe + L"\" \"--log=" + file("calls.log") + L"\"";
  if (!extraSwitches.empty()) command += L" " + extraSwitches;
  return command;
}

bool FakeServer::writeClass(const std::wstring& command) {
  const std::wstring id = ClassIdText();
  // A registration left in the other root would answer the look-up instead.
  unregister();
  // The user's own classes are enough where the component library reads
  // them (Wine's reads the machine's only); otherwise the machine's, which
  // this run's private prefix owns.
  for (HKEY root : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE}) {
    root_ = root;
    if (!SetDefault(root, std::wstring(kClassesKey) + L"Excel.Application\\CLSID", id)) continue;
    if (!SetDefault(root, std::wstring(kClassesKey) + L"CLSID\\" + id + L"\\LocalServer32", command)) continue;
    if (ResolvesToFake()) return true;
    unregister();
  }
  return false;
}

bool FakeServer::registerClass(const std::wstring& extraSwitches) { return writeClass(serverCommand(extraSwitches)); }

bool FakeServer::registerMissingServer() {
  return writeClass(L"\"" + file("no_such_server.exe") + L"\"");
}

void FakeServer::unregister() {
  for (HKEY root : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE}) {
    RegDeleteTreeW(root, (std::wstring(kClassesKey) + L"Excel.Application").c_str());
    RegDeleteTreeW(root, (std::wstring(kClassesKey) + L"CLSID\\" + ClassIdText()).c_str());
  }
}

bool FakeServer::startRunning(const wchar_t* mode, const std::wstring& extraSwitches) {
  std::wstring command = serverCommand(extraSwitches) + L" " + mode;
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  if (!CreateProcessW(nullptr, &command[0], nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &running_)) {
    return false;
  }
  for (int i = 0; i < 200; ++i) {
    for (const std::string& line : log()) {
      if (line == "ready") return true;
      if (line == "registration failed") return false;
    }
    Sleep(50);
  }
  return false;
}

std::vector<std::string> FakeServer::log() const {
  std::vector<std::string> lines;
  std::istringstream in(qt_test::ReadFileBytes(narrowFile("calls.log")));
  std::string line;
  while (std::getline(in, line)) lines.push_back(line);
  return lines;
}

std::vector<std::string> FakeServer::calls(size_t from) const {
  std::vector<std::string> lines = log();
  std::vector<std::string> out;
  for (size_t i = from; i < lines.size(); ++i) {
    if (lines[i].compare(0, 5, "call ") == 0) out.push_back(lines[i].substr(5));
  }
  return out;
}

DWORD FakeServer::serverPid() const {
  DWORD pid = 0;
  for (const std::string& line : log()) {
    if (line.compare(0, 6, "start ") == 0) pid = static_cast<DWORD>(std::stoul(line.substr(6)));
  }
  return pid;
}

bool FakeServer::serverEnded(int timeoutMs) const {
  const DWORD pid = serverPid();
  if (!pid) return false;
  HANDLE process = OpenProcess(SYNCHRONIZE, FALSE, pid);
  if (!process) return true;
  const bool ended = WaitForSingleObject(process, static_cast<DWORD>(timeoutMs)) == WAIT_OBJECT_0;
  CloseHandle(process);
  return ended;
}

}  // namespace excel_test
