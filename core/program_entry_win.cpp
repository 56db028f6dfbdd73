// Programs built with the library's objects inside (the test programs, the
// quiltool command) have no DllMain of the library: the frame attaches to
// the program itself, whose folder then serves as the library's folder and
// whose resources as its resources. Nothing is detached: the process ends.
#include <windows.h>

#include "core/frame_state.h"

namespace {

struct ProgramAttach {
  ProgramAttach() { qt::ProcessAttach(GetModuleHandleW(nullptr)); }
};
const ProgramAttach attach;

}  // namespace
