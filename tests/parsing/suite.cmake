# The parser equivalence test compares the two readings with the differential fuzz targets' code.
target_sources(${REFDOC_SUITE_TARGET} PRIVATE ${PROJECT_SOURCE_DIR}/fuzz/Differential.cpp)
target_include_directories(${REFDOC_SUITE_TARGET} PRIVATE ${PROJECT_SOURCE_DIR}/fuzz)
