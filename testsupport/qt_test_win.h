// Window helpers for the Windows tests. Every test program of a run shares
// Wine's one desktop, so a test looks only at its own process's windows.
#ifndef QUILTOOL_QT_TEST_WIN_H
#define QUILTOOL_QT_TEST_WIN_H

#include <windows.h>

#include <cwchar>

namespace qt_test {

// The first top-level window of this process with that class and title.
inline HWND FindOwnWindow(const wchar_t* className, const wchar_t* title) {
  for (HWND w = FindWindowExW(nullptr, nullptr, className, title); w; w = FindWindowExW(nullptr, w, className, title)) {
    DWORD pid = 0;
    GetWindowThreadProcessId(w, &pid);
    if (pid == GetCurrentProcessId()) return w;
  }
  return nullptr;
}

}  // namespace qt_test

#endif
