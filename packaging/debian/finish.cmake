# Run by CPack when a component's files are in place: compresses its manual pages, and adds
# the copyright and the changelog of its package.
cmake_minimum_required(VERSION 3.25)
find_program(GZIP gzip REQUIRED)

list(GET CPACK_INSTALL_CMAKE_PROJECTS 0 build)
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  set(root ${CPACK_TEMPORARY_DIRECTORY}/${component})
  file(GLOB pages ${root}${CPACK_INSTALL_PREFIX}/share/man/man*/*)
  string(TOUPPER ${component} upper)
  set(documents ${root}${CPACK_INSTALL_PREFIX}/share/doc/${CPACK_DEBIAN_${upper}_PACKAGE_NAME})
  file(MAKE_DIRECTORY ${documents})
  configure_file(${CMAKE_CURRENT_LIST_DIR}/copyright ${documents}/copyright COPYONLY)
  configure_file(${build}/packaging/changelog ${documents}/changelog.Debian COPYONLY)
  execute_process(COMMAND ${GZIP} -9nf ${pages} ${documents}/changelog.Debian
                  COMMAND_ERROR_IS_FATAL ANY)
endforeach()

# Nothing is installed from the build folder on account of this.
file(GLOB manifests ${build}/install_manifest_*.txt)
file(REMOVE ${manifests})
