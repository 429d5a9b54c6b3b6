# What `cmake --install` lays out, and the target `uninstall`. Components, each of which is
# a package, too: libraries, development, server, tools.
include(CMakePackageConfigHelpers)

set(packaging ${PROJECT_SOURCE_DIR}/packaging)
set(documents ${CMAKE_INSTALL_DATADIR}/doc/velmo)

# velmo_install_made(COMPONENT FOLDER FILE.in...): files that tell where others are. They
# are made when they are installed: the prefix is that of `cmake --install --prefix`.
function(velmo_install_made component folder)
  foreach(template ${ARGN})
    get_filename_component(file ${template} NAME_WLE)
    install(CODE "
      set(prefix \"\${CMAKE_INSTALL_PREFIX}\")
      set(version \"${PROJECT_VERSION}\")
      set(description \"${PROJECT_DESCRIPTION}\")
      set(broker_packages \"${VELMO_BROKER_PACKAGES}\")
      set(broker_link_options \"${VELMO_BROKER_LINK_OPTIONS}\")
      cmake_path(APPEND prefix \"${CMAKE_INSTALL_BINDIR}\" OUTPUT_VARIABLE bindir)
      cmake_path(APPEND prefix \"${CMAKE_INSTALL_LIBDIR}\" OUTPUT_VARIABLE libdir)
      cmake_path(APPEND prefix \"${CMAKE_INSTALL_INCLUDEDIR}\" OUTPUT_VARIABLE includedir)
      cmake_path(APPEND prefix \"${documents}\" OUTPUT_VARIABLE docdir)
      cmake_path(APPEND prefix \"${folder}\" OUTPUT_VARIABLE folder)
      configure_file(\"${template}\" \"${PROJECT_BINARY_DIR}/packaging/${file}\" @ONLY)
      file(INSTALL \"${PROJECT_BINARY_DIR}/packaging/${file}\" DESTINATION \"\${folder}\")"
      COMPONENT ${component})
  endforeach()
endfunction()

# Libraries. They and the programs find each other wherever the whole is put, which is
# not needed in folders where the linker looks anyway.
set(libraries velmo_api Velmo_Util Quilp80 Velmo Velmo_server)
if(NOT CMAKE_INSTALL_FULL_LIBDIR IN_LIST CMAKE_PLATFORM_IMPLICIT_LINK_DIRECTORIES AND
   NOT CMAKE_INSTALL_FULL_LIBDIR IN_LIST CMAKE_CXX_IMPLICIT_LINK_DIRECTORIES)
  file(RELATIVE_PATH from_programs /${CMAKE_INSTALL_BINDIR} /${CMAKE_INSTALL_LIBDIR})
  set_target_properties(${libraries} PROPERTIES INSTALL_RPATH "$ORIGIN")
  set_target_properties(velmod velmo PROPERTIES INSTALL_RPATH "$ORIGIN/${from_programs}")
endif()
install(TARGETS ${libraries} EXPORT Velmo
  LIBRARY COMPONENT libraries NAMELINK_COMPONENT development)
install(DIRECTORY util/lang/ DESTINATION ${VELMO_LANGUAGES} COMPONENT libraries)

# Programs.
install(TARGETS velmod RUNTIME COMPONENT server)
install(TARGETS velmo RUNTIME COMPONENT tools)
velmo_install_made(server lib/systemd/system ${packaging}/velmod.service.in)
set(settings ${CMAKE_INSTALL_SYSCONFDIR}/velmo)
if(CMAKE_INSTALL_PREFIX STREQUAL "/usr") # whose etc is /etc
  set(settings ${CMAKE_INSTALL_FULL_SYSCONFDIR}/velmo)
endif()
install(FILES ${packaging}/velmo.xml.example DESTINATION ${settings} COMPONENT server)
install(FILES ${VELMO_PAGES}/man8/velmod.8 DESTINATION ${CMAKE_INSTALL_MANDIR}/man8 COMPONENT server)
install(FILES ${VELMO_PAGES}/man1/velmo.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tools)
install(FILES ${VELMO_PAGES}/man5/velmo-settings.5 DESTINATION ${CMAKE_INSTALL_MANDIR}/man5 COMPONENT tools)
foreach(completion ${VELMO_COMPLETIONS})
  get_filename_component(folder ${completion} DIRECTORY)
  install(FILES ${PROJECT_BINARY_DIR}/${completion} DESTINATION ${folder} COMPONENT tools)
endforeach()

# What programs are built with. The compiled interfaces stand beside the headers that
# include them.
install(DIRECTORY include/velmo DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)
install(DIRECTORY ${PROJECT_BINARY_DIR}/idl/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/velmo
  COMPONENT development
  FILES_MATCHING PATTERN "*C.h" PATTERN "*C.inl" PATTERN CMakeFiles EXCLUDE)
install(DIRECTORY idl/ DESTINATION ${CMAKE_INSTALL_DATADIR}/idl/velmo COMPONENT development
  FILES_MATCHING PATTERN "*.idl")
install(DIRECTORY examples DESTINATION ${documents} COMPONENT development
  FILES_MATCHING PATTERN "*.c" PATTERN "*.cpp" PATTERN "*.h" PATTERN "*.md")

velmo_install_made(development ${CMAKE_INSTALL_LIBDIR}/pkgconfig
  ${packaging}/velmo.pc.in ${packaging}/velmo-cpp.pc.in)

# Velmo::api is the C interface: programs that use it need nothing of the broker. Velmo::cpp
# is the classes as well.
add_library(velmo_cpp INTERFACE)
target_link_libraries(velmo_cpp INTERFACE ${libraries})
set_target_properties(velmo_api PROPERTIES EXPORT_NAME api)
set_target_properties(velmo_cpp PROPERTIES EXPORT_NAME cpp)
set_target_properties(velmo_headers PROPERTIES EXPORT_NAME headers)
set_target_properties(velmo_broker PROPERTIES EXPORT_NAME broker)
set_target_properties(velmo_broker_server PROPERTIES EXPORT_NAME broker_server)
target_link_libraries(velmo_api INTERFACE # vl_util.h
  $<INSTALL_INTERFACE:$<INSTALL_PREFIX>/${CMAKE_INSTALL_LIBDIR}/libVelmo_Util.so>)
target_link_options(velmo_api INTERFACE $<INSTALL_INTERFACE:${VELMO_BROKER_LINK_OPTIONS}>)
install(TARGETS velmo_cpp velmo_headers velmo_broker velmo_broker_server EXPORT Velmo)

set(config ${CMAKE_INSTALL_LIBDIR}/cmake/Velmo)
install(EXPORT Velmo DESTINATION ${config} NAMESPACE Velmo:: FILE VelmoTargets.cmake
  COMPONENT development)
configure_package_config_file(${packaging}/VelmoConfig.cmake.in
  ${PROJECT_BINARY_DIR}/packaging/VelmoConfig.cmake INSTALL_DESTINATION ${config})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/packaging/VelmoConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES
  ${PROJECT_BINARY_DIR}/packaging/VelmoConfig.cmake
  ${PROJECT_BINARY_DIR}/packaging/VelmoConfigVersion.cmake
  ${PROJECT_SOURCE_DIR}/cmake/Find${VELMO_BROKER}.cmake
  DESTINATION ${config} COMPONENT development)

# Documents, at the places that they name each other by.
install(FILES README.md CHANGELOG.md SECURITY.md DESTINATION ${documents} COMPONENT tools)
install(DIRECTORY docs DESTINATION ${documents} COMPONENT tools
  FILES_MATCHING PATTERN "*.md" PATTERN "*.svg"
  PATTERN site EXCLUDE PATTERN man EXCLUDE)

add_custom_target(uninstall
  COMMAND ${CMAKE_COMMAND} -DBUILD=${PROJECT_BINARY_DIR}
          -P ${PROJECT_SOURCE_DIR}/cmake/uninstall.cmake
  VERBATIM)
