# Runs PROGRAM on the file INPUT, and on a new clip if CLIP names one, and compares its output with the file
# EXPECTED.
if(CLIP)
  file(WRITE ${CLIP} "")
  file(REMOVE ${CLIP}.xmp)
  set(arguments 2 ${CLIP})
endif()
execute_process(COMMAND ${PROGRAM} ${INPUT} ${arguments} OUTPUT_VARIABLE printed RESULT_VARIABLE status)
file(READ ${EXPECTED} expected)
if(NOT status EQUAL 0 OR NOT printed STREQUAL expected)
  message(FATAL_ERROR "${PROGRAM} ended with ${status} and printed, unlike ${EXPECTED}:\n${printed}")
endif()
