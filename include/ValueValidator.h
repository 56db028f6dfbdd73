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

  // Whether a value lies within the bounds that are present, both
  // inclusive. A floating value that is not a number lies within no bound.
  bool accepts(int value) const {
    return (!hasLowerBound() || value >= lowerInt) && (!hasUpperBound() || value <= upperInt);
  }
  bool accepts(double value) const {
    return (!hasLowerBound() || value >= lowerDouble) && (!hasUpperBound() || value <= upperDouble);
  }
};

// The reasons, besides the range, that an edited value is turned down.
enum Rejection {
  InvalidValue = 1,
  ValueAlreadyUsed = 2,
  ValueEmpty = 3,
  InvalidCharacters = 4
};

// The text shown for a value outside the range: the range's own message,
// else "Valid value range: <lower> ... <upper>." with each bound only when
// present. floating picks the floating bounds, written with `decimals`
// digits after the point (six when negative); the decimal point is always
// '.', whatever the process locale. Empty on failure.
QT_API ustr RangeMessage(const Range& range, bool floating, int decimals);
// The text for a Rejection code, in the loaded language; empty for any
// other code.
QT_API ustr RejectionMessage(int code);
// The title of the note that shows a rejection ("Invalid value!").
QT_API ustr InvalidValueTitle();

}  // namespace ValueValidator

#endif
