# Checks that PROGRAM calls every C function in LIST, a list of symbols; NM reads its own.
cmake_minimum_required(VERSION 3.25)

execute_process(COMMAND ${NM} -D --undefined-only --format=just-symbols ${PROGRAM}
                OUTPUT_VARIABLE called COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "[^\n]+" called "${called}")
file(STRINGS ${LIST} functions)
list(FILTER functions EXCLUDE REGEX "^_Z") # of classes
if(NOT functions)
  message(FATAL_ERROR "${LIST} has no functions")
endif()
list(REMOVE_ITEM functions ${called})
if(functions)
  list(JOIN functions "\n  " functions)
  message(FATAL_ERROR "${PROGRAM} does not call\n  ${functions}")
endif()
