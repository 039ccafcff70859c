# The target "api_reference": the public headers as HTML, in reference/html of the build tree, and installed if it was
# made. It fails on a warning.
find_program(KYRCORE_DOXYGEN doxygen)
mark_as_advanced(KYRCORE_DOXYGEN)
if(NOT KYRCORE_DOXYGEN)
  return()
endif()
set(reference ${PROJECT_BINARY_DIR}/reference)
configure_file(${PROJECT_SOURCE_DIR}/cmake/Doxyfile.in ${reference}/Doxyfile @ONLY)
# The pages work without the scripts that Doxygen puts beside them.
add_custom_target(api_reference
  COMMAND ${CMAKE_COMMAND} -E rm -rf ${reference}/html
  COMMAND ${KYRCORE_DOXYGEN} ${reference}/Doxyfile
  COMMAND ${CMAKE_COMMAND} -E rm -f ${reference}/html/dynsections.js ${reference}/html/jquery.js ${reference}/html/menudata.js
  VERBATIM)
kyrcore_install(DIRECTORY ${reference}/html DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT doc OPTIONAL)
