// What the stand-in sibling modules of the bridge tests answer and how they
// record a call. Shared by the modules and the tests, so that a test can
// work out what a module must have seen and answered.
//
// A call is recorded as the export's name and each argument as received:
// numbers by value, pointers by the address they hold, references by the
// address of the object they name. An argument copied or swapped on the
// way therefore shows in the record.
#ifndef QUILTOOL_PROJECT_SIBLINGS_SIBLING_RECORD_H
#define QUILTOOL_PROJECT_SIBLINGS_SIBLING_RECORD_H

#include <stdint.h>
#include <stdio.h>

#include <memory>
#include <string>
#include <type_traits>

#include "QnVariant.h"
#include "ustr.h"

namespace sibling {

template <class T>
struct AlwaysFalse : std::false_type {};

// A number of its own for each export: never 0, -1 or 1, fits a short.
inline int NameCode(const char* name) {
  unsigned hash = 2166136261u;
  for (; *name; ++name) hash = (hash ^ static_cast<unsigned char>(*name)) * 16777619u;
  return 2 + static_cast<int>(hash % 30000u);
}

inline ustr WideName(const char* name) {
  ustr wide;
  for (; *name; ++name) wide += static_cast<wchar_t>(static_cast<unsigned char>(*name));
  return wide;
}

// What a module answers when the test set nothing else.
template <class R>
R DefaultAnswer(const char* name) {
  if constexpr (std::is_same<R, bool>::value) {
    return true;
  } else if constexpr (std::is_integral<R>::value) {
    return static_cast<R>(NameCode(name));
  } else if constexpr (std::is_floating_point<R>::value) {
    return static_cast<R>(NameCode(name)) + 0.5;
  } else if constexpr (std::is_pointer<R>::value) {
    return reinterpret_cast<R>(static_cast<uintptr_t>(NameCode(name)) << 4);
  } else if constexpr (std::is_same<R, ustr>::value) {
    return WideName(name);
  } else if constexpr (std::is_same<R, astr>::value) {
    return astr(name);
  } else if constexpr (std::is_same<R, QnVariant>::value) {
    return QnVariant(WideName(name));
  } else {
    static_assert(AlwaysFalse<R>::value, "no answer for this result type");
  }
}

template <class P, class A>
void AppendArgument(std::string& out, A& argument) {
  char text[64];
  if constexpr (std::is_reference<P>::value) {
    snprintf(text, sizeof text, " &%p", static_cast<const void*>(std::addressof(argument)));
  } else if constexpr (std::is_pointer<P>::value) {
    snprintf(text, sizeof text, " *%p", reinterpret_cast<const void*>(argument));
  } else if constexpr (std::is_floating_point<P>::value) {
    snprintf(text, sizeof text, " %.17g", static_cast<double>(argument));
  } else if constexpr (std::is_integral<P>::value || std::is_enum<P>::value) {
    snprintf(text, sizeof text, " %lld", static_cast<long long>(argument));
  } else {
    static_assert(AlwaysFalse<P>::value, "no record for this argument type");
  }
  out += text;
}

// The record of a call of export `name` with arguments of types P.
template <class... P>
std::string Describe(const char* name, P... arguments) {
  std::string out(name);
  int unused[] = {0, (AppendArgument<P>(out, arguments), 0)...};
  (void)unused;
  return out;
}

}  // namespace sibling

#endif
