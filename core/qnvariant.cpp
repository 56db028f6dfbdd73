// Conversions between the kinds of a QnVariant.
//
// Every source kind is first seen as a number (text is read here, strictly
// and without the process locale), then brought to the target by one rule
// per target. Text is written through the library's formatter; the decimal
// point it takes from the process locale is put back to '.', and ties are
// rounded away from zero here, so that both targets and every locale give
// the same characters.
#include "QnVariant.h"

#include <cfloat>
#include <charconv>
#include <climits>
#include <cmath>
#include <limits>
#include <new>
#include <string>
#include <system_error>

#include "core/boundary.h"

namespace {

enum Status { kNotNumber, kExact, kSaturated };

bool IsAsciiDigit(char c) { return c >= '0' && c <= '9'; }

char AsciiLower(char c) { return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c; }

// The text without its surrounding blanks, or false when it holds anything
// outside ASCII (which no number does).
bool TrimmedAscii(const std::wstring& text, std::string* out) {
  size_t begin = 0, end = text.size();
  while (begin < end && qn_detail::isBlank(text[begin])) ++begin;
  while (end > begin && qn_detail::isBlank(text[end - 1])) --end;
  out->clear();
  for (size_t i = begin; i < end; ++i) {
    const unsigned long c = static_cast<unsigned long>(text[i]);
    if (c == 0 || c > 0x7F) return false;
    out->push_back(static_cast<char>(text[i]));
  }
  return true;
}

// digits [ '.' digits ] [ e [sign] digits ], at least one mantissa digit.
// The runtime's readers take more (hex, "nan(...)"), so the shape is
// checked here first.
bool IsPlainNumber(const std::string& s) {
  size_t i = 0, mantissaDigits = 0;
  while (i < s.size() && IsAsciiDigit(s[i])) ++i, ++mantissaDigits;
  if (i < s.size() && s[i] == '.') {
    ++i;
    while (i < s.size() && IsAsciiDigit(s[i])) ++i, ++mantissaDigits;
  }
  if (mantissaDigits == 0) return false;
  if (i < s.size() && (s[i] == 'e' || s[i] == 'E')) {
    ++i;
    if (i < s.size() && (s[i] == '+' || s[i] == '-')) ++i;
    size_t exponentDigits = 0;
    while (i < s.size() && IsAsciiDigit(s[i])) ++i, ++exponentDigits;
    if (exponentDigits == 0) return false;
  }
  return i == s.size();
}

// For a plain number the reader found out of range: whether it is too big
// (rather than too small). Decided by the power of ten of its first
// significant digit.
bool IsTooBig(const std::string& s) {
  size_t i = 0;
  long long position = 0;
  bool found = false;
  while (i < s.size() && IsAsciiDigit(s[i])) {
    if (found) {
      ++position;
    } else if (s[i] != '0') {
      found = true;
    }
    ++i;
  }
  if (!found && i < s.size() && s[i] == '.') {
    ++i;
    position = -1;
    while (i < s.size() && s[i] == '0') ++i, --position;
  }
  while (i < s.size() && s[i] != 'e' && s[i] != 'E') ++i;
  long long exponent = 0;
  if (i < s.size()) {
    ++i;
    const bool negative = s[i] == '-';
    if (s[i] == '+' || s[i] == '-') ++i;
    for (; i < s.size(); ++i) {
      if (exponent < 1000000) exponent = exponent * 10 + (s[i] - '0');
    }
    if (negative) exponent = -exponent;
  }
  return position + exponent > 0;
}

// Reads text as a number of type T (float or double), rounded once to T.
template <class T>
Status ReadNumber(const std::wstring& text, T* out) {
  std::string s;
  if (!TrimmedAscii(text, &s)) return kNotNumber;
  bool negative = false;
  size_t start = 0;
  if (!s.empty() && (s[0] == '+' || s[0] == '-')) {
    negative = s[0] == '-';
    start = 1;
  }
  std::string body = s.substr(start);
  std::string word;
  for (char c : body) word += AsciiLower(c);
  if (word == "inf" || word == "infinity") {
    *out = negative ? -std::numeric_limits<T>::infinity() : std::numeric_limits<T>::infinity();
    return kExact;
  }
  if (word == "nan") {
    *out = std::numeric_limits<T>::quiet_NaN();
    return kExact;
  }
  if (!IsPlainNumber(body)) return kNotNumber;
  const std::string number = (negative ? "-" : "") + body;
  T value = 0;
  const std::from_chars_result r = std::from_chars(number.data(), number.data() + number.size(), value);
  if (r.ec == std::errc() && r.ptr == number.data() + number.size()) {
    *out = value;
    return kExact;
  }
  if (r.ec != std::errc::result_out_of_range) return kNotNumber;
  if (IsTooBig(body)) {
    *out = negative ? -std::numeric_limits<T>::max() : std::numeric_limits<T>::max();
    return kSaturated;
  }
  // Too small to tell from zero: that is rounding, not a failure.
  *out = negative ? -T(0) : T(0);
  return kExact;
}

// The value as a double: exact for every kind but text, which may have
// been read saturated.
Status AsDouble(const QnVariant& v, double* out) {
  switch (v.type()) {
    case QnVariant::Text: return ReadNumber(v.text().str(), out);
    case QnVariant::Short: *out = v.shortValue(); return kExact;
    case QnVariant::ColorIndex: *out = v.colorIndex(); return kExact;
    case QnVariant::Int: *out = v.intValue(); return kExact;
    case QnVariant::UInt: *out = v.uintValue(); return kExact;
    case QnVariant::Float: *out = v.floatValue(); return kExact;
    case QnVariant::Double: *out = v.doubleValue(); return kExact;
    case QnVariant::Bool: *out = v.boolValue() ? 1.0 : 0.0; return kExact;
    default: return kNotNumber;
  }
}

// Half away from zero. Some runtimes' round() adds 0.5 first, which turns
// 0.49999999999999994 into 1; the fraction taken off here is exact.
double RoundHalfAway(double d) {
  const double whole = std::trunc(d);
  if (std::fabs(d - whole) >= 0.5) return whole + (d < 0 ? -1.0 : 1.0);
  return whole;
}

template <class I>
I ToInteger(const QnVariant& v, bool* ok) {
  double d = 0;
  const Status status = AsDouble(v, &d);
  if (status == kNotNumber || std::isnan(d)) return 0;
  const double rounded = RoundHalfAway(d);
  const I low = std::numeric_limits<I>::min(), high = std::numeric_limits<I>::max();
  if (rounded < static_cast<double>(low)) return low;
  if (rounded > static_cast<double>(high)) return high;
  *ok = status == kExact;
  return static_cast<I>(rounded);
}

// Doubles from here up round to infinity as floats.
const double kFloatOverflow = std::ldexp(1.0, 128) - std::ldexp(1.0, 103);

float ToFloat(const QnVariant& v, bool* ok) {
  if (v.type() == QnVariant::Text) {
    float f = 0;
    const Status status = ReadNumber(v.text().str(), &f);
    *ok = status == kExact;
    return f;
  }
  double d = 0;
  if (AsDouble(v, &d) == kNotNumber) return 0;
  if (std::isfinite(d) && std::fabs(d) >= kFloatOverflow) return d < 0 ? -FLT_MAX : FLT_MAX;
  *ok = true;
  return static_cast<float>(d);
}

double ToDouble(const QnVariant& v, bool* ok) {
  double d = 0;
  const Status status = AsDouble(v, &d);
  if (status == kNotNumber) return 0;
  *ok = status == kExact;
  return d;
}

bool ToBool(const QnVariant& v, bool* ok) {
  if (v.type() == QnVariant::Text) {
    std::string s;
    if (TrimmedAscii(v.text().str(), &s)) {
      for (char& c : s) c = AsciiLower(c);
      if (s == "true" || s == "false") {
        *ok = true;
        return s == "true";
      }
    }
  }
  double d = 0;
  if (AsDouble(v, &d) == kNotNumber || std::isnan(d)) return false;
  *ok = true;
  return d != 0;
}

// Runs a conversion behind the library's boundary; ok is false unless the
// conversion says otherwise.
template <class R, class F>
R Convert(const char* where, bool* ok, F&& body) {
  if (ok) *ok = false;
  return qt::NoThrow<R>(where, R(), [&]() -> R {
    bool good = false;
    const R r = body(&good);
    if (ok) *ok = good;
    return r;
  });
}

// ---- Writing numbers ----

const int kMaxDecimals = 350;

// The formatter's output with the locale's decimal point (any run of
// characters a number does not otherwise hold) put back to '.'.
std::wstring Format(const wchar_t* format, int precision, double value) {
  ustr raw;
  // The formats are this file's own, so only memory can fail them.
  if (raw.format(format, precision, value) < 0) throw std::bad_alloc();
  std::wstring out;
  bool inPoint = false;
  for (wchar_t c : raw.str()) {
    const bool numeric = (c >= L'0' && c <= L'9') || c == L'-' || c == L'+' || c == L'e' || c == L'E';
    if (numeric) {
      out += c;
      inPoint = false;
    } else if (!inPoint) {
      out += L'.';
      inPoint = true;
    }
  }
  return out;
}

// Whether value lies exactly halfway between two numbers of `decimals`
// digits. That needs its lowest set binary digit at 2^-(decimals+1):
// value * 10^decimals = m * 5^decimals / 2 with m odd.
bool IsTie(double value, int decimals) {
  const double scaled = std::ldexp(std::fabs(value), decimals + 1);
  return std::isfinite(scaled) && scaled == std::floor(scaled) && std::fmod(scaled, 2.0) == 1.0;
}

// Adds one unit in the last digit to a decimal text's magnitude.
void IncrementMagnitude(std::wstring* s) {
  size_t i = s->size();
  while (i > 0) {
    --i;
    wchar_t& c = (*s)[i];
    if (c == L'.') continue;
    if (c < L'0' || c > L'9') {
      ++i;
      break;
    }
    if (c != L'9') {
      ++c;
      return;
    }
    c = L'0';
  }
  s->insert(i, 1, L'1');
}

std::wstring Fixed(double value, int decimals) {
  if (!IsTie(value, decimals)) return Format(L"%.*f", decimals, value);
  // A tie has exactly decimals + 1 digits after the point, the last a 5,
  // so this text is exact; the runtime would round it to even.
  std::wstring s = Format(L"%.*f", decimals + 1, value);
  s.pop_back();
  if (!s.empty() && s.back() == L'.') s.pop_back();
  IncrementMagnitude(&s);
  return s;
}

template <class T>
std::wstring Shortest(T value) {
  const int most = std::numeric_limits<T>::max_digits10;
  std::wstring s;
  for (int precision = 1; precision <= most; ++precision) {
    s = Format(L"%.*g", precision, value);
    T back = 0;
    if (ReadNumber(s, &back) == kExact && back == value) break;
  }
  return s;
}

template <class T>
std::wstring FloatingText(T value, int decimals) {
  if (std::isnan(value)) return L"nan";
  if (std::isinf(value)) return value < 0 ? L"-inf" : L"inf";
  std::wstring s = decimals >= 0 ? Fixed(value, decimals > kMaxDecimals ? kMaxDecimals : decimals) : Shortest(value);
  if (!s.empty() && s[0] == L'-' && s.find_first_of(L"123456789") == std::wstring::npos) s.erase(0, 1);
  return s;
}

std::wstring TextOf(const QnVariant& v, int decimals) {
  ustr s;
  switch (v.type()) {
    case QnVariant::Text: return v.text().str();
    case QnVariant::Short: s.format(L"%d", static_cast<int>(v.shortValue())); break;
    case QnVariant::ColorIndex: s.format(L"%d", static_cast<int>(v.colorIndex())); break;
    case QnVariant::Int: s.format(L"%d", v.intValue()); break;
    case QnVariant::UInt: s.format(L"%u", v.uintValue()); break;
    case QnVariant::Bool: return v.boolValue() ? L"1" : L"0";
    case QnVariant::Float: return FloatingText(v.floatValue(), decimals);
    case QnVariant::Double: return FloatingText(v.doubleValue(), decimals);
    default: break;
  }
  return s.str();
}

}  // namespace

