// Pens and brushes of the system colours behind the graphics-object cache
// (gdi_platform_win.cpp / gdi_platform_posix.cpp).
#ifndef QUILTOOL_CORE_GDI_PLATFORM_H
#define QUILTOOL_CORE_GDI_PLATFORM_H

#include "gwframe.h"

namespace qt {
namespace gdi {
namespace platform {

// Windows: CreatePen(PS_SOLID, 1, GetSysColor(index)) and
// CreateSolidBrush(GetSysColor(index)). Linux has no graphics system: each
// object is a distinct heap token carrying its colour index, so that the
// cache's rules (one object per index, all freed together) hold alike.
HPEN CreateSysColorPen(int sysColorIndex);
HBRUSH CreateSysColorBrush(int sysColorIndex);
// DeleteObject; null is ignored on both targets.
void DeleteGraphicsObject(void* object);

}  // namespace platform
}  // namespace gdi
}  // namespace qt

#endif
