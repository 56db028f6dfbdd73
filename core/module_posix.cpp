#ifndef _GNU_SOURCE
#define _GNU_SOURCE
#endif
#include <dlfcn.h>
#include <link.h>
#include <limits.h>
#include <unistd.h>

#include "core/frame_state.h"
#include "core/platform.h"

namespace qt {
namespace platform {

bool ModuleFileName(HMODULE module, std::wstring* name) {
  void* handle = module ? static_cast<void*>(module) : static_cast<void*>(Frame().instance);
  if (!handle) return false;
  struct link_map* map = nullptr;
  if (dlinfo(handle, RTLD_DI_LINKMAP, &map) != 0 || !map) return false;
  std::string path = map->l_name ? map->l_name : "";
  if (path.empty()) {
    // The main program's link map has no name.
    char exe[PATH_MAX];
    const ssize_t n = readlink("/proc/self/exe", exe, sizeof exe - 1);
    if (n <= 0) return false;
    path.assign(exe, static_cast<size_t>(n));
  }
  *name = qn_ansi_to_wide(path.c_str());
  return true;
}

HMODULE LoadedModule(const wchar_t* name) {
  if (!name) return nullptr;
  const std::string file = qn_wide_to_ansi(name);
  void* handle = dlopen(file.c_str(), RTLD_LAZY | RTLD_NOLOAD);
  // NOLOAD still counts a reference; the module stays loaded by its owner.
  if (handle) dlclose(handle);
  return static_cast<HMODULE>(handle);
}

wchar_t PathSeparator() { return L'/'; }

void RegisterListHeaderClass(HMODULE) {}

}  // namespace platform
}  // namespace qt
