# The JSON parsing conformance corpus is not part of the repository: the suite reads it from the
# folder named here (the one holding test_parsing/) and skips, naming the folder, when it is absent.
get_filename_component(_refdoc_conformance_default "${PROJECT_SOURCE_DIR}/../shared/json-conformance" ABSOLUTE)
set(REFDOC_JSON_CONFORMANCE_DIR "${_refdoc_conformance_default}" CACHE PATH
  "Folder of the JSON parsing conformance corpus (with its test_parsing/ documents)")
target_compile_definitions(${REFDOC_SUITE_TARGET} PRIVATE
  REFDOC_JSON_CONFORMANCE_DIR="${REFDOC_JSON_CONFORMANCE_DIR}")
