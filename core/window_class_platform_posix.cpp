#include "core/window_class_platform.h"

namespace qt {
namespace window_class {
namespace platform {

void RegisterListHeaderClass(HMODULE) {}

}  // namespace platform
}  // namespace window_class
}  // namespace qt
