// Driving windows as a person does, for the Windows tests: the messages a
// click, a double click, typing and a key press produce, sent straight to
// the window under the pointer so that a test does not depend on which
// window Wine's desktop has in front.
#ifndef QUILTOOL_UI_INPUT_WIN_H
#define QUILTOOL_UI_INPUT_WIN_H

#include <windows.h>

#include <string>

namespace qt_test {

// Handles this thread's pending messages, then keeps doing so for the
// given time (timers, posted paints, balloons that appear later).
void PumpMessages(int milliseconds = 0);

// Left button down and up at a point of the window's client area.
void ClickAt(HWND window, POINT client);
// Two clicks as the system reports a double click: down, up, double
// click, up.
void DoubleClickAt(HWND window, POINT client);
// One WM_CHAR per character, as typing on the keyboard gives.
void TypeText(HWND window, const wchar_t* text);
// Key down and up; Return, Escape and Tab also give their character,
// each step only while the window still exists (Enter may close it).
void PressKey(HWND window, UINT virtualKey);

POINT CenterOf(const RECT& rect);

// The first visible top-level window of this process with that class
// (tool tips, drop-down lists and balloons are top-level popups).
HWND FindOwnVisibleWindow(const wchar_t* className);

// A window's text through WM_GETTEXT.
std::wstring WindowText(HWND window);

// The first child of `parent` (any depth) with that class, or null.
HWND FindChildOfClass(HWND parent, const wchar_t* className);

}  // namespace qt_test

#endif
