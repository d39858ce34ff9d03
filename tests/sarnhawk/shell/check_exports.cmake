# Fails unless LIBRARY defines exactly the dynamic symbol EXPECTED.
execute_process(
  COMMAND ${NM} -D --defined-only --format=posix ${LIBRARY}
  OUTPUT_VARIABLE listing
  RESULT_VARIABLE status)
if(NOT status EQUAL 0)
  message(FATAL_ERROR "nm failed on ${LIBRARY}")
endif()
string(REGEX REPLACE " [^\n]*" "" names "${listing}")
string(STRIP "${names}" names)
if(NOT names STREQUAL EXPECTED)
  message(FATAL_ERROR "exported by ${LIBRARY}:\n${names}\nexpected: ${EXPECTED}")
endif()
