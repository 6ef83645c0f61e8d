# Headers, libraries of both kinds, the CMake package and the pkg-config files.
#
# Components, for `cmake --install BUILD --component NAME`: libraries (what a program needs to run), development (what it
# needs to be built), camera and nvr (the applications, which install themselves).
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/NetServer)
foreach(kind static shared)
  install(TARGETS netserver-${kind} netsocket-${kind} sharesdk-${kind} EXPORT NetServerTargets-${kind}
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT libraries NAMELINK_COMPONENT development)
  install(EXPORT NetServerTargets-${kind} NAMESPACE NetServer:: DESTINATION ${package_dir} COMPONENT development)
endforeach()
install(DIRECTORY include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/netserver COMPONENT development
  FILES_MATCHING PATTERN "*.h")
install(FILES LibProject/NetSocket/NetSocket.h LibProject/ShareSDK/ShareSDK.h
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/netserver COMPONENT development)

configure_package_config_file(cmake/NetServerConfig.cmake.in "${PROJECT_BINARY_DIR}/NetServerConfig.cmake"
  INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file("${PROJECT_BINARY_DIR}/NetServerConfigVersion.cmake" COMPATIBILITY SameMajorVersion)
install(FILES "${PROJECT_BINARY_DIR}/NetServerConfig.cmake" "${PROJECT_BINARY_DIR}/NetServerConfigVersion.cmake"
  DESTINATION ${package_dir} COMPONENT development)

# Relative to itself, so that the tree may be moved.
file(RELATIVE_PATH NETSERVER_PC_TO_PREFIX "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
string(REGEX REPLACE "/$" "" NETSERVER_PC_TO_PREFIX "${NETSERVER_PC_TO_PREFIX}")
foreach(file netserver.pc netserver-static.pc)
  configure_file(cmake/${file}.in "${PROJECT_BINARY_DIR}/${file}" @ONLY)
  install(FILES "${PROJECT_BINARY_DIR}/${file}" DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
endforeach()
