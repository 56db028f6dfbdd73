// QnVariant: one value of a grid cell or an entity property, tagged with
// its kind.
//
// Layout: a kind tag (Type), one union holding the numeric kinds, and a
// ustr holding the text kind. Only the member the tag names is meaningful;
// the text is empty unless the kind is Text. Everything that builds, copies,
// compares or reads a value back in its own kind is inline, so a module can
// pass values on without linking this library; the conversions between
// kinds are exported.
//
// Conversions (toShort ... toText) never throw. Each takes an optional ok
// flag, set to true when the result is the value itself (or the value
// rounded to the target's precision) and to false otherwise:
//  - Empty gives 0, false or "" with ok false.
//  - A number outside the target's range saturates to the nearest bound
//    with ok false. NaN gives 0 (false for toBool) with ok false; toFloat
//    and toDouble keep NaN and the infinities, with ok true.
//  - A floating value rounds to an integer half away from zero
//    (2.5 -> 3, -2.5 -> -3); rounding alone leaves ok true.
//  - Text is read as a number strictly and whatever the process locale:
//    blanks around it, an optional sign, digits with at most one '.', an
//    optional exponent ("1e3", "-2.5E-2"), or the words "inf", "infinity"
//    and "nan" in any case. Anything else ("12abc", "1,5", "0x10", "") is
//    not a number: 0 with ok false. The number read then follows the rules
//    above; a text beyond the range of double saturates as well.
//  - toBool: a number is true when it is not zero; text may also be "true"
//    or "false" in any case.
//  - A colour index converts as the 16-bit number it is; no check is made
//    that it names a colour.
#ifndef QUILTOOL_QNVARIANT_H
#define QUILTOOL_QNVARIANT_H

#include "quiltool_export.h"
#include "ustr.h"

class QnVariant {
 public:
  enum Type {
    Empty = 0,
    Text = 1,        // ustr
    Short = 2,       // 16-bit integer
    Int = 3,         // 32-bit integer
    UInt = 4,        // unsigned 32-bit integer
    Float = 5,
    Double = 6,
    Bool = 7,
    ColorIndex = 8   // AutoCAD colour number, held as a short
  };

  QnVariant() : type_(Empty) { number_.d = 0; }
  QnVariant(const ustr& text) : type_(Text), text_(text) { number_.d = 0; }
  // A null pointer gives an empty text, not an Empty value.
  QnVariant(const wchar_t* text) : type_(Text), text_(text) { number_.d = 0; }
  QnVariant(short value) : type_(Short) { number_.d = 0; number_.s = value; }
  QnVariant(int value) : type_(Int) { number_.d = 0; number_.i = value; }
  QnVariant(unsigned int value) : type_(UInt) { number_.d = 0; number_.u = value; }
  QnVariant(float value) : type_(Float) { number_.d = 0; number_.f = value; }
  QnVariant(double value) : type_(Double) { number_.d = value; }
  QnVariant(bool value) : type_(Bool) { number_.d = 0; number_.b = value; }
  // Any other pointer would silently become a Bool; 8-bit text is refused
  // outright so that its code page is chosen by the caller.
  template <class T>
  QnVariant(const T*) = delete;

  // A colour index; a plain short is the Short kind.
  static QnVariant fromColorIndex(short index) {
    QnVariant v(index);
    v.type_ = ColorIndex;
    return v;
  }

  QnVariant(const QnVariant& o) : type_(o.type_), number_(o.number_), text_(o.text_) {}
  // The source is left Empty.
  QnVariant(QnVariant&& o) noexcept : type_(o.type_), number_(o.number_), text_(static_cast<ustr&&>(o.text_)) {
    o.clear();
  }
  QnVariant& operator=(const QnVariant& o) {
    if (this != &o) {
      text_ = o.text_;  // the one step that can fail goes first and changes nothing when it does
      type_ = o.type_;
      number_ = o.number_;
    }
    return *this;
  }
  QnVariant& operator=(QnVariant&& o) noexcept {
    if (this != &o) {
      text_.str().swap(o.text_.str());
      type_ = o.type_;
      number_ = o.number_;
      o.clear();
    }
    return *this;
  }

  Type type() const { return type_; }
  bool isEmpty() const { return type_ == Empty; }
  void clear() {
    type_ = Empty;
    number_.d = 0;
    text_.clear();
  }

  // The value in its own kind: what the tag names, or 0 / false / "" when
  // the value is of another kind (use the conversions below for that).
  const ustr& text() const { return text_; }
  short shortValue() const { return type_ == Short ? number_.s : static_cast<short>(0); }
  int intValue() const { return type_ == Int ? number_.i : 0; }
  unsigned int uintValue() const { return type_ == UInt ? number_.u : 0u; }
  float floatValue() const { return type_ == Float ? number_.f : 0.0f; }
  double doubleValue() const { return type_ == Double ? number_.d : 0.0; }
  bool boolValue() const { return type_ == Bool && number_.b; }
  short colorIndex() const { return type_ == ColorIndex ? number_.s : static_cast<short>(0); }

  // Same kind and same value. Texts compare exactly (case counts); floating
  // values compare as numbers (0.0 equals -0.0), except that NaN equals NaN,
  // so that a value always equals its own copy.
  friend bool operator==(const QnVariant& a, const QnVariant& b) {
    if (a.type_ != b.type_) return false;
    switch (a.type_) {
      case Text: return a.text_ == b.text_;
      case Short:
      case ColorIndex: return a.number_.s == b.number_.s;
      case Int: return a.number_.i == b.number_.i;
      case UInt: return a.number_.u == b.number_.u;
      case Float: return a.number_.f == b.number_.f || (a.number_.f != a.number_.f && b.number_.f != b.number_.f);
      case Double: return a.number_.d == b.number_.d || (a.number_.d != a.number_.d && b.number_.d != b.number_.d);
      case Bool: return a.number_.b == b.number_.b;
      default: return true;
    }
  }
  friend bool operator!=(const QnVariant& a, const QnVariant& b) { return !(a == b); }

  // Conversions to each kind; the rules are at the top of this header.
  QT_API short toShort(bool* ok = nullptr) const;
  QT_API int toInt(bool* ok = nullptr) const;
  QT_API unsigned int toUInt(bool* ok = nullptr) const;
  QT_API float toFloat(bool* ok = nullptr) const;
  QT_API double toDouble(bool* ok = nullptr) const;
  QT_API bool toBool(bool* ok = nullptr) const;
  QT_API short toColorIndex(bool* ok = nullptr) const;

  // The text form, the same on every target and in every locale:
  //  - Empty gives "", Text itself; integers and colour indexes their
  //    decimal number; Bool "1" or "0". decimals does not apply to these.
  //  - Float and Double with decimals >= 0 (at most 350): that many digits
  //    after the '.', as "%.*f" writes them, but rounded half away from
  //    zero ("2.5" with 0 decimals is "3").
  //  - With decimals < 0: the shortest text that reads back as the same
  //    value, in the "%g" style ("0.1", "1e+300", "1.5e-07").
  //  - A floating value that shows as zero has no minus sign; infinities
  //    are "inf" and "-inf", NaN is "nan".
  // Returns "" only for Empty, an empty text, or when memory runs out.
  QT_API ustr toText(int decimals = -1) const;

 private:
  union Number {
    short s;         // Short and ColorIndex
    int i;
    unsigned int u;
    float f;
    double d;
    bool b;
  };
  Type type_;
  Number number_;
  ustr text_;
};

#endif
