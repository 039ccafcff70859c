set(_model ${CMAKE_CURRENT_LIST_DIR})
kyrcore_add_test(unit_model CORE static SOURCES
  ${_model}/TCIMQualifierTest.cpp
  ${_model}/TCIMClassTest.cpp
  ${_model}/TCIMPropertyDeclTest.cpp
  ${_model}/OverridingTest.cpp
  ${_model}/TCIMInstanceTest.cpp
  ${_model}/TCIMReferenceTest.cpp
  ${_model}/TCIMPropertyTest.cpp
  ${_model}/AssociationsTest.cpp
  ${_model}/TContainerTest.cpp)
# Alone, so that it is quickly built with ThreadSanitizer; scripts/check threads does that.
kyrcore_add_test(unit_threads CORE static SOURCES ${_model}/ThreadsTest.cpp)
