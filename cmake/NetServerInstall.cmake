# Headers, libraries, the CMake package and the pkg-config file.
include(CMakePackageConfigHelpers)

install(TARGETS netserver netsocket sharesdk EXPORT NetServerTargets
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/netserver)
install(DIRECTORY include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/netserver FILES_MATCHING PATTERN "*.h")
install(FILES LibProject/NetSocket/NetSocket.h LibProject/ShareSDK/ShareSDK.h
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/netserver)
install(EXPORT NetServerTargets NAMESPACE NetServer:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/NetServer)

configure_package_config_file(cmake/NetServerConfig.cmake.in "${PROJECT_BINARY_DIR}/NetServerConfig.cmake"
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/NetServer)
write_basic_package_version_file("${PROJECT_BINARY_DIR}/NetServerConfigVersion.cmake" COMPATIBILITY SameMinorVersion)
install(FILES "${PROJECT_BINARY_DIR}/NetServerConfig.cmake" "${PROJECT_BINARY_DIR}/NetServerConfigVersion.cmake"
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/NetServer)

# Relative to itself, so that the tree may be moved.
file(RELATIVE_PATH NETSERVER_PC_TO_PREFIX "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
configure_file(cmake/netserver.pc.in "${PROJECT_BINARY_DIR}/netserver.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/netserver.pc" DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
