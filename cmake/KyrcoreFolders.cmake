# Where things are installed: below the prefix, or absolute where the one who configures says so.
include(GNUInstallDirs)
set(KYRCORE_PLUGINS_DIR ${CMAKE_INSTALL_LIBDIR}/kyrcore/plugins)
set(KYRCORE_SCHEMA_DIR ${CMAKE_INSTALL_DATADIR}/kyrcore)

# install(), unless this is a part of another project that installs nothing of it.
function(kyrcore_install)
  if(KYRCORE_INSTALL)
    install(${ARGV})
  endif()
endfunction()

# kyrcore_way(<variable> <from> <to>): the relative path from one installed folder to another; it holds when the tree is
# moved.
function(kyrcore_way variable from to)
  get_filename_component(from ${from} ABSOLUTE BASE_DIR ${CMAKE_INSTALL_PREFIX})
  get_filename_component(to ${to} ABSOLUTE BASE_DIR ${CMAKE_INSTALL_PREFIX})
  file(RELATIVE_PATH way ${from} ${to})
  string(REGEX REPLACE "/$" "" way "${way}")
  set(${variable} ${way} PARENT_SCOPE)
endfunction()
