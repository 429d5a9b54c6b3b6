# Compares what LIBRARY exports with LIST, a sorted list of symbols; NM reads them.
cmake_minimum_required(VERSION 3.25)

execute_process(COMMAND ${NM} -D --defined-only --format=just-symbols ${LIBRARY}
                OUTPUT_VARIABLE exported COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "[^\n]+" exported "${exported}")
file(STRINGS ${LIST} listed)

set(difference "")
foreach(symbol IN LISTS exported)
  if(NOT symbol IN_LIST listed)
    string(APPEND difference "  exported, not listed:  ${symbol}\n")
  endif()
endforeach()
foreach(symbol IN LISTS listed)
  if(NOT symbol IN_LIST exported)
    string(APPEND difference "  listed, not exported:  ${symbol}\n")
  endif()
endforeach()
if(difference)
  message(FATAL_ERROR "${LIBRARY} and ${LIST} differ:\n${difference}")
endif()

set(sorted ${listed})
list(SORT sorted)
if(NOT sorted STREQUAL listed)
  message(FATAL_ERROR "${LIST} is not sorted")
endif()
