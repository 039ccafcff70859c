target_sources(kyrcore_objects PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/NumberText.cpp
  ${CMAKE_CURRENT_LIST_DIR}/TCIMArrayValueImpl.cpp
  ${CMAKE_CURRENT_LIST_DIR}/TCIMDateTime.cpp
  ${CMAKE_CURRENT_LIST_DIR}/TCIMDateTimeImpl.cpp
  ${CMAKE_CURRENT_LIST_DIR}/TCIMDateTimeValueImpl.cpp
  ${CMAKE_CURRENT_LIST_DIR}/TCIMNumericValueImpl.cpp
  ${CMAKE_CURRENT_LIST_DIR}/TCIMPropertyDisplay.cpp
  ${CMAKE_CURRENT_LIST_DIR}/TCIMReferenceValueImpl.cpp
  ${CMAKE_CURRENT_LIST_DIR}/TCIMStringValueImpl.cpp
  ${CMAKE_CURRENT_LIST_DIR}/TCIMValue.cpp
  ${CMAKE_CURRENT_LIST_DIR}/TCIMValueImpl.cpp
  ${CMAKE_CURRENT_LIST_DIR}/TCIMValueTransfer.cpp
  ${CMAKE_CURRENT_LIST_DIR}/TypeName.cpp
  ${CMAKE_CURRENT_LIST_DIR}/UnitDisplay.cpp
  ${CMAKE_CURRENT_LIST_DIR}/ValueMapTable.cpp
)
