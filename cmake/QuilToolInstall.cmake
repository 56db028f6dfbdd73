include(CMakePackageConfigHelpers)

install(TARGETS quiltool EXPORT QuilToolTargets
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY ${CMAKE_SOURCE_DIR}/include/
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/quiltool
  FILES_MATCHING PATTERN "*.h")
# Language files and other data the library finds beside itself.
if(EXISTS ${CMAKE_SOURCE_DIR}/settings/lng)
  install(DIRECTORY ${CMAKE_SOURCE_DIR}/settings/lng/
    DESTINATION $<IF:$<BOOL:${WIN32}>,${CMAKE_INSTALL_BINDIR},${CMAKE_INSTALL_LIBDIR}>
    FILES_MATCHING PATTERN "*.qlg" PATTERN "*.ddq")
endif()

install(EXPORT QuilToolTargets NAMESPACE QuilTool::
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/QuilTool)
configure_package_config_file(${CMAKE_SOURCE_DIR}/cmake/QuilToolConfig.cmake.in
  ${CMAKE_BINARY_DIR}/QuilToolConfig.cmake
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/QuilTool)
write_basic_package_version_file(${CMAKE_BINARY_DIR}/QuilToolConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/QuilToolConfig.cmake ${CMAKE_BINARY_DIR}/QuilToolConfigVersion.cmake
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/QuilTool)

# The import library on Windows and the shared object on Linux go by the same name.
set(QT_PC_LIBS "-lquiltool")
configure_file(${CMAKE_SOURCE_DIR}/cmake/quiltool.pc.in ${CMAKE_BINARY_DIR}/quiltool.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/quiltool.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
