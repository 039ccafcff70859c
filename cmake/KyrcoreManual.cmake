# The manual and the completion of shells. kyr writes section 1 from its help; the other sections are in man/.
include(GNUInstallDirs)
# SOURCE_DATE_EPOCH, which packages set, makes it the date of the sources.
string(TIMESTAMP KYRCORE_MANUAL_DATE "%B %d, %Y" UTC)
set(manual ${PROJECT_BINARY_DIR}/man)
file(MAKE_DIRECTORY ${manual}/man1)
foreach(page kyr-collection.5 kyr-json.5 kyr-exit-status.7 kyr-plugin.7)
  string(REGEX MATCH "[57]$" section ${page})
  configure_file(${PROJECT_SOURCE_DIR}/man/${page}.in ${manual}/man${section}/${page} @ONLY)
endforeach()
add_custom_command(OUTPUT ${manual}/man1/kyr.1 DEPENDS kyr VERBATIM
  COMMAND ${CMAKE_COMMAND} -E env ASAN_OPTIONS=detect_leaks=0 ${KYRCORE_RUNNING_KYR} __manual ${manual}/man1 ${KYRCORE_MANUAL_DATE})
add_custom_target(manual ALL DEPENDS ${manual}/man1/kyr.1)
kyrcore_install(DIRECTORY ${manual}/ DESTINATION ${CMAKE_INSTALL_MANDIR} COMPONENT tool)

set(KYRCORE_ZSH_COMPLETIONS ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions CACHE STRING
  "Folder for the completion of zsh; site-functions outside of Debian")
set(completion ${PROJECT_SOURCE_DIR}/completion)
kyrcore_install(FILES ${completion}/kyr.bash DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME kyr COMPONENT tool)
kyrcore_install(FILES ${completion}/_kyr DESTINATION ${KYRCORE_ZSH_COMPLETIONS} COMPONENT tool)
kyrcore_install(FILES ${completion}/kyr.fish DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d COMPONENT tool)
