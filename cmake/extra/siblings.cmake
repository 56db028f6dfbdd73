# Stand-ins for the suite's sibling modules, built under their real file
# names for the module bridge tests: bin/siblings/full/ holds modules that
# export every function the bridge calls in them, bin/siblings/bare/ the
# same files without those exports. The tests load them; the library never does.
if(NOT QUILTOOL_BUILD_TESTS OR NOT TARGET quiltool_project_tests)
  return()
endif()

set(qt_siblings
  QnHpv QnHpv_r24x64.arx           QuilUtil QuilUtil_r24x64.dll
  QuilSer QuilSer_r24x64.dll       QuilEPJ QuilEPJ_r24x64.dll
  Qne Qne_r24x64.arx               QneUi QneUi_r24x64.dll
  QNCommon QNCommon_r24x64.arx     QNCommonUi QNCommonUi_r24x64.dll
  Qnr Qnr_r24x64.arx               QuilQRP QuilQRP_r24x64.dll
  QNHeatEx QNHeatEx_r24x64.arx     QNUtilities QNUtilities_r24x64.arx
  QnSd QnSd_r24x64.arx             QnSdUi QnSdUi_r24x64.dll
  QnCs QnCs_r24x64.arx             QUILQNPropertiesPalette QUILQNPropertiesPalette_r24x64.arx)

add_custom_target(quiltool_siblings)
while(qt_siblings)
  list(POP_FRONT qt_siblings id file)
  string(REGEX REPLACE "\\.[a-z]+$" "" stem ${file})
  string(REGEX MATCH "\\.[a-z]+$" suffix ${file})
  foreach(variant full bare)
    set(target qt_sibling_${variant}_${id})
    add_library(${target} SHARED ${CMAKE_SOURCE_DIR}/project/siblings/sibling_module.cpp)
    target_include_directories(${target} PRIVATE ${CMAKE_SOURCE_DIR}/include ${CMAKE_SOURCE_DIR})
    target_compile_definitions(${target} PRIVATE QT_SIBLING_OF_${id})
    if(variant STREQUAL "bare")
      target_compile_definitions(${target} PRIVATE QT_SIBLING_BARE)
    endif()
    # The file name is the module's own; on Linux it is the SONAME too,
    # which is what a look-up by bare file name matches.
    set_target_properties(${target} PROPERTIES
      PREFIX "" OUTPUT_NAME ${stem} SUFFIX ${suffix}
      LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin/siblings/${variant}
      RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin/siblings/${variant}
      ARCHIVE_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib/siblings/${variant})
    if(WIN32)
      target_link_options(${target} PRIVATE -static -static-libgcc -static-libstdc++)
    elseif(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
      # A unique symbol (a static of an inline function, as unoptimised
      # builds keep them) pins a shared object for good; the tests release
      # one module and load its other build under the same name.
      target_compile_options(${target} PRIVATE -fno-gnu-unique)
    endif()
    add_dependencies(quiltool_siblings ${target})
  endforeach()
endwhile()
add_dependencies(quiltool_project_tests quiltool_siblings)
if(TARGET quiltool_tools_tests)
  add_dependencies(quiltool_tools_tests quiltool_siblings)
endif()
