// Programs built with the library's objects inside (the test programs, the
// quiltool command) do not load the shared object, so its constructor never
// runs: the frame attaches to the program itself, whose folder then serves
// as the library's folder. Nothing is detached: the process ends.
#include <dlfcn.h>

#include "core/frame_state.h"

namespace {

HMODULE ProgramHandle() {
  // The program's own handle stays valid for the life of the process; the
  // reference dlopen counts is given back at once.
  void* handle = dlopen(nullptr, RTLD_LAZY);
  if (handle) dlclose(handle);
  return static_cast<HMODULE>(handle);
}

struct ProgramAttach {
  ProgramAttach() { qt::ProcessAttach(ProgramHandle()); }
};
const ProgramAttach attach;

}  // namespace
