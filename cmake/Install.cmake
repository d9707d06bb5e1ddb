include(CMakePackageConfigHelpers)

# Headers keep their tree paths: #include <kavo/push/common/push_base_rsp.h>
install(DIRECTORY kavo DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
  FILES_MATCHING PATTERN "*.h" PATTERN "internal" EXCLUDE)

install(TARGETS kavo_host kavo_push EXPORT KavoPushTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

set(KAVO_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/KavoPush)
install(EXPORT KavoPushTargets NAMESPACE KavoPush:: DESTINATION ${KAVO_CMAKE_DIR})

configure_package_config_file(cmake/KavoPushConfig.cmake.in
  ${PROJECT_BINARY_DIR}/KavoPushConfig.cmake INSTALL_DESTINATION ${KAVO_CMAKE_DIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/KavoPushConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/KavoPushConfig.cmake
  ${PROJECT_BINARY_DIR}/KavoPushConfigVersion.cmake DESTINATION ${KAVO_CMAKE_DIR})

# The pkg-config file finds its prefix relative to itself, so the install can be moved.
file(RELATIVE_PATH KAVO_PC_TO_PREFIX /root/${CMAKE_INSTALL_LIBDIR}/pkgconfig /root)
configure_file(cmake/kavo-push.pc.in ${PROJECT_BINARY_DIR}/kavo-push.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/kavo-push.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

# `cpack` in a build folder makes a Debian package of the libraries, headers, CMake package
# and tool.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME kavo-push)
set(CPACK_PACKAGE_VENDOR "kavo-push developers")
set(CPACK_PACKAGE_CONTACT "kavo-push developers <kavo-push@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Push-notification service utilities of the Kavo platform, with their Linux host platform")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libssl3, libjsoncpp25, libssl-dev, libjsoncpp-dev")
include(CPack)
