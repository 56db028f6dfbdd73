// printf-style formatting with the Windows runtime's conventions on every
// target: %s is a string of the format's own width, %S of the other width,
// %hs / %ls name the width outright, %I64d is a 64-bit number.
//
// The format is read here and each argument is taken from the list by the
// type its directive names. Numbers go to the C runtime's narrow snprintf
// one directive at a time, which tells their exact length, so nothing is
// ever retried in a bigger buffer. Strings and characters are placed here:
// a text of the other width goes through the library's own codec, so that
// the process's locale never decides whether a text can be formatted, and
// both targets give the same characters.
#include "core/format.h"

#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <cwchar>
#include <string>

#include "core/boundary.h"
#include "ustr.h"

namespace {

// The old grow-until-it-fits loop stopped at this many characters; a longer
// result is still refused rather than allocated.
const size_t kMaxOutput = size_t(1) << 24;

thread_local unsigned long t_runtimeCalls = 0;

enum Length { kNone, kChar, kShort, kLong, kLongLong, kIntMax, kSize, kPtrDiff, kLongDouble };

struct Directive {
  std::string flags;
  bool widthFromArg = false;
  int width = -1;
  bool precisionFromArg = false;
  int precision = -1;
  Length length = kNone;
  char textWidth = 'n';  // for strings and characters: 'h' 8-bit, 'l' wide, 'n' by the letter
  char conversion = 0;
};

template <class C>
bool ReadNumber(const C*& p, int* value) {
  long long n = 0;
  while (*p >= '0' && *p <= '9') {
    n = n * 10 + (*p++ - '0');
    if (n > static_cast<long long>(kMaxOutput)) return false;
  }
  *value = static_cast<int>(n);
  return true;
}

// Reads one directive after its '%'; false for anything the Windows runtime
// would refuse as well (a lone '%', an unknown letter, %n).
template <class C>
bool Parse(const C*& p, Directive* d) {
  while (*p == '-' || *p == '+' || *p == ' ' || *p == '#' || *p == '0') d->flags += static_cast<char>(*p++);
  if (*p == '*') {
    d->widthFromArg = true;
    ++p;
  } else if (*p >= '0' && *p <= '9' && !ReadNumber(p, &d->width)) {
    return false;
  }
  if (*p == '.') {
    ++p;
    d->precision = 0;
    if (*p == '*') {
      d->precisionFromArg = true;
      ++p;
    } else if (!ReadNumber(p, &d->precision)) {
      return false;
    }
  }
  if (p[0] == 'I' && p[1] == '6' && p[2] == '4') {
    d->length = kLongLong;
    p += 3;
  } else if (p[0] == 'I' && p[1] == '3' && p[2] == '2') {
    p += 3;
  } else if (p[0] == 'I') {
    d->length = kSize;
    ++p;
  } else if (p[0] == 'h' && p[1] == 'h') {
    d->length = kChar;
    p += 2;
  } else if (p[0] == 'l' && p[1] == 'l') {
    d->length = kLongLong;
    p += 2;
  } else if (*p == 'h') {
    d->length = kShort;
    d->textWidth = 'h';
    ++p;
  } else if (*p == 'l' || *p == 'w') {
    d->length = kLong;
    d->textWidth = 'l';
    ++p;
  } else if (*p == 'L') {
    d->length = kLongDouble;
    ++p;
  } else if (*p == 'q') {
    d->length = kLongLong;
    ++p;
  } else if (*p == 'j' || *p == 'z' || *p == 't') {
    d->length = *p == 'j' ? kIntMax : *p == 'z' ? kSize : kPtrDiff;
    ++p;
  }
  if (*p == 0 || static_cast<unsigned>(*p) > 0x7F) return false;
  d->conversion = static_cast<char>(*p++);
  return std::strchr("diuoxXeEfFgGaApcsCS", d->conversion) != nullptr;
}

// The runtime's spelling of a numeric directive, width and precision
// already taken from the argument list.
std::string NumericFormat(const Directive& d) {
  static const char* const kLengths[] = {"", "hh", "h", "l", "ll", "j", "z", "t", "L"};
  std::string f = "%" + d.flags;
  if (d.width >= 0) f += std::to_string(d.width);
  if (d.precision >= 0) f += "." + std::to_string(d.precision);
  if (d.conversion != 'p') f += kLengths[d.length];
  return f + d.conversion;
}

template <class T>
bool RunNumeric(std::string* out, const Directive& d, T value) {
  const std::string f = NumericFormat(d);
  char small[128];
  ++t_runtimeCalls;
  const int n = std::snprintf(small, sizeof small, f.c_str(), value);
  if (n < 0 || static_cast<size_t>(n) > kMaxOutput) return false;
  if (static_cast<size_t>(n) < sizeof small) {
    out->assign(small, static_cast<size_t>(n));
    return true;
  }
  out->assign(static_cast<size_t>(n) + 1, '\0');
  ++t_runtimeCalls;
  std::snprintf(&(*out)[0], out->size(), f.c_str(), value);
  out->resize(static_cast<size_t>(n));
  return true;
}

template <class Signed, class Unsigned>
bool Integer(std::string* out, const Directive& d, va_list* args) {
  if (d.conversion == 'd' || d.conversion == 'i') return RunNumeric(out, d, static_cast<Signed>(va_arg(*args, Signed)));
  return RunNumeric(out, d, static_cast<Unsigned>(va_arg(*args, Unsigned)));
}

bool Numeric(std::string* out, const Directive& d, va_list* args) {
  if (d.conversion == 'p') return RunNumeric(out, d, va_arg(*args, void*));
  if (std::strchr("eEfFgGaA", d.conversion)) {
    if (d.length != kNone && d.length != kLong && d.length != kLongDouble) return false;
    if (d.length == kLongDouble) return RunNumeric(out, d, va_arg(*args, long double));
    return RunNumeric(out, d, va_arg(*args, double));
  }
  // Types narrower than int arrive promoted; the runtime narrows them again.
  if (d.length == kLongDouble) return false;
  switch (d.length) {
    case kLong: return Integer<long, unsigned long>(out, d, args);
    case kLongLong: return Integer<long long, unsigned long long>(out, d, args);
    case kIntMax: return Integer<intmax_t, uintmax_t>(out, d, args);
    case kSize: return Integer<ptrdiff_t, size_t>(out, d, args);
    case kPtrDiff: return Integer<ptrdiff_t, size_t>(out, d, args);
    default: return Integer<int, unsigned>(out, d, args);
  }
}

// Text conversions into the format's width.
std::wstring ToOwn(const std::wstring&, const wchar_t* text, size_t length) { return std::wstring(text, length); }
std::wstring ToOwn(const std::wstring&, const char* text, size_t length) { return qn_ansi_to_wide(text, length); }
std::string ToOwn(const std::string&, const char* text, size_t length) { return std::string(text, length); }
std::string ToOwn(const std::string&, const wchar_t* text, size_t length) { return qn_wide_to_ansi(text, length); }

size_t Length(const char* text, int precision, size_t perUnit) {
  if (precision < 0) return std::strlen(text);
  const size_t limit = static_cast<size_t>(precision) * perUnit;
  size_t n = 0;
  while (n < limit && text[n]) ++n;
  return n;
}
size_t Length(const wchar_t* text, int precision, size_t) {
  if (precision < 0) return std::wcslen(text);
  size_t n = 0;
  while (n < static_cast<size_t>(precision) && text[n]) ++n;
  return n;
}

// What both runtimes print for a null string.
const char* NullText(const char*) { return "(null)"; }
const wchar_t* NullText(const wchar_t*) { return L"(null)"; }

// A string argument in the format's width. The precision counts units of
// the output, never reads past a terminator or the precision, and in
// 8-bit output never cuts a character in two.
template <class C, class A>
std::basic_string<C> StringArg(const A* text, int precision) {
  const std::basic_string<C> own;
  if (!text) text = NullText(text);
  // A narrow source has at most four bytes per wide output unit.
  const size_t perUnit = sizeof(A) == 1 && sizeof(C) != 1 ? 4 : 1;
  if (sizeof(C) == 1 && sizeof(A) != 1 && precision >= 0) {
    std::basic_string<C> out;
    const size_t n = Length(text, -1, 1);
    for (size_t i = 0; i < n;) {
      const size_t step = (i + 1 < n && text[i] >= 0xD800 && text[i] <= 0xDBFF) ? 2 : 1;
      const std::basic_string<C> piece = ToOwn(own, text + i, step);
      if (out.size() + piece.size() > static_cast<size_t>(precision)) break;
      out += piece;
      i += step;
    }
    return out;
  }
  std::basic_string<C> out = ToOwn(own, text, Length(text, precision, perUnit));
  if (precision >= 0 && out.size() > static_cast<size_t>(precision)) out.resize(static_cast<size_t>(precision));
  return out;
}

template <class C>
std::basic_string<C> CharArg(bool argWide, va_list* args) {
  const std::basic_string<C> own;
  if (argWide) {
    // wint_t is 16 bits on Windows and so arrives promoted to int.
    const wchar_t c = static_cast<wchar_t>(va_arg(*args, unsigned));
    return ToOwn(own, &c, 1);
  }
  const char c = static_cast<char>(va_arg(*args, int));
  return ToOwn(own, &c, 1);
}

template <class C>
std::basic_string<C> Widen(const std::basic_string<C>&, const std::string& ascii) {
  return std::basic_string<C>(ascii.begin(), ascii.end());
}

template <class C>
bool Format(std::basic_string<C>& out, const C* format, va_list* args) {
  const bool wide = sizeof(C) != 1;
  for (const C* p = format; *p;) {
    if (*p != '%') {
      out += *p++;
      continue;
    }
    ++p;
    if (*p == '%') {
      out += *p++;
      continue;
    }
    Directive d;
    if (!Parse(p, &d)) return false;
    if (d.widthFromArg) {
      d.width = va_arg(*args, int);
      if (d.width < 0) {
        d.flags += '-';
        d.width = d.width == INT_MIN ? INT_MAX : -d.width;
      }
      if (d.width > static_cast<int>(kMaxOutput)) return false;
    }
    if (d.precisionFromArg) {
      d.precision = va_arg(*args, int);
      if (d.precision < 0) d.precision = -1;
    }
    std::basic_string<C> piece;
    const char c = d.conversion;
    if (c == 's' || c == 'S' || c == 'c' || c == 'C') {
      const bool upper = c == 'S' || c == 'C';
      const bool argWide = d.textWidth == 'l' ? true : d.textWidth == 'h' ? false : (upper ? !wide : wide);
      if (c == 's' || c == 'S') {
        piece = argWide ? StringArg<C>(va_arg(*args, const wchar_t*), d.precision)
                        : StringArg<C>(va_arg(*args, const char*), d.precision);
      } else {
        piece = CharArg<C>(argWide, args);
      }
      if (d.width > 0 && piece.size() < static_cast<size_t>(d.width)) {
        const std::basic_string<C> pad(static_cast<size_t>(d.width) - piece.size(), C(' '));
        piece = d.flags.find('-') != std::string::npos ? piece + pad : pad + piece;
      }
    } else {
      std::string number;
      if (!Numeric(&number, d, args)) return false;
      piece = Widen(piece, number);
    }
    if (out.size() + piece.size() > kMaxOutput) return false;
    out += piece;
  }
  return true;
}

template <class C>
int FormatInto(std::basic_string<C>& out, const C* format, va_list args) {
  out.clear();
  if (!format) return -1;
  va_list copy;
  va_copy(copy, args);
  const bool ok = Format(out, format, &copy);
  va_end(copy);
  if (!ok || out.size() > kMaxOutput) {
    out.clear();
    return -1;
  }
  return static_cast<int>(out.size());
}

template <class C>
int FormatGuarded(std::basic_string<C>& out, const C* format, va_list args) {
  return qt::NoThrowWith<int>(
      "qn_vformat",
      [&](bool) {
        out.clear();
        return -1;
      },
      [&]() -> int { return FormatInto(out, format, args); });
}

}  // namespace

int qn_vformat(std::wstring& out, const wchar_t* format, va_list args) { return FormatGuarded(out, format, args); }

int qn_vformat(std::string& out, const char* format, va_list args) { return FormatGuarded(out, format, args); }

unsigned long qt_format_runtime_calls() { return t_runtimeCalls; }
