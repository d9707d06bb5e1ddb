# Cross build for the 64-bit ARM device with Debian's cross compiler. Libraries and headers
# come from the arm64 multiarch packages (libssl-dev:arm64, libjsoncpp-dev:arm64, ...), which
# live beside the host's under /usr, so there is no separate sysroot.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_LIBRARY_ARCHITECTURE aarch64-linux-gnu)
set(CMAKE_C_COMPILER aarch64-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)

# Plain qemu-aarch64: binaries load through libc6:arm64's loader. Pointing it at the cross
# toolchain's own libraries instead (-L /usr/aarch64-linux-gnu) hangs every thread creation.
find_program(KAVO_QEMU_AARCH64 qemu-aarch64 REQUIRED)
set(CMAKE_CROSSCOMPILING_EMULATOR ${KAVO_QEMU_AARCH64})

# Programs (protoc, pkg-config) are the build machine's; libraries and packages the device's.
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)

# pkg-config (which FindOpenSSL asks first) reads the device's .pc files, not the host's.
set(ENV{PKG_CONFIG_LIBDIR} /usr/lib/aarch64-linux-gnu/pkgconfig:/usr/share/pkgconfig)
