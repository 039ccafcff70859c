# The kyr that, while building, writes the manual and the saved collection among the examples: KYRCORE_RUNNING_KYR. It is
# the one that is built, but for cross builds, where that one cannot run.
set(KYRCORE_NATIVE_KYR "" CACHE FILEPATH "A kyr of this version for the machine that builds; cross builds need it")
set(KYRCORE_RUNNING_KYR $<TARGET_FILE:kyr>)
if(KYRCORE_NATIVE_KYR)
  set(KYRCORE_RUNNING_KYR ${KYRCORE_NATIVE_KYR})
  execute_process(COMMAND ${KYRCORE_NATIVE_KYR} --version OUTPUT_VARIABLE native_version OUTPUT_STRIP_TRAILING_WHITESPACE)
  if(NOT native_version STREQUAL "kyr ${PROJECT_VERSION}")
    message(FATAL_ERROR "KYRCORE_NATIVE_KYR is '${KYRCORE_NATIVE_KYR}', which with --version says '${native_version}' and not "
      "'kyr ${PROJECT_VERSION}'. Name one of this version: its help becomes the manual.")
  endif()
elseif(CMAKE_CROSSCOMPILING)
  message(FATAL_ERROR "kyr is built for another machine, and cannot write its manual on this one. Build it for this machine "
    "first, and name that one: -DKYRCORE_NATIVE_KYR=<build folder>/bin/kyr. Or leave it out: -DKYRCORE_HOST=OFF")
endif()
