include(CMakePackageConfigHelpers)

# Three install components, one Debian package each (cmake/Package.cmake):
#   runtime  the shared objects, with their SONAMEs
#   dev      headers, the .so links, the CMake package and the pkg-config file
#   tool     the kavo-push command (tools/kavo-push, through CMAKE_INSTALL_DEFAULT_COMPONENT_NAME)

# Headers keep their tree paths: #include <kavo/push/common/push_base_rsp.h>
install(DIRECTORY kavo DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT dev
  FILES_MATCHING PATTERN "*.h" PATTERN "internal" EXCLUDE)

install(TARGETS kavo_host kavo_push EXPORT KavoPushTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT dev
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT dev
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

set(KAVO_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/KavoPush)
install(EXPORT KavoPushTargets NAMESPACE KavoPush:: DESTINATION ${KAVO_CMAKE_DIR} COMPONENT dev)

configure_package_config_file(cmake/KavoPushConfig.cmake.in
  ${PROJECT_BINARY_DIR}/KavoPushConfig.cmake INSTALL_DESTINATION ${KAVO_CMAKE_DIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/KavoPushConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/KavoPushConfig.cmake
  ${PROJECT_BINARY_DIR}/KavoPushConfigVersion.cmake DESTINATION ${KAVO_CMAKE_DIR} COMPONENT dev)

# The pkg-config file finds its prefix relative to itself, so the install can be moved.
file(RELATIVE_PATH KAVO_PC_TO_PREFIX /root/${CMAKE_INSTALL_LIBDIR}/pkgconfig /root)
configure_file(cmake/kavo-push.pc.in ${PROJECT_BINARY_DIR}/kavo-push.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/kavo-push.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT dev)

include(cmake/Package.cmake)
