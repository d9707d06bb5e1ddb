# `cpack` in a build folder makes four Debian packages from the install components, as Debian
# ships libraries: one run-time package per shared object, named after its SONAME, each pulling
# in only what it needs at run time; the -dev package; the tool.
set(KAVO_DEB_RELEASE 1)
set(KAVO_DEB_HOST libkavo-host${PROJECT_VERSION_MAJOR})
set(KAVO_DEB_PUSH libkavo-push${PROJECT_VERSION_MAJOR})
set(KAVO_DEB_DEV libkavo-push-dev)
set(KAVO_DEB_TOOL kavo-push)

# Every package carries the copyright file and the changelog in /usr/share/doc/<package>/; the
# tool has its manual page. Debian wants them compressed to the maximum, without a timestamp.
foreach(file IN ITEMS changelog kavo-push.1)
  execute_process(COMMAND gzip -9 -n -c ${PROJECT_SOURCE_DIR}/cmake/debian/${file}
    OUTPUT_FILE ${PROJECT_BINARY_DIR}/${file}.gz COMMAND_ERROR_IS_FATAL ANY)
endforeach()
file(RENAME ${PROJECT_BINARY_DIR}/changelog.gz ${PROJECT_BINARY_DIR}/changelog.Debian.gz)
install(FILES ${PROJECT_BINARY_DIR}/kavo-push.1.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tool)
foreach(component IN ITEMS host push dev tool)
  string(TOUPPER ${component} upper)
  install(FILES ${PROJECT_SOURCE_DIR}/cmake/debian/copyright ${PROJECT_BINARY_DIR}/changelog.Debian.gz
    DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/${KAVO_DEB_${upper}} COMPONENT ${component})
endforeach()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME kavo-push)
set(CPACK_PACKAGE_VENDOR "kavo-push developers")
set(CPACK_PACKAGE_CONTACT "kavo-push developers <kavo-push@example.org>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL host push dev tool)
set(CPACK_COMPONENT_PUSH_DEPENDS host)
set(CPACK_COMPONENT_DEV_DEPENDS push host)
set(CPACK_COMPONENT_TOOL_DEPENDS push host)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE ${KAVO_DEB_RELEASE})
set(CPACK_DEBIAN_PACKAGE_SOURCE kavo-push)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
# Run-time dependencies come from the binaries themselves; each library's package gets a shlibs
# file and the ldconfig trigger (CPack also writes postinst and postrm scripts that call
# ldconfig: harmless, the trigger makes them redundant).
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# Our own libraries are in the library packages' staging folders beside each package's; the
# dependencies on those packages are the component dependencies above.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ../host/usr/${CMAKE_INSTALL_LIBDIR} ../push/usr/${CMAKE_INSTALL_LIBDIR})
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)

set(CPACK_DEBIAN_HOST_PACKAGE_NAME ${KAVO_DEB_HOST})
set(CPACK_DEBIAN_HOST_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_HOST_PACKAGE_CONTROL_EXTRA ${PROJECT_SOURCE_DIR}/cmake/debian/triggers)
set(CPACK_DEBIAN_HOST_DESCRIPTION "Kavo host platform for Linux - shared library
The platform that the Kavo push-notification service utilities run on,
implemented for Linux (libkavo_host): parcels, reference counting, the
platform log, the service registry and its services, a simulated device,
system events, the device certificate manager and configuration lookup.
This package holds the shared library that programs need at run time.")

set(CPACK_DEBIAN_PUSH_PACKAGE_NAME ${KAVO_DEB_PUSH})
set(CPACK_DEBIAN_PUSH_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_PUSH_PACKAGE_CONTROL_EXTRA ${PROJECT_SOURCE_DIR}/cmake/debian/triggers)
set(CPACK_DEBIAN_PUSH_DESCRIPTION "Kavo push-notification service utilities - shared library
The shared utility library of the Kavo platform's push-notification service
(libkavo_push): results and public error codes, logging with identifier
masking, the parcelable message records, validation, hex, Base64, SHA-256,
Ed25519 and certificate chain helpers, JSON values, a thread pool.
This package holds the shared library that programs need at run time.")

set(CPACK_DEBIAN_DEV_PACKAGE_NAME ${KAVO_DEB_DEV})
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
# The public headers include OpenSSL's and jsoncpp's.
set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS "libssl-dev, libjsoncpp-dev")
set(CPACK_DEBIAN_DEV_DESCRIPTION "Kavo push-notification service utilities - development files
The shared utility library of the Kavo platform's push-notification service
and its Linux host platform.
This package holds what a program needs to build against them: the headers,
the linker links, the CMake package (find_package(KavoPush)) and the
pkg-config file (kavo-push).")

set(CPACK_DEBIAN_TOOL_PACKAGE_NAME ${KAVO_DEB_TOOL})
set(CPACK_DEBIAN_TOOL_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_TOOL_DESCRIPTION "command-line tool for the Kavo push-notification service utilities
The kavo-push command gives engineers the library's operations from a shell:
a demo of the push service's remote-notification request on a simulated
device, Base64 and SHA-256, Ed25519 key pairs, device certificate chains,
identifier masking, the public error codes, and decoding, encoding and
validating the message records in their parcel bytes.")

include(CPack)
