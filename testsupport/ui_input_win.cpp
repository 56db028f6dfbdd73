// User input for the Windows tests.
#include "ui_input_win.h"

namespace qt_test {

namespace {

LPARAM PointParam(POINT p) { return MAKELPARAM(static_cast<WORD>(p.x), static_cast<WORD>(p.y)); }

struct ClassSearch {
  const wchar_t* className;
  HWND found;
};

BOOL CALLBACK MatchChild(HWND window, LPARAM data) {
  ClassSearch* search = reinterpret_cast<ClassSearch*>(data);
  wchar_t name[64] = {0};
  GetClassNameW(window, name, 64);
  if (lstrcmpiW(name, search->className) == 0) {
    search->found = window;
    return FALSE;
  }
  return TRUE;
}

BOOL CALLBACK MatchOwnTopLevel(HWND window, LPARAM data) {
  DWORD pid = 0;
  GetWindowThreadProcessId(window, &pid);
  if (pid != GetCurrentProcessId() || !IsWindowVisible(window)) return TRUE;
  return MatchChild(window, data);
}

}  // namespace

void PumpMessages(int milliseconds) {
  const DWORD end = GetTickCount() + static_cast<DWORD>(milliseconds);
  do {
    MSG msg;
    while (PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE)) {
      TranslateMessage(&msg);
      DispatchMessageW(&msg);
    }
    if (milliseconds > 0) Sleep(10);
  } while (static_cast<int>(end - GetTickCount()) > 0);
}

void ClickAt(HWND window, POINT client) {
  SendMessageW(window, WM_LBUTTONDOWN, MK_LBUTTON, PointParam(client));
  if (IsWindow(window)) SendMessageW(window, WM_LBUTTONUP, 0, PointParam(client));
  PumpMessages();
}

void DoubleClickAt(HWND window, POINT client) {
  SendMessageW(window, WM_LBUTTONDOWN, MK_LBUTTON, PointParam(client));
  if (IsWindow(window)) SendMessageW(window, WM_LBUTTONUP, 0, PointParam(client));
  if (IsWindow(window)) SendMessageW(window, WM_LBUTTONDBLCLK, MK_LBUTTON, PointParam(client));
  if (IsWindow(window)) SendMessageW(window, WM_LBUTTONUP, 0, PointParam(client));
  PumpMessages();
}

void TypeText(HWND window, const wchar_t* text) {
  for (const wchar_t* p = text; *p && IsWindow(window); ++p) SendMessageW(window, WM_CHAR, *p, 1);
  PumpMessages();
}

void PressKey(HWND window, UINT virtualKey) {
  SendMessageW(window, WM_KEYDOWN, virtualKey, 1);
  wchar_t character = 0;
  if (virtualKey == VK_RETURN) character = L'\r';
  if (virtualKey == VK_ESCAPE) character = 27;
  if (virtualKey == VK_TAB) character = L'\t';
  if (character && IsWindow(window)) SendMessageW(window, WM_CHAR, character, 1);
  if (IsWindow(window)) SendMessageW(window, WM_KEYUP, virtualKey, 0xC0000001);
  PumpMessages();
}

POINT CenterOf(const RECT& rect) { return POINT{(rect.left + rect.right) / 2, (rect.top + rect.bottom) / 2}; }

HWND FindOwnVisibleWindow(const wchar_t* className) {
  ClassSearch search{className, nullptr};
  EnumWindows(MatchOwnTopLevel, reinterpret_cast<LPARAM>(&search));
  return search.found;
}

std::wstring WindowText(HWND window) {
  const int length = static_cast<int>(SendMessageW(window, WM_GETTEXTLENGTH, 0, 0));
  std::wstring text(static_cast<size_t>(length) + 1, L'\0');
  SendMessageW(window, WM_GETTEXT, static_cast<WPARAM>(length + 1), reinterpret_cast<LPARAM>(&text[0]));
  text.resize(static_cast<size_t>(length));
  return text;
}

HWND FindChildOfClass(HWND parent, const wchar_t* className) {
  ClassSearch search{className, nullptr};
  EnumChildWindows(parent, MatchChild, reinterpret_cast<LPARAM>(&search));
  return search.found;
}

}  // namespace qt_test
