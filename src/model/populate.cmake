target_sources(kyrcore_objects PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/DocumentFile.cpp
  ${CMAKE_CURRENT_LIST_DIR}/InstanceCloser.cpp
  ${CMAKE_CURRENT_LIST_DIR}/TContainerImplPopulate.cpp
)
