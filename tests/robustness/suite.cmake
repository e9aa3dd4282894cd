# Besides its *Test.cpp files the suite counts allocations with its own operator new, and it
# replays the fuzz targets' seeds and the inputs of past faults through the fuzz target bodies
# (every target of fuzz/targets.txt).
include(${PROJECT_SOURCE_DIR}/fuzz/targets.cmake)
refdoc_write_fuzz_target_list(${CMAKE_CURRENT_BINARY_DIR}/generated/FuzzTargetList.inc)
target_sources(${REFDOC_SUITE_TARGET} PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/AllocationCounter.cpp
  ${REFDOC_FUZZ_TARGET_SOURCES})
target_include_directories(${REFDOC_SUITE_TARGET} PRIVATE ${PROJECT_SOURCE_DIR}/fuzz ${CMAKE_CURRENT_BINARY_DIR}/generated)
target_compile_definitions(${REFDOC_SUITE_TARGET} PRIVATE
  REFDOC_FAULT_INPUTS="${CMAKE_CURRENT_LIST_DIR}/regressions")
# Zip bombs of a few hundred MiB are built and refused here, slowly under the sanitizers.
set(REFDOC_SUITE_TEST_PROPERTIES TIMEOUT 300)
