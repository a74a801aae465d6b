# Cross-builds for 32-bit ARM with hardware floating point (Debian's armhf):
#
#   cmake --toolchain .../VelaToolchainArmhf.cmake -DVELA_SYSROOT=DIR ...
#
# VELA_SYSROOT, or the environment variable of that name, is a directory with the target's headers and libraries; without
# it the compiler's own are used, which suffice for what needs the C and C++ libraries alone. What stands in
# CMAKE_PREFIX_PATH counts as built for the target.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR armv7l)

set(CMAKE_C_COMPILER arm-linux-gnueabihf-gcc)
set(CMAKE_CXX_COMPILER arm-linux-gnueabihf-g++)
# How arguments are passed changed with GCC 7; no older one can meet C++20.
set(CMAKE_CXX_FLAGS_INIT -Wno-psabi)

set(VELA_SYSROOT "$ENV{VELA_SYSROOT}" CACHE PATH "Headers and libraries of the target")
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES VELA_SYSROOT)
if(VELA_SYSROOT)
  if(NOT IS_DIRECTORY "${VELA_SYSROOT}/usr/lib/arm-linux-gnueabihf")
    message(FATAL_ERROR "VELA_SYSROOT: '${VELA_SYSROOT}' has no libraries of the target (usr/lib/arm-linux-gnueabihf)")
  endif()
  set(CMAKE_SYSROOT "${VELA_SYSROOT}")
  # The machine's own .pc files would lead to libraries of the wrong architecture.
  set(ENV{PKG_CONFIG_SYSROOT_DIR} "${VELA_SYSROOT}")
  set(ENV{PKG_CONFIG_LIBDIR} "${VELA_SYSROOT}/usr/lib/arm-linux-gnueabihf/pkgconfig:${VELA_SYSROOT}/usr/share/pkgconfig")
endif()

set(CMAKE_FIND_ROOT_PATH "${VELA_SYSROOT}" /usr/arm-linux-gnueabihf ${CMAKE_PREFIX_PATH})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# Tests run on the build machine. Processes that they start need the ARM format registered with the kernel, and
# QEMU_LD_PREFIX in their environment.
find_program(VELA_EMULATOR NAMES qemu-arm-static qemu-arm)
if(VELA_EMULATOR)
  set(CMAKE_CROSSCOMPILING_EMULATOR "${VELA_EMULATOR}")
  if(VELA_SYSROOT)
    list(APPEND CMAKE_CROSSCOMPILING_EMULATOR -L "${VELA_SYSROOT}")
  endif()
endif()
