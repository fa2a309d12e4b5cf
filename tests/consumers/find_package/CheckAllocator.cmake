# Fails when a library that PROGRAM loads, or the program itself, defines malloc or operator new, unless it
# is the C or the C++ library: a library that brings an allocator decides for the whole program.
file(GET_RUNTIME_DEPENDENCIES EXECUTABLES ${PROGRAM} RESOLVED_DEPENDENCIES_VAR libraries)
foreach(binary IN LISTS PROGRAM libraries)
  execute_process(COMMAND ${NM} -D --defined-only ${binary} OUTPUT_VARIABLE symbols
                  COMMAND_ERROR_IS_FATAL ANY)
  if(symbols MATCHES " (malloc|free|_Znwm|_ZdlPv)[@\n]" AND NOT binary MATCHES "/lib(c|stdc\\+\\+)\\.so")
    message(FATAL_ERROR "${binary} brings its own malloc or operator new into ${PROGRAM}")
  endif()
endforeach()
