# Warnings and definitions that every target of the project is built with.
add_library(kyrcore_options INTERFACE)

# Assertions are part of the interface, so that every build type has them: -UNDEBUG undoes the -DNDEBUG of CMake's own
# types.
target_compile_options(kyrcore_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wvla -UNDEBUG
  $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor -Woverloaded-virtual -Wextra-semi>
  $<$<COMPILE_LANGUAGE:C>:-Wstrict-prototypes>)
# The folder of the sources stays out of assertions, so that it does not make builds differ.
target_compile_options(kyrcore_options INTERFACE -fmacro-prefix-map=${PROJECT_SOURCE_DIR}/=)
if(KYRCORE_WERROR)
  target_compile_options(kyrcore_options INTERFACE -Werror)
endif()

# The whole tree is instrumented, plugins included: a host without the runtime cannot load an instrumented library.
if(KYRCORE_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()
if(KYRCORE_TSAN)
  add_compile_options(-fsanitize=thread -fno-omit-frame-pointer)
  add_link_options(-fsanitize=thread)
endif()
if(KYRCORE_COVERAGE)
  add_compile_options(--coverage -fprofile-abs-path)
  add_compile_definitions(KYR_COVERAGE)
  add_link_options(--coverage)
endif()
if(KYRCORE_FUZZ)
  if(NOT CMAKE_CXX_COMPILER_ID STREQUAL Clang)
    message(FATAL_ERROR "KYRCORE_FUZZ needs clang; use the preset \"fuzz\".")
  endif()
  add_compile_options(-fsanitize=fuzzer-no-link)
  add_link_options(-fsanitize=fuzzer-no-link)
endif()
