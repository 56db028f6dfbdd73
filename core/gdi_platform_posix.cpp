// No graphics system: pens and brushes are opaque tokens that carry their
// colour index, so the caching rules behave as on Windows.
#include <cstdint>

#include "core/gdi_platform.h"

namespace qt {
namespace gdi {
namespace platform {

namespace {
struct Token {
  int kind;
  int color;
};
}  // namespace

HPEN CreateSysColorPen(int sysColorIndex) { return reinterpret_cast<HPEN>(new Token{1, sysColorIndex}); }

HBRUSH CreateSysColorBrush(int sysColorIndex) { return reinterpret_cast<HBRUSH>(new Token{2, sysColorIndex}); }

void DeleteGraphicsObject(void* object) { delete static_cast<Token*>(object); }

}  // namespace platform
}  // namespace gdi
}  // namespace qt
