# Installation: the library, its headers, a pkg-config file and a CMake
# package (find_package(qx_authmng CONFIG), target qx_authmng::qx_authmng).
# A host build installs the host stand-in beside the library; an external
# build installs neither it nor an rpath, and names no port library: the
# device's own image provides those.
include(CMakePackageConfigHelpers)

set(authmng_install_targets qx_authmng)
set(authmng_install_headers include/authmng.h platform/authmng_platform.h)
if(AUTHMNG_HOST)
  list(APPEND authmng_install_targets qx_authmng_host)
  list(APPEND authmng_install_headers include/authmng_host.h)
  set(AUTHMNG_PC_HOST_LIBS "-Wl,-rpath,\${libdir} -lqx_authmng_host")
else()
  set(AUTHMNG_PC_HOST_LIBS "")
endif()
install(TARGETS ${authmng_install_targets} EXPORT qx_authmngTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(FILES ${authmng_install_headers} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

# The .pc file finds its prefix from its own place, so a staged or moved
# installation works as well as the configured one.
file(RELATIVE_PATH AUTHMNG_PC_TO_PREFIX "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig" "${CMAKE_INSTALL_PREFIX}")
configure_file(cmake/qx_authmng.pc.in ${PROJECT_BINARY_DIR}/qx_authmng.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/qx_authmng.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

set(authmng_cmake_dir ${CMAKE_INSTALL_LIBDIR}/cmake/qx_authmng)
install(EXPORT qx_authmngTargets NAMESPACE qx_authmng:: DESTINATION ${authmng_cmake_dir})
configure_package_config_file(cmake/qx_authmngConfig.cmake.in
  ${PROJECT_BINARY_DIR}/qx_authmngConfig.cmake INSTALL_DESTINATION ${authmng_cmake_dir})
# Same major version, this minor version or a later one.
write_basic_package_version_file(${PROJECT_BINARY_DIR}/qx_authmngConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/qx_authmngConfig.cmake
  ${PROJECT_BINARY_DIR}/qx_authmngConfigVersion.cmake DESTINATION ${authmng_cmake_dir})
