// The shared object's constructor and destructor take the place of DllMain.
#ifndef _GNU_SOURCE
#define _GNU_SOURCE
#endif
#include <dlfcn.h>

#include "core/frame_state.h"

namespace {

HMODULE OwnHandle() {
  Dl_info info{};
  if (!dladdr(reinterpret_cast<void*>(&OwnHandle), &info) || !info.dli_fname) return nullptr;
  void* handle = dlopen(info.dli_fname, RTLD_LAZY | RTLD_NOLOAD);
  if (handle) dlclose(handle);  // loaded already; keep no extra reference
  return static_cast<HMODULE>(handle);
}

__attribute__((constructor)) void QuilToolAttach() { qt::ProcessAttach(OwnHandle()); }
__attribute__((destructor)) void QuilToolDetach() { qt::ProcessDetach(); }

}  // namespace
