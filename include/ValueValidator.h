// Value ranges that a grid column checks an edited value against, and the
// messages a rejected value is shown with.
#ifndef QUILTOOL_VALUEVALIDATOR_H
#define QUILTOOL_VALUEVALIDATOR_H

#include "quiltool_export.h"
#include "ustr.h"

namespace ValueValidator {

// The accepted range of a column's values. Integer cells are checked
// against the integer bounds, floating cells against the floating ones;
// either bound may be absent.
struct Range {
  enum Flags {
    NoLowerBound = 1,  // bit 0
    NoUpperBound = 2   // bit 1
  };
  int flags = 0;
  int lowerInt = 0;
  int upperInt = 0;
  double lowerDouble = 0.0;
  double upperDouble = 0.0;
  ustr message;  // shown instead of the built text when not empty

  bool hasLowerBound() const { return (flags & NoLowerBound) == 0; }
  bool hasUpperBound() const { return (flags & NoUpperBound) == 0; }
};

}  // namespace ValueValidator

#endif
