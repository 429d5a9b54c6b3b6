# Fails unless the headers of the C++ layer call every C function of LIST (the exports of
# the library) and of vl_util.h. HEADERS: the folder of the public headers.
file(STRINGS ${LIST} functions REGEX "^[a-z]") # the others are names of C++
list(LENGTH functions count)
if(NOT count EQUAL 49)
  message(FATAL_ERROR "${LIST} has ${count} C functions")
endif()

file(STRINGS ${HEADERS}/vl_util.h declarations REGEX "^VL_EXPORT")
foreach(declaration IN LISTS declarations)
  string(REGEX MATCH "([a-z_]+)\\(" match "${declaration}")
  list(APPEND functions ${CMAKE_MATCH_1})
endforeach()

file(GLOB headers ${HEADERS}/velmo.hpp ${HEADERS}/cpp/*.hpp)
set(layer)
foreach(header IN LISTS headers)
  file(READ ${header} text)
  string(APPEND layer "${text}")
endforeach()
foreach(function IN LISTS functions)
  string(FIND "${layer}" "::${function}(" place)
  if(place EQUAL -1)
    message(SEND_ERROR "${function}() is not called")
  endif()
endforeach()
