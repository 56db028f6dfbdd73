#include <windows.h>

#include "core/gdi_platform.h"

namespace qt {
namespace gdi {
namespace platform {

HPEN CreateSysColorPen(int sysColorIndex) { return CreatePen(PS_SOLID, 1, GetSysColor(sysColorIndex)); }

HBRUSH CreateSysColorBrush(int sysColorIndex) { return CreateSolidBrush(GetSysColor(sysColorIndex)); }

void DeleteGraphicsObject(void* object) {
  if (object) DeleteObject(static_cast<HGDIOBJ>(object));
}

}  // namespace platform
}  // namespace gdi
}  // namespace qt
