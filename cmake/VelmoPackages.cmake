# Debian packages of what cmake/VelmoInstall.cmake lays out, one for each component;
# scripts/package makes and checks them.
set(VELMO_MAINTAINER "Velmo maintainers <maintainers@example.org>" CACHE STRING
    "Maintainer of the packages, as Debian writes it; for whoever hands them out")
set(VELMO_PACKAGE_REVISION 1 CACHE STRING "Revision of the packages of this version")

set(debian ${PROJECT_SOURCE_DIR}/packaging/debian)
string(TIMESTAMP VELMO_PACKAGE_DATE "%a, %d %b %Y %H:%M:%S +0000" UTC) # SOURCE_DATE_EPOCH's
configure_file(${debian}/changelog.in ${PROJECT_BINARY_DIR}/packaging/changelog @ONLY)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME velmo)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT ${VELMO_MAINTAINER})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # each has its own
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_SET_DESTDIR ON) # /etc is not below the prefix
set(CPACK_STRIP_FILES ON)
set(CPACK_PRE_BUILD_SCRIPTS ${debian}/finish.cmake)
set(CPACK_COMPONENTS_ALL libraries development server tools)
set(CPACK_COMPONENTS_GROUPING IGNORE)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_RELEASE ${VELMO_PACKAGE_REVISION})
set(CPACK_DEBIAN_PACKAGE_SOURCE velmo)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
foreach(component DEVELOPMENT SERVER TOOLS)
  set(CPACK_COMPONENT_${component}_DEPENDS libraries)
endforeach()

set(CPACK_DEBIAN_LIBRARIES_PACKAGE_NAME libvelmo-api${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_LIBRARIES_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_LIBRARIES_DESCRIPTION "client library for the Velmo middleware
Velmo lets programs of a plant, a vehicle or a test bench talk to each other
through named servers: ports with packets and replies, points with values,
events, and the arbitration of which program is master.

This package has the shared libraries, and their texts in English and German.")
set(CPACK_DEBIAN_LIBRARIES_PACKAGE_CONTROL_EXTRA ${debian}/triggers)

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libvelmo-api-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS "velmod, velmo-tools")
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "client library for the Velmo middleware (development)
Velmo lets programs of a plant, a vehicle or a test bench talk to each other
through named servers.

This package has what programs in C and C++ are built with: headers, files for
pkg-config and CMake, the interface definitions, and examples.")
if(VELMO_BROKER STREQUAL "omniORB") # Debian has no package of the other one
  set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "libomniorb4-dev, libace-dev, omniidl")
endif()

set(CPACK_DEBIAN_SERVER_PACKAGE_NAME velmod)
set(CPACK_DEBIAN_SERVER_PACKAGE_SECTION net)
set(CPACK_DEBIAN_SERVER_PACKAGE_RECOMMENDS velmo-tools)
set(CPACK_DEBIAN_SERVER_DESCRIPTION "server of the Velmo middleware
Velmo lets programs of a plant, a vehicle or a test bench talk to each other
through named servers.

This package has velmod, such a server, as a service of systemd that listens on
127.0.0.1 unless it is configured otherwise.")
set(CPACK_DEBIAN_SERVER_PACKAGE_CONTROL_EXTRA
  ${debian}/conffiles ${debian}/postinst ${debian}/prerm ${debian}/postrm)

set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME velmo-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION net)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SUGGESTS velmod)
set(CPACK_DEBIAN_TOOLS_DESCRIPTION "command for the Velmo middleware, and its documentation
Velmo lets programs of a plant, a vehicle or a test bench talk to each other
through named servers.

This package has the command velmo, which does all of it from a shell, with
completion for bash, zsh and fish, and the documentation.")

# The programs find the libraries of this build, and depend on their package as above.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")

include(CPack)
