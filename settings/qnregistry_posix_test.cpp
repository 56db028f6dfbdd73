#include <stdlib.h>

#include <filesystem>

#include "settings/reg_test_util.h"

namespace reg_test {

namespace {
std::string Folder(const std::string& scratch) {
  return (std::filesystem::temp_directory_path() / scratch).string();
}
}  // namespace

bool IsolateRoots(const std::string& scratch) {
  const std::string folder = Folder(scratch);
  return setenv("QUILTOOL_HKCU_DIR", (folder + "/hkcu").c_str(), 1) == 0 &&
         setenv("QUILTOOL_HKLM_DIR", (folder + "/hklm").c_str(), 1) == 0;
}

void RemoveIsolatedRoots(const std::string& scratch) {
  std::error_code ec;
  std::filesystem::remove_all(Folder(scratch), ec);
}

}  // namespace reg_test
