# cmake --install: both libraries, headers, the CMake package and the pkg-config files.

include(CMakePackageConfigHelpers)
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/vxkernel)

install(TARGETS vxkernel vxplatform EXPORT vxkernel-targets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
# libvxkernel finds libvxplatform beside itself, wherever the package is put.
set_target_properties(vxkernel vxplatform PROPERTIES INSTALL_RPATH "$ORIGIN")
install(DIRECTORY include/vx DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN "*.h")
install(EXPORT vxkernel-targets NAMESPACE vxkernel:: DESTINATION ${package_dir})

configure_package_config_file(cmake/vxkernel-config.cmake.in
  ${CMAKE_BINARY_DIR}/vxkernel-config.cmake INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${CMAKE_BINARY_DIR}/vxkernel-config-version.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/vxkernel-config.cmake ${CMAKE_BINARY_DIR}/vxkernel-config-version.cmake
        DESTINATION ${package_dir})

# The prefix is taken from the file's own place, so that the package can be moved.
file(RELATIVE_PATH VX_PC_PREFIX /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
configure_file(cmake/vxkernel.pc.in ${CMAKE_BINARY_DIR}/vxkernel.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/vxkernel.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