short QnVariant::toShort(bool* ok) const {
  return Convert<short>("QnVariant::toShort", ok, [this](bool* good) { return ToInteger<short>(*this, good); });
}

int QnVariant::toInt(bool* ok) const {
  return Convert<int>("QnVariant::toInt", ok, [this](bool* good) { return ToInteger<int>(*this, good); });
}

unsigned int QnVariant::toUInt(bool* ok) const {
  return Convert<unsigned int>("QnVariant::toUInt", ok,
                               [this](bool* good) { return ToInteger<unsigned int>(*this, good); });
}

float QnVariant::toFloat(bool* ok) const {
  return Convert<float>("QnVariant::toFloat", ok, [this](bool* good) { return ToFloat(*this, good); });
}

double QnVariant::toDouble(bool* ok) const {
  return Convert<double>("QnVariant::toDouble", ok, [this](bool* good) { return ToDouble(*this, good); });
}

bool QnVariant::toBool(bool* ok) const {
  return Convert<bool>("QnVariant::toBool", ok, [this](bool* good) { return ToBool(*this, good); });
}

short QnVariant::toColorIndex(bool* ok) const {
  return Convert<short>("QnVariant::toColorIndex", ok, [this](bool* good) { return ToInteger<short>(*this, good); });
}

ustr QnVariant::toText(int decimals) const {
  return qt::NoThrow<ustr>("QnVariant::toText", ustr(), [&]() -> ustr { return ustr(TextOf(*this, decimals)); });
}
