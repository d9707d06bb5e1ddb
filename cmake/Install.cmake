include(CMakePackageConfigHelpers)

# Four install components, one Debian package each (cmake/Package.cmake):
#   host     libkavo_host.so.0, the host platform
#   push     libkavo_push.so.0, the push utilities (they link the host platform)
#   dev      headers, the .so links, the CMake package and the pkg-config file
#   tool     the kavo-push command (tools/kavo-push, through CMAKE_INSTALL_DEFAULT_COMPONENT_NAME)

# Headers keep their tree paths: #include <kavo/push/common/push_base_rsp.h>
install(DIRECTORY kavo DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT dev
  FILES_MATCHING PATTERN "*.h" PATTERN "internal" EXCLUDE)

# One shared object per run-time package, as Debian's library policy has it: each package is
# named after its SONAME and can move to a new one on its own.
foreach(library IN ITEMS host push)
  install(TARGETS kavo_${library} EXPORT KavoPushTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT ${library} NAMELINK_COMPONENT dev
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT dev
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT ${library}
    INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
endforeach()

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
