kyrcore_add_test(unit_values CORE static SOURCES
  ${CMAKE_CURRENT_LIST_DIR}/NumberTextTest.cpp
  ${CMAKE_CURRENT_LIST_DIR}/TCIMDateTimeTest.cpp
  ${CMAKE_CURRENT_LIST_DIR}/TCIMPropertyDisplayTest.cpp
  ${CMAKE_CURRENT_LIST_DIR}/TCIMValueTest.cpp
)
