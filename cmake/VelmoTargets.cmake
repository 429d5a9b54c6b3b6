# Compiler settings shared by all targets, and how our shared libraries are made.

# What every target takes: sanitizers and coverage. Calls into other libraries are resolved
# as these are loaded, one jump less each.
add_library(velmo_build_mode INTERFACE)
target_compile_options(velmo_build_mode INTERFACE $<$<CONFIG:Release,RelWithDebInfo>:-fno-plt>)
if(VELMO_SANITIZE)
  target_compile_options(velmo_build_mode INTERFACE -fsanitize=${VELMO_SANITIZE} -fno-omit-frame-pointer
                                                    -fno-sanitize-recover=all)
  target_link_options(velmo_build_mode INTERFACE -fsanitize=${VELMO_SANITIZE})
endif()
if(VELMO_COVERAGE)
  target_compile_options(velmo_build_mode INTERFACE --coverage -fprofile-update=atomic) # threads count too
  target_link_options(velmo_build_mode INTERFACE --coverage)
endif()

# What our own code takes in addition; generated code does not.
add_library(velmo_warnings INTERFACE)
target_compile_options(velmo_warnings INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion)
if(VELMO_WERROR)
  target_compile_options(velmo_warnings INTERFACE -Werror)
endif()

# velmo_own_code(TARGET): compiler settings of our own code.
function(velmo_own_code target)
  target_link_libraries(${target} PRIVATE velmo_build_mode velmo_warnings)
  target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR})
endfunction()

# velmo_shared_library(TARGET SOURCE...): a shared library that users link.
# Never unloaded: the broker's and the logger's threads may outlive a dlclose().
function(velmo_shared_library target)
  add_library(${target} SHARED ${ARGN})
  set_target_properties(${target} PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
  target_link_options(${target} PRIVATE -Wl,-z,nodelete)
  if(NOT VELMO_SANITIZE) # whose symbols some compilers leave to the program
    target_link_options(${target} PRIVATE -Wl,-z,defs)
  endif()
endfunction()

# velmo_export_only(TARGET MAP): exports what a linker version script lists.
function(velmo_export_only target map)
  target_link_options(${target} PRIVATE -Wl,--version-script=${map})
  set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${map})
endfunction()
