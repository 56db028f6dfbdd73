// Loads QuilTool the way an application module does: version check first,
// then a few calls across the library's boundary.
#include <cstdio>

#include <quiltool.h>

int main() {
  if (quiltool_version_nmb(QUILTOOL_VERSION_NMB) < 0) {
    std::printf("library version mismatch\n");
    return 1;
  }
  ustr dir;
  if (GetModuleDirectory(static_cast<HMODULE>(nullptr), dir) != 0 || dir.empty()) {
    std::printf("no module directory\n");
    return 1;
  }
  wchar_t copy[4];
  QN_wcscpy_s(copy, 4, L"abcdef");
  if (ustr(copy) != L"abc" || qn_wcsicmp(L"Quillon", L"QUILLON") != 0) {
    std::printf("string helpers disagree\n");
    return 1;
  }
  std::printf("QuilTool %ld at %s\n", quiltool_version_nmb(QUILTOOL_VERSION_NMB), dir.toAnsi().c_str());
  return 0;
}
