# The tool suite runs the built refdoc executable.
if(TARGET refdoc)
  add_dependencies(${REFDOC_SUITE_TARGET} refdoc)
  target_compile_definitions(${REFDOC_SUITE_TARGET} PRIVATE REFDOC_TOOL_PATH="$<TARGET_FILE:refdoc>")
else()
  # Built without the tool (REFDOC_BUILD_TOOLS=OFF): the suite reports itself skipped.
  target_compile_definitions(${REFDOC_SUITE_TARGET} PRIVATE REFDOC_TOOL_PATH="")
endif()
# The tool is started through Boost.Process, on std::filesystem rather than Boost.Filesystem.
target_compile_definitions(${REFDOC_SUITE_TARGET} PRIVATE BOOST_PROCESS_USE_STD_FS)
