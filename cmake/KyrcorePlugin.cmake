# kyrcore_add_plugin(<name> SOURCES <file>... DOCUMENT <file> [OUTPUT <folder>])
#
# Builds a plugin, plugins/<name>/lib<name>.pi.so, and copies its document to <name>.properties.xml beside it. OUTPUT is
# the plugin root; the default is plugins/ in the build tree.
function(kyrcore_add_plugin name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "DOCUMENT;OUTPUT" "SOURCES")
  if(name MATCHES "lib")
    message(FATAL_ERROR "kyrcore_add_plugin: the name '${name}' holds \"lib\"; the document of such a plugin would not "
      "be found, since the first \"lib\" of a library's path is taken away to name it. Choose another name.")
  endif()
  if(NOT arg_SOURCES OR NOT arg_DOCUMENT)
    message(FATAL_ERROR "kyrcore_add_plugin(${name}): SOURCES and DOCUMENT are required.")
  endif()
  if(NOT arg_OUTPUT)
    set(arg_OUTPUT ${PROJECT_BINARY_DIR}/plugins)
  endif()
  set(folder ${arg_OUTPUT}/${name})

  # Linked with the core, so that it loads even if the host has opened the core with RTLD_LOCAL.
  add_library(${name}_plugin MODULE ${arg_SOURCES})
  target_link_libraries(${name}_plugin PRIVATE kyrcore::kyrcore)
  # Some calls of the core raise C++ exceptions, which pass through the frames of a plugin written in C.
  target_compile_options(${name}_plugin PRIVATE $<$<COMPILE_LANGUAGE:C>:-fexceptions>)
  target_link_options(${name}_plugin PRIVATE -Wl,--no-undefined)
  set_target_properties(${name}_plugin PROPERTIES OUTPUT_NAME ${name} PREFIX lib SUFFIX .pi.so
    LIBRARY_OUTPUT_DIRECTORY ${folder} C_VISIBILITY_PRESET hidden CXX_VISIBILITY_PRESET hidden
    SKIP_BUILD_RPATH ON)  # the host has loaded the core already

  get_filename_component(document ${arg_DOCUMENT} ABSOLUTE)
  set(copy ${folder}/${name}.properties.xml)
  add_custom_command(OUTPUT ${copy} DEPENDS ${document}
    COMMAND ${CMAKE_COMMAND} -E copy_if_different ${document} ${copy})
  add_custom_target(${name}_document ALL DEPENDS ${copy})
  add_dependencies(${name}_plugin ${name}_document)
endfunction()
