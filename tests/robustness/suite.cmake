# Besides its *Test.cpp files the suite counts allocations with the counting operator new, and it
# replays the fuzz targets' seeds, past faults among them, through the fuzz target bodies (every
# target of fuzz/targets.txt).
include(${PROJECT_SOURCE_DIR}/fuzz/targets.cmake)
refdoc_write_fuzz_target_list(${CMAKE_CURRENT_BINARY_DIR}/generated/FuzzTargetList.inc)
target_sources(${REFDOC_SUITE_TARGET} PRIVATE ${REFDOC_FUZZ_TARGET_SOURCES})
target_link_libraries(${REFDOC_SUITE_TARGET} PRIVATE refdoc_allocation_counter)
target_include_directories(${REFDOC_SUITE_TARGET} PRIVATE ${PROJECT_SOURCE_DIR}/fuzz ${CMAKE_CURRENT_BINARY_DIR}/generated)
# Zip bombs of a few hundred MiB are built and refused here, slowly under the sanitizers.
set(REFDOC_SUITE_TEST_PROPERTIES TIMEOUT 300)
# The JSON parsing conformance corpus is not part of the repository: its test reads it from the
# folder named here (the one holding test_parsing/) and skips, naming the folder, when it is absent.
get_filename_component(_refdoc_conformance_default "${PROJECT_SOURCE_DIR}/../shared/json-conformance" ABSOLUTE)
set(REFDOC_JSON_CONFORMANCE_DIR "${_refdoc_conformance_default}" CACHE PATH
  "Folder of the JSON parsing conformance corpus (with its test_parsing/ documents)")
target_compile_definitions(${REFDOC_SUITE_TARGET} PRIVATE
  REFDOC_JSON_CONFORMANCE_DIR="${REFDOC_JSON_CONFORMANCE_DIR}")
