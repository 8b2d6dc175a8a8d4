# Toolchain file for the panel's processor, 32-bit ARM with hardware floating point, with Debian's cross
# compiler. scripts/arm-root creates the root folder with headers and libraries.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR armv7l)

if(NOT VELKO_ARM_ROOT)
    get_filename_component(VELKO_ARM_ROOT ${CMAKE_CURRENT_LIST_DIR}/../build/arm-root ABSOLUTE)
endif()
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES VELKO_ARM_ROOT)
if(NOT EXISTS ${VELKO_ARM_ROOT}/usr/include)
    message(FATAL_ERROR "There is no ARM root folder at ${VELKO_ARM_ROOT}. Run scripts/arm-root, "
        "or set VELKO_ARM_ROOT.")
endif()

set(CMAKE_C_COMPILER arm-linux-gnueabihf-gcc)
set(CMAKE_CXX_COMPILER arm-linux-gnueabihf-g++)
set(CMAKE_SYSROOT ${VELKO_ARM_ROOT})
set(CMAKE_LIBRARY_ARCHITECTURE arm-linux-gnueabihf)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(ENV{PKG_CONFIG_SYSROOT_DIR} ${VELKO_ARM_ROOT})
set(ENV{PKG_CONFIG_LIBDIR}
    ${VELKO_ARM_ROOT}/usr/lib/arm-linux-gnueabihf/pkgconfig:${VELKO_ARM_ROOT}/usr/share/pkgconfig)

# The build and ctest run programs for the panel under emulation.
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-arm -L ${VELKO_ARM_ROOT})
