# TAO and the ACE that it came with, from the source tree that ACE_ROOT and TAO_ROOT
# (cache or environment; the cache keeps them once TAO is found there) name, else from
# pkg-config:
#
#   TAO::client, TAO::server   what clients and servers link
#   TAO_IDL                    the IDL compiler
#   TAO_ENVIRONMENT            what a command line needs in front to run it
#   TAO_VERSION
include(FindPackageHandleStandardArgs)

set(_tao_client ACE TAO TAO_AnyTypeCode TAO_CodecFactory TAO_PI TAO_Valuetype TAO_Messaging
    TAO_PortableServer TAO_CosNaming)
set(_tao_server TAO_CosNaming_Skel TAO_IORTable)
list(JOIN _tao_client ", " _tao_names)
list(JOIN _tao_server ", " _tao_server_names)
string(APPEND _tao_names ", ${_tao_server_names}")

foreach(variable ACE_ROOT TAO_ROOT)
  if(NOT ${variable} AND DEFINED ENV{${variable}})
    set(${variable} $ENV{${variable}})
  endif()
endforeach()
if(ACE_ROOT AND NOT TAO_ROOT)
  set(TAO_ROOT ${ACE_ROOT}/TAO)
elseif(TAO_ROOT AND NOT ACE_ROOT)
  get_filename_component(ACE_ROOT ${TAO_ROOT} DIRECTORY)
endif()

if(ACE_ROOT)
  set(_tao_found TAO_ACE_INCLUDE_DIR TAO_INCLUDE_DIR TAO_ORBSVCS_INCLUDE_DIR)
  find_path(TAO_ACE_INCLUDE_DIR ace/ACE.h PATHS ${ACE_ROOT} NO_DEFAULT_PATH NO_CACHE)
  find_path(TAO_INCLUDE_DIR tao/ORB.h PATHS ${TAO_ROOT} NO_DEFAULT_PATH NO_CACHE)
  find_path(TAO_ORBSVCS_INCLUDE_DIR orbsvcs/CosNamingC.h PATHS ${TAO_ROOT}/orbsvcs NO_DEFAULT_PATH NO_CACHE)
  find_program(TAO_IDL tao_idl PATHS ${ACE_ROOT}/bin ${TAO_ROOT}/TAO_IDL NO_DEFAULT_PATH NO_CACHE)
  set(TAO_ENVIRONMENT ${CMAKE_COMMAND} -E env ACE_ROOT=${ACE_ROOT} TAO_ROOT=${TAO_ROOT}
      LD_LIBRARY_PATH=${ACE_ROOT}/lib)
  foreach(library ${_tao_client} ${_tao_server})
    find_library(TAO_LIBRARY_${library} ${library} PATHS ${ACE_ROOT}/lib NO_DEFAULT_PATH NO_CACHE)
    list(APPEND _tao_found TAO_LIBRARY_${library})
  endforeach()
  if(TAO_INCLUDE_DIR)
    file(STRINGS ${TAO_INCLUDE_DIR}/tao/Version.h _tao_line REGEX "define TAO_VERSION ")
    string(REGEX REPLACE ".*\"([0-9.]+).*" "\\1" TAO_VERSION "${_tao_line}")
  endif()
  set(_tao_reason "looked for the libraries ${_tao_names} in ${ACE_ROOT}/lib, for tao_idl in \
${ACE_ROOT}/bin, and for headers in ${ACE_ROOT}, ${TAO_ROOT} and ${TAO_ROOT}/orbsvcs, which \
ACE_ROOT=${ACE_ROOT} and TAO_ROOT=${TAO_ROOT} name")
else()
  set(_tao_found TAO_PC_CLIENT_FOUND TAO_PC_SERVER_FOUND)
  find_package(PkgConfig QUIET)
  pkg_check_modules(TAO_PC_CLIENT QUIET IMPORTED_TARGET ${_tao_client})
  pkg_check_modules(TAO_PC_SERVER QUIET IMPORTED_TARGET ${_tao_server})
  find_program(TAO_IDL tao_idl NO_CACHE)
  set(TAO_ENVIRONMENT)
  set(TAO_VERSION ${TAO_PC_CLIENT_TAO_VERSION})
  set(_tao_reason "looked for ${_tao_names} in pkg-config, and for tao_idl in the path, since \
neither ACE_ROOT nor TAO_ROOT is set")
endif()

find_package_handle_standard_args(TAO
  REQUIRED_VARS TAO_IDL ${_tao_found}
  VERSION_VAR TAO_VERSION
  HANDLE_VERSION_RANGE
  REASON_FAILURE_MESSAGE "${_tao_reason}")

# TAO's libraries name each other without a path: the search path of the program that
# loads one of them has to hold for the others, too, which that of newer tags does not.
function(_tao_target target)
  cmake_parse_arguments(arg "" "" "INCLUDE;LINK;FOLDERS" ${ARGN})
  add_library(TAO::${target} INTERFACE IMPORTED)
  target_include_directories(TAO::${target} SYSTEM INTERFACE ${arg_INCLUDE})
  target_link_libraries(TAO::${target} INTERFACE ${arg_LINK})
  set(folders ${arg_FOLDERS})
  list(REMOVE_ITEM folders ${CMAKE_CXX_IMPLICIT_LINK_DIRECTORIES})
  target_link_options(TAO::${target} INTERFACE -Wl,--disable-new-dtags)
  foreach(folder ${folders})
    target_link_options(TAO::${target} INTERFACE -Wl,-rpath,${folder})
  endforeach()
endfunction()

if(TAO_FOUND AND ACE_ROOT) # a later run may lack the environment of this one
  set(ACE_ROOT ${ACE_ROOT} CACHE PATH "Source tree of ACE")
  set(TAO_ROOT ${TAO_ROOT} CACHE PATH "Source tree of TAO")
endif()
if(TAO_FOUND AND NOT TARGET TAO::client)
  foreach(_tao_part client server)
    if(ACE_ROOT)
      set(_tao_libraries)
      foreach(library ${_tao_${_tao_part}})
        list(APPEND _tao_libraries ${TAO_LIBRARY_${library}})
      endforeach()
      _tao_target(${_tao_part} LINK ${_tao_libraries} FOLDERS ${ACE_ROOT}/lib
                  INCLUDE ${TAO_ACE_INCLUDE_DIR} ${TAO_INCLUDE_DIR} ${TAO_ORBSVCS_INCLUDE_DIR})
    else()
      string(TOUPPER TAO_PC_${_tao_part} _tao_package)
      _tao_target(${_tao_part} LINK PkgConfig::${_tao_package} FOLDERS ${${_tao_package}_LIBRARY_DIRS})
    endif()
  endforeach()
endif()
