# Rules for `cmake --install`. The component "runtime" is for panels, "development" for building hosts.

install(TARGETS Velko_Modbus_RTU interface_header EXPORT velko_modbus_rtuTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime
            NAMELINK_COMPONENT development)
install(FILES include/velko_modbus_rtu.h
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)
install(FILES docs/writing-a-host.md docs/two-lines.md
    DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/velko-modbus-rtu-dev COMPONENT development)
install(DIRECTORY examples/two-lines
    DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/velko-modbus-rtu-dev/examples COMPONENT development)
if(TARGET panelhost)
    install(TARGETS panelhost DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime)
    install(FILES CHANGES.md docs/panelhost.md docs/json.md examples/packing-line.toml
        DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/velko-modbus-rtu COMPONENT runtime)
endif()

# --- pkg-config ---

file(RELATIVE_PATH prefix_from_pkgconfig /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
string(REGEX REPLACE "/$" "" prefix_from_pkgconfig ${prefix_from_pkgconfig})
configure_file(cmake/package/velko_modbus_rtu.pc.in package/velko_modbus_rtu.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/package/velko_modbus_rtu.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)

# --- CMake package ---

set(cmake_folder ${CMAKE_INSTALL_LIBDIR}/cmake/velko_modbus_rtu)
install(EXPORT velko_modbus_rtuTargets NAMESPACE Velko::
    DESTINATION ${cmake_folder} COMPONENT development)
configure_package_config_file(cmake/package/velko_modbus_rtuConfig.cmake.in
    ${PROJECT_BINARY_DIR}/package/velko_modbus_rtuConfig.cmake
    INSTALL_DESTINATION ${cmake_folder} NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/package/velko_modbus_rtuConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/package/velko_modbus_rtuConfig.cmake
              ${PROJECT_BINARY_DIR}/package/velko_modbus_rtuConfigVersion.cmake
    DESTINATION ${cmake_folder} COMPONENT development)
