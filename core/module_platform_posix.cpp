#ifndef _GNU_SOURCE
#define _GNU_SOURCE
#endif
#include <dlfcn.h>
#include <link.h>
#include <limits.h>
#include <unistd.h>

#include "core/module_platform.h"

namespace qt {
namespace module {
namespace platform {

namespace {

// In glibc a dlopen() handle is the object's link map. A handle that is not
// in the process's chain of link maps is no module, and is never looked into.
struct link_map* LinkMapOf(void* handle) {
  void* self = dlopen(nullptr, RTLD_LAZY | RTLD_NOLOAD);
  struct link_map* map = nullptr;
  if (!self || dlinfo(self, RTLD_DI_LINKMAP, &map) != 0) map = nullptr;
  if (self) dlclose(self);
  while (map && map->l_prev) map = map->l_prev;
  for (; map; map = map->l_next) {
    if (static_cast<void*>(map) == handle) return map;
  }
  return nullptr;
}

}  // namespace

bool ModuleFileName(HMODULE module, std::wstring* name) {
  struct link_map* map = LinkMapOf(static_cast<void*>(module));
  if (!map) return false;
  std::string path = map->l_name ? map->l_name : "";
  if (path.empty()) {
    // The main program's link map has no name.
    char exe[PATH_MAX];
    const ssize_t n = readlink("/proc/self/exe", exe, sizeof exe - 1);
    if (n <= 0) return false;
    path.assign(exe, static_cast<size_t>(n));
  }
  // The converter answers empty text only when memory ran out.
  *name = qn_ansi_to_wide(path.c_str());
  return !name->empty();
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

}  // namespace platform
}  // namespace module
}  // namespace qt
