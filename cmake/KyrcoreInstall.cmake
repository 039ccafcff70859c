# Installs the library with headers and package files. The folders of the tree install the rest, in these components:
#   runtime      the shared library
#   development  headers, static library, files for find_package(kyrcore) and pkg-config
#   schema       the base document
#   plugins      the plugins with their documents
#   tool         kyr with what only it reads, and the units of systemd that run it
#   ansible      the collection of Ansible
#   doc          the pages of docs/ and examples
include(CMakePackageConfigHelpers)

install(TARGETS kyrcore EXPORT kyrcoreTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(TARGETS kyrcore_static EXPORT kyrcoreTargets
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/kyr DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)

set(config_dir ${CMAKE_INSTALL_LIBDIR}/cmake/kyrcore)
install(EXPORT kyrcoreTargets NAMESPACE kyrcore:: DESTINATION ${config_dir} COMPONENT development)
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/kyrcoreConfig.cmake.in
  ${PROJECT_BINARY_DIR}/kyrcoreConfig.cmake INSTALL_DESTINATION ${config_dir}
  PATH_VARS KYRCORE_PLUGINS_DIR KYRCORE_SCHEMA_DIR)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/kyrcoreConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/kyrcoreConfig.cmake ${PROJECT_BINARY_DIR}/kyrcoreConfigVersion.cmake
  ${PROJECT_SOURCE_DIR}/cmake/KyrcorePlugin.cmake DESTINATION ${config_dir} COMPONENT development)

# Written while installing: "cmake --install --prefix" may name another prefix than the one configured.
foreach(folder CMAKE_INSTALL_LIBDIR CMAKE_INSTALL_INCLUDEDIR KYRCORE_PLUGINS_DIR KYRCORE_SCHEMA_DIR)
  set(pc_${folder} ${${folder}})
  if(NOT IS_ABSOLUTE ${${folder}})
    set(pc_${folder} "\${prefix}/${${folder}}")
  endif()
endforeach()
configure_file(${PROJECT_SOURCE_DIR}/cmake/kyrcore.pc.in ${PROJECT_BINARY_DIR}/kyrcore.pc.in @ONLY)
install(CODE "file(READ \"${PROJECT_BINARY_DIR}/kyrcore.pc.in\" text)
file(WRITE \"${PROJECT_BINARY_DIR}/kyrcore.pc\" \"prefix=\${CMAKE_INSTALL_PREFIX}\\n\${text}\")" COMPONENT development)
install(FILES ${PROJECT_BINARY_DIR}/kyrcore.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
