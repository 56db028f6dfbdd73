#include <windows.h>

#include "cmd_lock_platform.h"

namespace qt {
namespace cmd_lock {
namespace platform {

namespace {

HANDLE g_interrupted = nullptr;
HANDLE g_released = nullptr;

// Runs on a thread of its own. For a closing console the process ends when
// the handler returns, so it waits for the lock to be given up first.
BOOL WINAPI OnConsoleEvent(DWORD) {
  SetEvent(g_interrupted);
  WaitForSingleObject(g_released, 4000);
  return TRUE;
}

DWORD WINAPI InterruptThread(LPVOID) {
  OnConsoleEvent(CTRL_C_EVENT);
  return 0;
}

}  // namespace

bool Arm() {
  g_interrupted = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  g_released = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  return g_interrupted && g_released && SetConsoleCtrlHandler(&OnConsoleEvent, TRUE);
}

void Wait() { WaitForSingleObject(g_interrupted, INFINITE); }

void Disarm() {
  SetConsoleCtrlHandler(&OnConsoleEvent, FALSE);
  SetEvent(g_released);
  // The events stay: a handler still running may look at them.
}

void InterruptSelf() {
  HANDLE thread = CreateThread(nullptr, 0, &InterruptThread, nullptr, 0, nullptr);
  if (thread) CloseHandle(thread);
}

// A left-behind file is opened anew by whoever takes the lock; its
// permissions are the folder's, which the lock's own message reports.
std::wstring AccountName() {
  wchar_t name[257];
  DWORD size = 257;
  return GetUserNameW(name, &size) ? std::wstring(name) : std::wstring();
}

}  // namespace platform
}  // namespace cmd_lock
}  // namespace qt
