# Chooses the object request broker and says how to build with it.
#
#   velmo_broker                     broker and ACE: headers, definitions, libraries of a client
#   velmo_broker_server              in addition what a server needs
#   VELMO_BROKER_PACKAGES            the names by which pkg-config knows what a client needs
#   VELMO_BROKER_LINK_OPTIONS        what programs in C need, to be linked with the library
#   velmo_idl_sources(VAR FILE.idl)  rules that make the stubs of an IDL file

set(_velmo_orbs auto TAO omniORB)
if(NOT VELMO_ORB IN_LIST _velmo_orbs)
  message(FATAL_ERROR "VELMO_ORB is \"${VELMO_ORB}\"; it can be auto, TAO or omniORB")
endif()

set(_velmo_TAO_releases 2.2...<4.1)
set(_velmo_omniORB_releases 4)
set(VELMO_BROKER ${VELMO_ORB})
if(VELMO_ORB STREQUAL "auto")
  find_package(TAO ${_velmo_TAO_releases} QUIET)
  if(TAO_FOUND)
    set(VELMO_BROKER TAO)
  else()
    set(VELMO_BROKER omniORB)
  endif()
endif()
find_package(${VELMO_BROKER} ${_velmo_${VELMO_BROKER}_releases} REQUIRED)
message(STATUS "Object request broker: ${VELMO_BROKER} ${${VELMO_BROKER}_VERSION}")

add_library(velmo_broker INTERFACE)
add_library(velmo_broker_server INTERFACE)
target_link_libraries(velmo_broker_server INTERFACE velmo_broker)
if(VELMO_BROKER STREQUAL "TAO")
  target_link_libraries(velmo_broker INTERFACE TAO::client)
  target_link_libraries(velmo_broker_server INTERFACE TAO::server)
  target_compile_definitions(velmo_broker INTERFACE $<BUILD_INTERFACE:VELMO_ORB_TAO>)
  list(JOIN _tao_client " " VELMO_BROKER_PACKAGES)
  if(ACE_ROOT) # where the linker does not look for what the library's libraries need
    set(VELMO_BROKER_LINK_OPTIONS -Wl,-rpath-link,${ACE_ROOT}/lib)
  endif()
else()
  target_link_libraries(velmo_broker INTERFACE omniORB::omniORB omniORB::ACE)
  target_compile_definitions(velmo_broker INTERFACE $<BUILD_INTERFACE:VELMO_ORB_OMNIORB>)
  set(VELMO_BROKER_PACKAGES "omniORB4 ACE")
endif()

# velmo_idl_sources(VAR FILE.idl): compiles FILE.idl into FILEC.h and FILEC.cpp (on
# TAO the skeletons as FILES.h and FILES.cpp too) in the current binary folder and
# sets VAR to the sources.
function(velmo_idl_sources variable idl)
  get_filename_component(stem ${idl} NAME_WE)
  set(source ${CMAKE_CURRENT_SOURCE_DIR}/${idl})
  set(out ${CMAKE_CURRENT_BINARY_DIR})
  file(GLOB all_idl CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.idl) # they include each other
  if(VELMO_BROKER STREQUAL "TAO")
    set(products ${out}/${stem}C.h ${out}/${stem}C.inl ${out}/${stem}C.cpp ${out}/${stem}S.h ${out}/${stem}S.cpp)
    set(compile ${TAO_ENVIRONMENT} ${TAO_IDL} -Sa -St -I${CMAKE_CURRENT_SOURCE_DIR} -o ${out} ${source})
  else()
    set(products ${out}/${stem}C.h ${out}/${stem}C.cpp)
    set(compile ${OMNIIDL} -bcxx -Wbh=C.h -Wbs=C.cpp -Wbuse_quotes -I${CMAKE_CURRENT_SOURCE_DIR} -C${out} ${source})
  endif()
  add_custom_command(OUTPUT ${products} COMMAND ${compile} DEPENDS ${all_idl}
                     COMMENT "Compiling ${idl}" VERBATIM)
  set(${variable} ${products} PARENT_SCOPE)
endfunction()
