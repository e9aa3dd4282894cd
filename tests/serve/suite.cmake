# The serve suite starts the built refdoc executable as a server (the tool suite's settings give
# its path) and talks HTTP to it with cpp-httplib's client.
include(${CMAKE_CURRENT_SOURCE_DIR}/tool/suite.cmake)
find_package(PkgConfig REQUIRED)
pkg_check_modules(HTTPLIB REQUIRED IMPORTED_TARGET cpp-httplib)
target_link_libraries(${REFDOC_SUITE_TARGET} PRIVATE PkgConfig::HTTPLIB Threads::Threads)
