# libFuzzer harnesses for every reader of outside input (fuzz/, docs/fuzzing.md).
# Clang only; configured in a build folder of their own.
option(QUILTOOL_FUZZ "Build the libFuzzer harnesses (Clang)" OFF)
if(QUILTOOL_FUZZ)
  add_subdirectory(${CMAKE_SOURCE_DIR}/fuzz ${CMAKE_BINARY_DIR}/fuzz)
endif()
