# Installs both libraries, the public headers, a CMake package and a pkg-config file. The component `library` is what
# programs need to run, `development` what developers need as well.

include(CMakePackageConfigHelpers)
include(GNUInstallDirs)

set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/VXFileIO)

install(
  TARGETS vxfileio vxfileio_static
  EXPORT VXFileIOTargets
  RUNTIME COMPONENT library
  LIBRARY COMPONENT library NAMELINK_COMPONENT development
  ARCHIVE COMPONENT development
  FILE_SET HEADERS COMPONENT development)
install(EXPORT VXFileIOTargets NAMESPACE VXFileIO:: DESTINATION ${package_folder} COMPONENT development)

configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/VXFileIOConfig.cmake.in VXFileIOConfig.cmake
                              INSTALL_DESTINATION ${package_folder})
write_basic_package_version_file(VXFileIOConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/VXFileIOConfig.cmake ${CMAKE_CURRENT_BINARY_DIR}/VXFileIOConfigVersion.cmake
        DESTINATION ${package_folder} COMPONENT development)

# The .pc file names its prefix relative to its own folder, so that an installed tree can be moved.
cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX BASE_DIRECTORY ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig
           OUTPUT_VARIABLE prefix_from_pc)
configure_file(${PROJECT_SOURCE_DIR}/cmake/vxfileio.pc.in vxfileio.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/vxfileio.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
        COMPONENT development)
