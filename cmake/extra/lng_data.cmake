# The language files sit beside the built library, where Lng::init looks
# for them, so that tests and tools run from the build tree find them.
file(GLOB qt_lng_data CONFIGURE_DEPENDS
  ${CMAKE_SOURCE_DIR}/settings/lng/*.qlg
  ${CMAKE_SOURCE_DIR}/settings/lng/*.ddq)
# The test programs and the tool hold the library's objects, so their own
# folder is the library's folder for them; on Linux that is not where the
# shared library lies, and the files go to both.
set(qt_lng_dests ${CMAKE_RUNTIME_OUTPUT_DIRECTORY})
if(NOT WIN32)
  list(APPEND qt_lng_dests ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
endif()
set(qt_lng_copies)
foreach(qt_lng_dest IN LISTS qt_lng_dests)
  foreach(f IN LISTS qt_lng_data)
    get_filename_component(name ${f} NAME)
    add_custom_command(OUTPUT ${qt_lng_dest}/${name}
      COMMAND ${CMAKE_COMMAND} -E make_directory ${qt_lng_dest}
      COMMAND ${CMAKE_COMMAND} -E copy_if_different ${f} ${qt_lng_dest}/${name}
      DEPENDS ${f}
      COMMENT "Language file ${name}")
    list(APPEND qt_lng_copies ${qt_lng_dest}/${name})
  endforeach()
endforeach()
add_custom_target(quiltool_lng_data ALL DEPENDS ${qt_lng_copies})
add_dependencies(quiltool_objects quiltool_lng_data)
