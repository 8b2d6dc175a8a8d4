# Debian packages made by `cpack` (scripts/packages): velko-modbus-rtu with the shared library and the
# program panelhost, velko-modbus-rtu-dev with header, library link, pkg-config and CMake files.

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME velko-modbus-rtu)
set(CPACK_PACKAGE_CONTACT "The developers of velko-modbus-rtu <velko-modbus-rtu@localhost>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL runtime development)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME velko-modbus-rtu)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION
"The shared library that an operator panel's runtime loads, and panelhost,
a command-line program that polls and writes PLCs with it.")
# The trigger runs ldconfig. A script would need a shell in the root folder of the installation.
configure_file(cmake/package/shlibs.in package/shlibs @ONLY)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA
    ${PROJECT_SOURCE_DIR}/cmake/package/triggers ${PROJECT_BINARY_DIR}/package/shlibs)

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME velko-modbus-rtu-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION
"Files for building hosts: the header, the link to the shared library,
pkg-config and CMake files, and an example.")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS
    "velko-modbus-rtu (= ${PROJECT_VERSION}), qtbase5-dev (>= 5.15)")

# Maintained by hand and the same for all machines, because dpkg-shlibdeps needs a dpkg database of the
# target machine. scripts/test-packages compares them with the requirements of the files.
set(CPACK_DEBIAN_RUNTIME_PACKAGE_DEPENDS
    "libc6 (>= 2.34), libgcc-s1 (>= 3.5), libmodbus5 (>= 3.1.6), libpcap0.8 (>= 0.9.8), \
libqt5core5a (>= 5.15.1), libqt5serialport5 (>= 5.6.0), libstdc++6 (>= 12), libtomlplusplus3 (>= 3.2.0)")
if(CMAKE_CROSSCOMPILING)
    set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE armhf)
endif()

include(CPack)
