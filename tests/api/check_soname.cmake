# Checks that the SONAME of LIBRARY, which READELF shows, is SONAME.
cmake_minimum_required(VERSION 3.25)

execute_process(COMMAND ${READELF} -d ${LIBRARY}
                OUTPUT_VARIABLE dynamic COMMAND_ERROR_IS_FATAL ANY)
if(NOT dynamic MATCHES "\\(SONAME\\)[^\n]*\\[([^]\n]*)\\]")
  message(FATAL_ERROR "${LIBRARY} has no SONAME")
endif()
if(NOT CMAKE_MATCH_1 STREQUAL SONAME)
  message(FATAL_ERROR "the SONAME of ${LIBRARY} is ${CMAKE_MATCH_1}, not ${SONAME}")
endif()
