// Platform step of the module bridge: finding a loaded module by file name
// and an export by name, never loading anything
// (interapp_platform_win.cpp / interapp_platform_posix.cpp).
#ifndef QUILTOOL_PROJECT_INTERAPP_PLATFORM_H
#define QUILTOOL_PROJECT_INTERAPP_PLATFORM_H

#include "core/call_table.h"

namespace qt {
namespace interapp {
namespace platform {

// The module of that file name if the process has it loaded, else null.
// Windows: GetModuleHandleW for a wide name, GetModuleHandleA for an
// 8-bit one (the name converted through the ANSI code page), exactly as
// the modules' own callers look them up; no reference is counted.
// Linux: dlopen(name, RTLD_NOLOAD | RTLD_LAZY), matched against the file
// names and SONAMEs of loaded objects, and its counted reference given
// back at once, so the module stays loaded by its owner alone. The two
// look-ups are the same call there.
//
// Address of an export, null when the module lacks it.
// Windows: GetProcAddress. Linux: dlsym.
//
// Tests can stand in for either step, to see what the bridge asks of the
// system and to make a loaded module look absent.
struct Calls {
  void* (*loadedModule)(const wchar_t* fileName, bool wideName);
  void* (*findExport)(void* module, const char* exportName);
};

// The system's own steps.
const Calls& SystemCalls();
// The table in use, and the override tests change it through.
inline Calls& CurrentCalls() { return CallTable<Calls, &SystemCalls>::Current(); }
typedef CallTable<Calls, &SystemCalls>::Override CallsOverride;

}  // namespace platform
}  // namespace interapp
}  // namespace qt

#endif
