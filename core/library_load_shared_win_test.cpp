// What loading quiltool.dll itself does, seen from a host that links it.
#include <windows.h>

#include <gtest/gtest.h>

#include "gwframe.h"

TEST(LibraryLoad, RegistersTheListHeaderClass) {
  WNDCLASSW wc{};
  EXPECT_TRUE(GetClassInfoW(GetModuleHandleW(L"quiltool.dll"), L"GWLBHEADER", &wc));
}
