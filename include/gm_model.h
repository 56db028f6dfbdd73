// The geometry model of the imported geometry library, as far as this
// library reads it. The geometry library owns the real layout; the only part
// relied on here is that the item count is its third 32-bit field.
#ifndef QUILTOOL_GM_MODEL_H
#define QUILTOOL_GM_MODEL_H

#include <stdint.h>

struct gm_model {
  int32_t header[2];  // owned by the geometry library, not read here
  int32_t itemCount;
  // Further fields follow in the real type; never allocate a gm_model here.
};

#endif
