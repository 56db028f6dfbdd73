# SQLite 3, tinyxml2 and the Win32 system libraries.
# Linux takes Debian's -dev packages; the Windows lane takes the static
# libraries that scripts/build-win-deps.sh cross-builds from Debian's
# source packages into QUILTOOL_WIN_DEPS.

if(WIN32)
  set(QUILTOOL_WIN_DEPS "" CACHE PATH "Prefix of the cross-built SQLite and tinyxml2")
  if(NOT QUILTOOL_WIN_DEPS)
    message(FATAL_ERROR "Set QUILTOOL_WIN_DEPS (scripts/build-win-deps.sh prints it)")
  endif()
  add_library(qt_sqlite3 STATIC IMPORTED)
  set_target_properties(qt_sqlite3 PROPERTIES
    IMPORTED_LOCATION ${QUILTOOL_WIN_DEPS}/lib/libsqlite3.a
    INTERFACE_INCLUDE_DIRECTORIES ${QUILTOOL_WIN_DEPS}/include)
  add_library(qt_tinyxml2 STATIC IMPORTED)
  set_target_properties(qt_tinyxml2 PROPERTIES
    IMPORTED_LOCATION ${QUILTOOL_WIN_DEPS}/lib/libtinyxml2.a
    INTERFACE_INCLUDE_DIRECTORIES ${QUILTOOL_WIN_DEPS}/include)
else()
  find_package(SQLite3 REQUIRED)
  add_library(qt_sqlite3 INTERFACE)
  target_link_libraries(qt_sqlite3 INTERFACE SQLite::SQLite3)
  find_package(PkgConfig REQUIRED)
  pkg_check_modules(TINYXML2 REQUIRED IMPORTED_TARGET tinyxml2)
  add_library(qt_tinyxml2 INTERFACE)
  target_link_libraries(qt_tinyxml2 INTERFACE PkgConfig::TINYXML2)
  find_package(Threads REQUIRED)
endif()

# System libraries the library's code calls.
if(WIN32)
  set(QT_PLATFORM_LIBS user32 gdi32 advapi32 comctl32 comdlg32 ole32 oleaut32 uuid crypt32 shell32 shlwapi)
else()
  set(QT_PLATFORM_LIBS Threads::Threads ${CMAKE_DL_LIBS})
endif()

# Libraries every QuilTool binary links: the library itself takes all of them
# privately; test programs and tools take the system ones they call directly.
function(qt_link_platform target)
  target_link_libraries(${target} PRIVATE ${QT_PLATFORM_LIBS})
  if(WIN32)
    target_link_options(${target} PRIVATE -static -static-libgcc -static-libstdc++)
  endif()
  get_target_property(type ${target} TYPE)
  if(type STREQUAL "SHARED_LIBRARY")
    target_link_libraries(${target} PRIVATE qt_sqlite3 qt_tinyxml2)
  endif()
endfunction()
