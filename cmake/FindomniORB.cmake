# omniORB 4 as packaged, with the distribution's ACE:
#   omniORB::omniORB, omniORB::ACE, OMNIIDL
include(FindPackageHandleStandardArgs)
find_package(PkgConfig QUIET)
pkg_check_modules(omniORB4 QUIET IMPORTED_TARGET omniORB4)
pkg_check_modules(omniORB_ACE QUIET IMPORTED_TARGET ACE)
find_program(OMNIIDL omniidl)

find_package_handle_standard_args(omniORB
  REQUIRED_VARS omniORB4_FOUND omniORB_ACE_FOUND OMNIIDL
  VERSION_VAR omniORB4_VERSION
  REASON_FAILURE_MESSAGE "it needs the packages libomniorb4-dev, libace-dev, omniidl and omniorb-idl")

if(omniORB_FOUND AND NOT TARGET omniORB::omniORB)
  add_library(omniORB::omniORB ALIAS PkgConfig::omniORB4)
  add_library(omniORB::ACE ALIAS PkgConfig::omniORB_ACE)
endif()
