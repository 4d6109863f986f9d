# Runs PROGRAM with ARGUMENT and fails unless it prints what the file EXPECTED holds.
execute_process(COMMAND ${PROGRAM} ${ARGUMENT} OUTPUT_VARIABLE output ERROR_VARIABLE errors RESULT_VARIABLE status)
string(REPLACE "\r" "" output "${output}")
file(READ ${EXPECTED} expected)
if(NOT status EQUAL 0 OR NOT output STREQUAL expected)
  message(FATAL_ERROR "status ${status}\n${errors}\nprinted:\n${output}\nexpected:\n${expected}")
endif()
