// The frame's one seam to the operating system. Each function has a
// Windows implementation (*_win.cpp, the Win32 call named beside it) and a
// Linux one (*_posix.cpp); the build picks the file. Portable code calls
// only these.
#ifndef QUILTOOL_CORE_PLATFORM_H
#define QUILTOOL_CORE_PLATFORM_H

#include <cstddef>
#include <string>

#include "gwframe.h"
#include "qn_presenter.h"

namespace qt {
namespace platform {

// --- modules (module_*.cpp) ---
// Full file name of a loaded module (GetModuleFileNameW); false when the
// platform cannot tell. Linux: the path of a dlopen() handle via dlinfo.
bool ModuleFileName(HMODULE module, std::wstring* name);
// A loaded module by file name, null when none (GetModuleHandleW).
// Linux: dlopen(name, RTLD_NOLOAD).
HMODULE LoadedModule(const wchar_t* name);
// Directory separator of module file names: '\\' on Windows, '/' on Linux.
wchar_t PathSeparator();

// --- message boxes (msgbox_*.cpp) ---
// The default presenter: MessageBoxW / MessageBoxA on Windows, the
// terminal on Linux.
QnMessagePresenter& DefaultPresenter();
// The window that has the keyboard focus (GetFocus) and giving it back
// (SetFocus when the window still exists and lost the focus).
HWND FocusedWindow();
void RestoreFocus(HWND previous);

// --- graphics objects (gdi_*.cpp) ---
HPEN CreateSysColorPen(int sysColorIndex);     // CreatePen(PS_SOLID, 1, GetSysColor)
HBRUSH CreateSysColorBrush(int sysColorIndex); // CreateSolidBrush(GetSysColor)
void DeleteGraphicsObject(void* object);       // DeleteObject

// --- window classes (module_*.cpp) ---
void RegisterListHeaderClass(HMODULE instance);

}  // namespace platform
}  // namespace qt

#endif
