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
install(DIRECTORY ${PROJECT_BINARY_DIR}/include/
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
  # A 0.y release takes programs built for 0.y only, as its SONAME says.
  COMPATIBILITY SameMinorVersion)
install(FILES
  ${PROJECT_BINARY_DIR}/refdocConfig.cmake
  ${PROJECT_BINARY_DIR}/refdocConfigVersion.cmake
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/refdoc)

# pkg-config file for consumers without CMake. The prefix is found relative to the .pc file,
# so an installed tree can be moved.
file(RELATIVE_PATH REFDOC_PC_PREFIX_FROM_PCDIR
  ${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" REFDOC_PC_PREFIX_FROM_PCDIR "${REFDOC_PC_PREFIX_FROM_PCDIR}")
configure_file(${PROJECT_SOURCE_DIR}/cmake/refdoc.pc.in ${PROJECT_BINARY_DIR}/refdoc.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/refdoc.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

# The licence, and the release notes, where a package's documentation goes (share/doc/refdoc).
install(FILES ${PROJECT_SOURCE_DIR}/LICENSE ${PROJECT_SOURCE_DIR}/CHANGELOG.md DESTINATION ${CMAKE_INSTALL_DOCDIR})

# JSON Schemas of the lookup and page file formats, for documentation authors' editors and
# validators (share/refdoc/schemas).
install(DIRECTORY ${PROJECT_SOURCE_DIR}/schemas/
  DESTINATION ${CMAKE_INSTALL_DATADIR}/refdoc/schemas
  FILES_MATCHING PATTERN "*.schema.json")
