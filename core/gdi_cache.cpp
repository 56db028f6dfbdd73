// Shared pens and brushes in system colours, at most 20 of each.
#include "core/gdi_platform.h"

namespace {

const int kCacheSize = 20;

template <class H>
struct Cache {
  struct Entry {
    int color;
    H object;
  };
  Entry entries[kCacheSize];
  short count = 0;

  template <class Create>
  H get(int color, Create create) {
    for (short i = 0; i < count; ++i) {
      if (entries[i].color == color) return entries[i].object;
    }
    // The cap is deliberate: the twentieth object stands in for any further colour.
    if (count >= kCacheSize) return entries[kCacheSize - 1].object;
    H object = create(color);
    entries[count].color = color;
    entries[count].object = object;
    ++count;
    return object;
  }

  void release() {
    for (short i = 0; i < count; ++i) qt::gdi::platform::DeleteGraphicsObject(entries[i].object);
    count = 0;
  }
};

Cache<HPEN>& Pens() {
  static Cache<HPEN> pens;
  return pens;
}
Cache<HBRUSH>& Brushes() {
  static Cache<HBRUSH> brushes;
  return brushes;
}

}  // namespace

HPEN gwpen(int sysColorIndex) { return Pens().get(sysColorIndex, qt::gdi::platform::CreateSysColorPen); }

HBRUSH gwbrush(int sysColorIndex) { return Brushes().get(sysColorIndex, qt::gdi::platform::CreateSysColorBrush); }

void gwrelease() {
  Pens().release();
  Brushes().release();
}
