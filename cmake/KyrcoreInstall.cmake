# Installs headers, the shared library, the host, the plugins and the package files for find_package(kyrcore).
# schema/CMakeLists.txt installs the base document.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(config_dir ${CMAKE_INSTALL_LIBDIR}/cmake/kyrcore)
install(TARGETS kyrcore EXPORT kyrcoreTargets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT kyrcoreTargets NAMESPACE kyrcore:: DESTINATION ${config_dir})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/kyr DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/kyrcoreConfig.cmake.in
  ${PROJECT_BINARY_DIR}/kyrcoreConfig.cmake INSTALL_DESTINATION ${config_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/kyrcoreConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/kyrcoreConfig.cmake ${PROJECT_BINARY_DIR}/kyrcoreConfigVersion.cmake
  ${PROJECT_SOURCE_DIR}/cmake/KyrcorePlugin.cmake DESTINATION ${config_dir})

if(TARGET kyr)
  install(TARGETS kyr RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()
install(DIRECTORY ${PROJECT_BINARY_DIR}/plugins/ DESTINATION lib/kyrcore/plugins
  FILES_MATCHING PATTERN "*.pi.so" PATTERN "*.properties.xml" PATTERN CMakeFiles EXCLUDE)
