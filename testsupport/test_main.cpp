// Entry point of every QuilTool test program: runs a registered child entry
// point when asked to, otherwise the tests, each program with its own
// settings store folder so that parallel runs never meet.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "qt_test.h"

namespace {

void SetEnv(const char* name, const std::string& value) {
#if defined(_WIN32)
  _putenv_s(name, value.c_str());
#else
  setenv(name, value.c_str(), 1);
#endif
}

}  // namespace

int main(int argc, char** argv) {
  int exitCode = 0;
  if (qt_test::RunChildIfAsked(argc, argv, &exitCode)) return exitCode;

  // Children inherit these, so a child sees the same store as its test.
  qt_test::TempDir store;
  SetEnv("QUILTOOL_HKCU_DIR", store.file("hkcu"));
  SetEnv("QUILTOOL_HKLM_DIR", store.file("hklm"));
  std::filesystem::create_directories(store.file("hkcu"));
  std::filesystem::create_directories(store.file("hklm"));

  ::testing::InitGoogleMock(&argc, argv);
  return RUN_ALL_TESTS();
}
