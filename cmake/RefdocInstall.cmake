# Install rules and the exported CMake package: find_package(refdoc) gives refdoc::docparser
# and refdoc::platform.
include(CMakePackageConfigHelpers)

install(TARGETS refdoc_docparser refdoc_platform
  EXPORT refdocTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/refdoc)

install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/refdoc
  FILES_MATCHING PATTERN "*.hpp")
install(DIRECTORY ${PROJECT_SOURCE_DIR}/platform/include/
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/refdoc/platform
  FILES_MATCHING PATTERN "*.hpp")

install(EXPORT refdocTargets
  NAMESPACE refdoc::
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/refdoc)

configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/refdocConfig.cmake.in
  ${PROJECT_BINARY_DIR}/refdocConfig.cmake
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/refdoc)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/refdocConfigVersion.cmake
  VERSION ${PROJECT_VERSION}
  COMPATIBILITY SameMajorVersion)
install(FILES
  ${PROJECT_BINARY_DIR}/refdocConfig.cmake
  ${PROJECT_BINARY_DIR}/refdocConfigVersion.cmake
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/refdoc)
