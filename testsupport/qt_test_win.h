// Window helpers for the Windows tests. Every test program of a run shares
// Wine's one desktop, so a test looks only at its own process's windows.
#ifndef QUILTOOL_QT_TEST_WIN_H
#define QUILTOOL_QT_TEST_WIN_H

#include <windows.h>

#include <cwchar>
#include <string>
#include <thread>

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

// What a watcher read from a message box.
struct SeenBox {
  bool found = false;
  std::wstring caption;
  std::wstring text;
};

// Waits (up to 15 s) on its own thread for a dialog-class window of this
// process with this caption, reads its caption and text and presses the
// button `button`, as a person would.
inline std::thread PressWhenShown(const wchar_t* caption, int button, SeenBox* seen) {
  return std::thread([=] {
    for (int i = 0; i < 300 && !seen->found; ++i) {
      HWND box = FindOwnWindow(L"#32770", caption);
      if (!box) {
        Sleep(50);
        continue;
      }
      wchar_t buffer[512];
      GetWindowTextW(box, buffer, 512);
      seen->caption = buffer;
      // A message box's text is its static control 0xFFFF.
      GetDlgItemTextW(box, 0xFFFF, buffer, 512);
      seen->text = buffer;
      seen->found = true;
      PostMessageW(box, WM_COMMAND, MAKEWPARAM(button, BN_CLICKED), reinterpret_cast<LPARAM>(GetDlgItem(box, button)));
    }
  });
}

}  // namespace qt_test

#endif
