# The serve suite starts the built refdoc executable as a server and talks HTTP to it with
# cpp-httplib's client.
find_package(PkgConfig REQUIRED)
pkg_check_modules(HTTPLIB REQUIRED IMPORTED_TARGET cpp-httplib)
target_link_libraries(${REFDOC_SUITE_TARGET} PRIVATE PkgConfig::HTTPLIB Threads::Threads)
target_include_directories(${REFDOC_SUITE_TARGET} PRIVATE ${CMAKE_CURRENT_SOURCE_DIR})
if(TARGET refdoc)
  add_dependencies(${REFDOC_SUITE_TARGET} refdoc)
  target_compile_definitions(${REFDOC_SUITE_TARGET} PRIVATE REFDOC_TOOL_PATH="$<TARGET_FILE:refdoc>")
else()
  target_compile_definitions(${REFDOC_SUITE_TARGET} PRIVATE REFDOC_TOOL_PATH="")
endif()
