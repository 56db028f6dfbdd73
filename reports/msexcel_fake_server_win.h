// The test side of the stand-in spreadsheet server: registers it under the
// wrapper's ProgID in this Wine prefix, starts it as the running instance,
// reads its call log and tells whether its process is gone. One lane at a
// time: the class registration and the running-object table are shared by
// every test program of the run, so a named mutex serialises the tests.
#ifndef QUILTOOL_REPORTS_MSEXCEL_FAKE_SERVER_WIN_H
#define QUILTOOL_REPORTS_MSEXCEL_FAKE_SERVER_WIN_H

#include <windows.h>

#include <string>
#include <vector>

#include "message_recorder.h"
#include "qt_test.h"

namespace excel_test {

typedef qt_test::MessageRecorder Recorder;

class FakeServer {
 public:
  FakeServer();
  ~FakeServer();
  FakeServer(const FakeServer&) = delete;
  FakeServer& operator=(const FakeServer&) = delete;

  // COM starts the server with these extra switches (--fail-lookup=...).
  bool registerClass(const std::wstring& extraSwitches = L"");
  // The class is there but its server program is not.
  bool registerMissingServer();
  void unregister();
  // Starts the server as the running instance ("--active" or
  // "--active-plain") and waits until it is registered.
  bool startRunning(const wchar_t* mode, const std::wstring& extraSwitches = L"");

  std::vector<std::string> log() const;
  // The "call ..." lines from the line after `from` on.
  std::vector<std::string> calls(size_t from = 0) const;
  size_t logSize() const { return log().size(); }
  // Whether the last started server process has ended within timeoutMs.
  bool serverEnded(int timeoutMs = 10000) const;
  DWORD serverPid() const;

  std::wstring file(const char* name) const { return dir_.wfile(name); }
  std::string narrowFile(const char* name) const { return dir_.file(name); }

 private:
  bool writeClass(const std::wstring& command);
  std::wstring serverCommand(const std::wstring& extraSwitches) const;

  HANDLE lane_ = nullptr;
  qt_test::TempDir dir_;
  HKEY root_ = HKEY_CURRENT_USER;
  PROCESS_INFORMATION running_{};
};

}  // namespace excel_test

#endif
