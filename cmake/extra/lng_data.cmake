# The language files sit beside the built library, where Lng::init looks
# for them, so that tests and tools run from the build tree find them.
file(GLOB qt_lng_data CONFIGURE_DEPENDS
  ${CMAKE_SOURCE_DIR}/settings/lng/*.qlg
  ${CMAKE_SOURCE_DIR}/settings/lng/*.ddq)
if(WIN32)
  set(qt_lng_dest ${CMAKE_RUNTIME_OUTPUT_DIRECTORY})
else()
  set(qt_lng_dest ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
endif()
set(qt_lng_copies)
foreach(f IN LISTS qt_lng_data)
  get_filename_component(name ${f} NAME)
  add_custom_command(OUTPUT ${qt_lng_dest}/${name}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${qt_lng_dest}
    COMMAND ${CMAKE_COMMAND} -E copy_if_different ${f} ${qt_lng_dest}/${name}
    DEPENDS ${f}
    COMMENT "Language file ${name}")
  list(APPEND qt_lng_copies ${qt_lng_dest}/${name})
endforeach()
add_custom_target(quiltool_lng_data ALL DEPENDS ${qt_lng_copies})
add_dependencies(quiltool quiltool_lng_data)
