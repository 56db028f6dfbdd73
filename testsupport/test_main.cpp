// Entry point of every QuilTool test program: runs a registered child entry
// point when asked to, otherwise the tests, each program with its own
// settings store folder so that parallel runs never meet.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "qt_test.h"

int main(int argc, char** argv) {
  int exitCode = 0;
  if (qt_test::RunChildIfAsked(argc, argv, &exitCode)) return exitCode;

  // Children inherit these, so a child sees the same store as its test.
  qt_test::TempDir store;
  qt_test::SetEnv("QUILTOOL_HKCU_DIR", store.file("hkcu"));
  qt_test::SetEnv("QUILTOOL_HKLM_DIR", store.file("hklm"));
  std::filesystem::create_directories(store.file("hkcu"));
  std::filesystem::create_directories(store.file("hklm"));

  ::testing::InitGoogleMock(&argc, argv);
  return RUN_ALL_TESTS();
}
