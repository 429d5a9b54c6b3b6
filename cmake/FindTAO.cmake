# TAO and the ACE that it came with, from pkg-config or from the source tree that
# ACE_ROOT and TAO_ROOT (environment or cache) name:
#
#   TAO::client, TAO::server   what clients and servers link
#   TAO_IDL                    the IDL compiler
#   TAO_ENVIRONMENT            what a command line needs in front to run it
include(FindPackageHandleStandardArgs)

set(_tao_client ACE TAO TAO_AnyTypeCode TAO_CodecFactory TAO_PI TAO_Valuetype TAO_Messaging
    TAO_PortableServer TAO_CosNaming)
set(_tao_server TAO_CosNaming_Skel TAO_IORTable)

foreach(variable ACE_ROOT TAO_ROOT)
  if(NOT ${variable} AND DEFINED ENV{${variable}})
    set(${variable} $ENV{${variable}})
  endif()
endforeach()
if(ACE_ROOT AND NOT TAO_ROOT)
  set(TAO_ROOT ${ACE_ROOT}/TAO)
endif()

if(ACE_ROOT)
  find_path(TAO_ACE_INCLUDE_DIR ace/ACE.h PATHS ${ACE_ROOT} NO_DEFAULT_PATH)
  find_path(TAO_INCLUDE_DIR tao/ORB.h PATHS ${TAO_ROOT} NO_DEFAULT_PATH)
  find_path(TAO_ORBSVCS_INCLUDE_DIR orbsvcs/CosNamingC.h PATHS ${TAO_ROOT}/orbsvcs NO_DEFAULT_PATH)
  find_program(TAO_IDL tao_idl PATHS ${ACE_ROOT}/bin ${TAO_ROOT}/TAO_IDL NO_DEFAULT_PATH)
  set(TAO_ENVIRONMENT ${CMAKE_COMMAND} -E env ACE_ROOT=${ACE_ROOT} TAO_ROOT=${TAO_ROOT}
      LD_LIBRARY_PATH=${ACE_ROOT}/lib)
  set(_tao_libraries)
  foreach(library ${_tao_client} ${_tao_server})
    find_library(TAO_LIBRARY_${library} ${library} PATHS ${ACE_ROOT}/lib NO_DEFAULT_PATH)
    list(APPEND _tao_libraries TAO_LIBRARY_${library})
  endforeach()
  find_package_handle_standard_args(TAO
    REQUIRED_VARS TAO_ACE_INCLUDE_DIR TAO_INCLUDE_DIR TAO_ORBSVCS_INCLUDE_DIR TAO_IDL ${_tao_libraries}
    REASON_FAILURE_MESSAGE "looked in ACE_ROOT=${ACE_ROOT} and TAO_ROOT=${TAO_ROOT}")
else()
  find_package(PkgConfig QUIET)
  string(REPLACE ";" " " _tao_modules "${_tao_client};${_tao_server}")
  pkg_check_modules(TAO_PC_CLIENT QUIET IMPORTED_TARGET ${_tao_client})
  pkg_check_modules(TAO_PC_SERVER QUIET IMPORTED_TARGET ${_tao_server})
  find_program(TAO_IDL tao_idl)
  set(TAO_ENVIRONMENT)
  find_package_handle_standard_args(TAO
    REQUIRED_VARS TAO_PC_CLIENT_FOUND TAO_PC_SERVER_FOUND TAO_IDL
    REASON_FAILURE_MESSAGE
      "looked for ${_tao_modules} in pkg-config, and for tao_idl in the path, since neither ACE_ROOT nor TAO_ROOT is set")
endif()

if(TAO_FOUND AND NOT TARGET TAO::client)
  if(ACE_ROOT)
    # Libraries of a source tree name each other without a path: the search path of
    # the program that loads them has to hold for them, too.
    function(_tao_target target)
      add_library(TAO::${target} INTERFACE IMPORTED)
      target_include_directories(TAO::${target} SYSTEM INTERFACE
        ${TAO_ACE_INCLUDE_DIR} ${TAO_INCLUDE_DIR} ${TAO_ORBSVCS_INCLUDE_DIR})
      foreach(library ${ARGN})
        target_link_libraries(TAO::${target} INTERFACE ${TAO_LIBRARY_${library}})
      endforeach()
      target_link_options(TAO::${target} INTERFACE -Wl,--disable-new-dtags -Wl,-rpath,${ACE_ROOT}/lib)
    endfunction()
    _tao_target(client ${_tao_client})
    _tao_target(server ${_tao_server})
  else()
    add_library(TAO::client ALIAS PkgConfig::TAO_PC_CLIENT)
    add_library(TAO::server ALIAS PkgConfig::TAO_PC_SERVER)
  endif()
endif()
mark_as_advanced(TAO_IDL TAO_ACE_INCLUDE_DIR TAO_INCLUDE_DIR TAO_ORBSVCS_INCLUDE_DIR)
