# Besides its *Test.cpp files the suite counts allocations with its own operator new, and it
# replays the fuzz targets' seeds and the inputs of past faults through the fuzz target bodies.
target_sources(${REFDOC_SUITE_TARGET} PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/AllocationCounter.cpp
  ${PROJECT_SOURCE_DIR}/fuzz/ScratchRoot.cpp
  ${PROJECT_SOURCE_DIR}/fuzz/LookupParserTarget.cpp
  ${PROJECT_SOURCE_DIR}/fuzz/PageFileTarget.cpp
  ${PROJECT_SOURCE_DIR}/fuzz/ZipPackageTarget.cpp)
target_include_directories(${REFDOC_SUITE_TARGET} PRIVATE ${PROJECT_SOURCE_DIR}/fuzz)
target_compile_definitions(${REFDOC_SUITE_TARGET} PRIVATE
  REFDOC_FUZZ_SEEDS="${PROJECT_SOURCE_DIR}/fuzz/corpus"
  REFDOC_FAULT_INPUTS="${CMAKE_CURRENT_LIST_DIR}/regressions")
# Zip bombs of a few hundred MiB are built and refused here, slowly under the sanitizers.
set(REFDOC_SUITE_TEST_PROPERTIES TIMEOUT 300)
