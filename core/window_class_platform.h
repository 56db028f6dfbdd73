// Window classes the library registers for its module when it is loaded
// (window_class_platform_win.cpp / window_class_platform_posix.cpp).
#ifndef QUILTOOL_CORE_WINDOW_CLASS_PLATFORM_H
#define QUILTOOL_CORE_WINDOW_CLASS_PLATFORM_H

#include "gwframe.h"

namespace qt {
namespace window_class {
namespace platform {

// The list header class "GWLBHEADER" (RegisterClassW; a class already
// registered is no error). Linux has no windows and registers nothing.
void RegisterListHeaderClass(HMODULE instance);

}  // namespace platform
}  // namespace window_class
}  // namespace qt

#endif
