# The record engine's Base64 on Linux comes from libsodium; Windows has
# CryptBinaryToStringW in crypt32, which every target links already.
if(NOT WIN32)
  find_package(PkgConfig REQUIRED)
  pkg_check_modules(QT_SODIUM REQUIRED IMPORTED_TARGET libsodium)
  target_link_libraries(quiltool_build_usage INTERFACE PkgConfig::QT_SODIUM)
endif()
