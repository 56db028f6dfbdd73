// Bounded copies and appends: silent truncation, always terminated.
#include <cstdarg>

#include "core/boundary.h"
#include "gwframe.h"

namespace {

template <class C>
int Copy(C* dst, size_t size, const C* src) {
  if (!dst || dst == src) return 0;
  size_t n = 0;
  if (src) {
    while (n + 1 < size && src[n]) {
      dst[n] = src[n];
      ++n;
    }
  }
  dst[n] = 0;
  return 0;
}

template <class C>
int Append(C* dst, size_t size, const C* src) {
  if (!dst) return 0;
  size_t end = 0;
  while (end + 1 < size && dst[end]) ++end;
  if (src) {
    for (size_t i = 0; src[i] && end + 1 < size; ++i) dst[end++] = src[i];
  }
  dst[end] = 0;
  return 0;
}

// Trailing blanks dropped, as the message-box button texts want them.
template <class C>
C* MakeSz(C* dst, const C* src, int size) {
  if (!dst || size <= 0) return dst;
  Copy(dst, static_cast<size_t>(size), src);
  size_t n = 0;
  while (dst[n]) ++n;
  while (n > 0 && dst[n - 1] == ' ') dst[--n] = 0;
  return dst;
}

}  // namespace

int QN_strcpy_s(char* dst, size_t size, const char* src, bool) { return Copy(dst, size, src); }
int QN_wcscpy_s(wchar_t* dst, size_t size, const wchar_t* src, bool) { return Copy(dst, size, src); }
int QN_strcat_s(char* dst, size_t size, const char* src, bool) { return Append(dst, size, src); }
int QN_wcscat_s(wchar_t* dst, size_t size, const wchar_t* src, bool) { return Append(dst, size, src); }

char* gwmakesz(char* dst, const char* src, int size) { return MakeSz(dst, src, size); }
wchar_t* gwmakeszw(wchar_t* dst, const wchar_t* src, int size) { return MakeSz(dst, src, size); }

namespace {

// Formats into a growable owned string, then copies what fits; the result is
// the whole formatted length.
// Out of memory counts as a failed format: -1 and an empty buffer.
template <class Owned, class C>
int FormatBounded(C* dst, size_t size, const C* format, va_list args) {
  return qt::NoThrowWith<int>(
      "QN_sprintf_s",
      [&](bool) {
        if (dst && size > 0) dst[0] = 0;
        return -1;
      },
      [&]() -> int {
        Owned text;
        text.str().reserve(256);
        const int n = text.formatVaList(format, args);
        Copy(dst, size, text.c_str());
        return n;
      });
}

}  // namespace

int QN_sprintf_s(char* dst, size_t size, const char* format, ...) {
  va_list args;
  va_start(args, format);
  const int n = FormatBounded<astr>(dst, size, format, args);
  va_end(args);
  return n;
}

int QN_swprintf_s(wchar_t* dst, size_t size, const wchar_t* format, ...) {
  va_list args;
  va_start(args, format);
  const int n = FormatBounded<ustr>(dst, size, format, args);
  va_end(args);
  return n;
}
