# 32-bit ARM (armhf) with Debian's cross compiler and the sysroot that scripts/arm-sysroot.sh makes. Programs that the
# build starts, tests for one, run under qemu-user.
#
# -DNETSERVER_SYSROOT=directory takes another sysroot: a device's own.
set(NETSERVER_SYSROOT "${CMAKE_CURRENT_LIST_DIR}/../build/arm-sysroot" CACHE PATH
  "Headers and libraries of the device, as Debian lays them out")
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES NETSERVER_SYSROOT)

set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR arm)
set(CMAKE_C_COMPILER arm-linux-gnueabihf-gcc)
set(CMAKE_CXX_COMPILER arm-linux-gnueabihf-g++)
set(CMAKE_CXX_FLAGS_INIT -Wno-psabi) # no notes on what GCC 7.1 changed: one compiler builds everything

get_filename_component(CMAKE_SYSROOT "${NETSERVER_SYSROOT}" ABSOLUTE)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(ENV{PKG_CONFIG_LIBDIR} "${CMAKE_SYSROOT}/usr/lib/arm-linux-gnueabihf/pkgconfig:${CMAKE_SYSROOT}/usr/share/pkgconfig")
set(ENV{PKG_CONFIG_SYSROOT_DIR} "${CMAKE_SYSROOT}")

set(CMAKE_CROSSCOMPILING_EMULATOR qemu-arm -L "${CMAKE_SYSROOT}")
