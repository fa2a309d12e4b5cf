# Runs PROGRAM on the file INPUT and compares its output with the file EXPECTED.
execute_process(COMMAND ${PROGRAM} ${INPUT} OUTPUT_VARIABLE printed RESULT_VARIABLE status)
file(READ ${EXPECTED} expected)
if(NOT status EQUAL 0 OR NOT printed STREQUAL expected)
  message(FATAL_ERROR "${PROGRAM} ended with ${status} and printed, unlike ${EXPECTED}:\n${printed}")
endif()
