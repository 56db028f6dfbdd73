// printf-style formatting with the Windows runtime's conventions on every
// target: the suite's format strings say %s for a string of the format's own
// width and %I64d for 64-bit numbers. They are rewritten into the spellings
// that mean the same in any C99 runtime (%ls, %lld, ...) before formatting.
#include <cstdio>
#include <cwchar>
#include <string>

#include "core/text_platform.h"
#include "core/boundary.h"
#include "ustr.h"

namespace {

template <class C>
void AppendAscii(std::basic_string<C>& out, const char* text) {
  for (; *text; ++text) out += static_cast<C>(*text);
}

// Rewrites one format. wide: whether it is a wide format.
template <class C>
std::basic_string<C> Normalize(const C* format, bool wide) {
  std::basic_string<C> out;
  for (const C* p = format; *p;) {
    if (*p != '%') {
      out += *p++;
      continue;
    }
    out += *p++;
    if (*p == '%') {
      out += *p++;
      continue;
    }
    while (*p == '-' || *p == '+' || *p == ' ' || *p == '#' || *p == '0') out += *p++;
    while ((*p >= '0' && *p <= '9') || *p == '*') out += *p++;
    if (*p == '.') {
      out += *p++;
      while ((*p >= '0' && *p <= '9') || *p == '*') out += *p++;
    }
    // Length: 'n' none, 'h' 8-bit for strings, 'l' wide for strings.
    char width = 'n';
    std::string numeric;
    if (p[0] == 'I' && p[1] == '6' && p[2] == '4') {
      numeric = "ll";
      p += 3;
    } else if (p[0] == 'I' && p[1] == '3' && p[2] == '2') {
      p += 3;
    } else if (p[0] == 'I') {
      numeric = "z";
      p += 1;
    } else {
      while (*p == 'h' || *p == 'l' || *p == 'L' || *p == 'w' || *p == 'z' || *p == 'j' || *p == 't' || *p == 'q') {
        if (*p == 'h') width = 'h';
        if (*p == 'l' || *p == 'w') width = 'l';
        if (*p == 'w') numeric += 'l';
        else numeric += static_cast<char>(*p);
        ++p;
      }
    }
    if (!*p) break;
    const C conv = *p++;
    if (conv == 's' || conv == 'c' || conv == 'S' || conv == 'C') {
      const bool upper = conv == 'S' || conv == 'C';
      const char kind = (conv == 's' || conv == 'S') ? 's' : 'c';
      // Which width does the argument have?
      bool argWide = width == 'l' ? true : width == 'h' ? false : (upper ? !wide : wide);
      if (argWide) {
        AppendAscii(out, kind == 's' ? "ls" : "lc");
      } else if (wide) {
        AppendAscii(out, kind == 's' ? qt::platform::kNarrowStringInWideFormat : qt::platform::kNarrowCharInWideFormat);
      } else {
        out += static_cast<C>(kind);
      }
      continue;
    }
    AppendAscii(out, numeric.c_str());
    out += conv;
  }
  return out;
}

}  // namespace

int qn_vformat(std::wstring& out, const wchar_t* format, va_list args) {
  return qt::NoThrowWith<int>(
      "qn_vformat",
      [&](bool) {
        out.clear();
        return -1;
      },
      [&]() -> int {
    out.clear();
    if (!format) return -1;
    const std::wstring f = Normalize(format, true);
    // A wide printf only says "did not fit", so grow until it does.
    for (size_t size = 256; size <= (1u << 24); size *= 4) {
      out.resize(size);
      va_list copy;
      va_copy(copy, args);
      const int n = std::vswprintf(&out[0], size, f.c_str(), copy);
      va_end(copy);
      if (n >= 0 && static_cast<size_t>(n) < size) {
        out.resize(static_cast<size_t>(n));
        return n;
      }
    }
    out.clear();
    return -1;
  });
}

int qn_vformat(std::string& out, const char* format, va_list args) {
  return qt::NoThrowWith<int>(
      "qn_vformat",
      [&](bool) {
        out.clear();
        return -1;
      },
      [&]() -> int {
    out.clear();
    if (!format) return -1;
    const std::string f = Normalize(format, false);
    va_list copy;
    va_copy(copy, args);
    const int n = std::vsnprintf(nullptr, 0, f.c_str(), copy);
    va_end(copy);
    if (n < 0) return -1;
    out.resize(static_cast<size_t>(n) + 1);
    std::vsnprintf(&out[0], out.size(), f.c_str(), args);
    out.resize(static_cast<size_t>(n));
    return n;
  });
}
