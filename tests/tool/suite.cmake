# The tool suite runs the built refdoc executable; it also reads the committed sample root.
add_dependencies(${REFDOC_SUITE_TARGET} refdoc)
target_compile_definitions(${REFDOC_SUITE_TARGET} PRIVATE
  REFDOC_TOOL_PATH="$<TARGET_FILE:refdoc>"
  REFDOC_EXAMPLES_DIR="${PROJECT_SOURCE_DIR}/examples")
