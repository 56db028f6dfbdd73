#include "gwframe.h"

namespace {

// Characters are compared as 16-bit values after upper-casing each alone.
template <class C, class Widen>
int CompareNoCase(const C* a, const C* b, Widen widen) {
  if (!a && !b) return 0;
  if (!a) return -1;
  if (!b) return 1;
  if (!*a) return *b ? -1 : 0;
  for (; *a && *b; ++a, ++b) {
    const unsigned short ua = static_cast<unsigned short>(qn_charupper(widen(*a)));
    const unsigned short ub = static_cast<unsigned short>(qn_charupper(widen(*b)));
    if (ua != ub) return static_cast<int>(ua) - static_cast<int>(ub);
  }
  if (*a) return 1;
  if (*b) return -1;
  return 0;
}

}  // namespace

int qn_stricmp(const char* a, const char* b) {
  // Bytes are sign-extended: 0x80..0xFF become 0xFF80..0xFFFF, no code page.
  return CompareNoCase(a, b, [](char c) {
    return static_cast<wchar_t>(static_cast<unsigned short>(static_cast<short>(static_cast<signed char>(c))));
  });
}

int qn_wcsicmp(const wchar_t* a, const wchar_t* b) {
  return CompareNoCase(a, b, [](wchar_t c) { return c; });
}
