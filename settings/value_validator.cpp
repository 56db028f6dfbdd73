// The texts a grid shows when it turns down an edited value.
#include "ValueValidator.h"

#include <new>

#include "Lng.h"
#include "QnVariant.h"
#include "core/boundary.h"
#include "settings/lng_internal.h"

namespace ValueValidator {

namespace {

// A floating bound as "%0.*lf" writes it, except that the decimal point
// never follows the process locale and both targets round alike.
ustr FloatingBound(double value, int decimals) {
  // A negative precision is an absent one to the C formatter: six digits.
  ustr text = QnVariant(value).toText(decimals < 0 ? 6 : decimals);
  // A number always has a text; none means memory ran out.
  if (text.empty()) throw std::bad_alloc();
  return text;
}

ustr IntegerBound(int value) {
  ustr s;
  if (s.format(L"%d", value) < 0) throw std::bad_alloc();
  return s;
}

ustr BuiltMessage(const Range& range, bool floating, int decimals) {
  // The label is one piece of the text: should fetching it fail, no text
  // at all is better than the bounds without it.
  ustr text = qt_lng_text(Lng::APP_HPV, 44182, L"Valid value range:");
  text += L" ";
  if (range.hasLowerBound()) {
    text += floating ? FloatingBound(range.lowerDouble, decimals) : IntegerBound(range.lowerInt);
    text += L" ";
  }
  text += L"...";
  if (range.hasUpperBound()) {
    text += L" ";
    text += floating ? FloatingBound(range.upperDouble, decimals) : IntegerBound(range.upperInt);
  }
  text += L".";
  return text;
}

}  // namespace

ustr RangeMessage(const Range& range, bool floating, int decimals) {
  return qt::NoThrow<ustr>("ValueValidator::RangeMessage", ustr(), [&]() -> ustr {
    if (!range.message.empty()) return range.message;
    return BuiltMessage(range, floating, decimals);
  });
}

ustr RejectionMessage(int code) {
  return qt::NoThrow<ustr>("ValueValidator::RejectionMessage", ustr(), [&]() -> ustr {
    switch (code) {
      case InvalidValue: return Lng::text(Lng::APP_QNC, 36897, L"Invalid value!");
      case ValueAlreadyUsed: return Lng::text(Lng::APP_HPV, 36900, L"Value is already used!");
      case ValueEmpty: return Lng::text(Lng::APP_HPV, 36901, L"Value cannot be empty!");
      case InvalidCharacters: return Lng::text(Lng::APP_HPV, 44198, L"Some characters are not valid!");
      default: return ustr();
    }
  });
}

ustr InvalidValueTitle() {
  return qt::NoThrow<ustr>("ValueValidator::InvalidValueTitle", ustr(),
                           [&]() -> ustr { return Lng::text(Lng::APP_QNC, 36897, L"Invalid value!"); });
}

}  // namespace ValueValidator
