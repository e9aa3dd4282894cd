# The API reference: Doxygen over the public headers' documentation comments, into
# build/<preset>/docs/html. A warning (a broken reference, a parameter that does not exist) fails
# the build. Every public entity is listed, with its comment where it has one.
find_package(Doxygen)
if(NOT DOXYGEN_FOUND)
  return()
endif()
set(DOXYGEN_PROJECT_NAME refdoc)
set(DOXYGEN_PROJECT_NUMBER ${PROJECT_VERSION})
set(DOXYGEN_PROJECT_BRIEF "${PROJECT_DESCRIPTION}")
set(DOXYGEN_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/docs)
set(DOXYGEN_STRIP_FROM_PATH ${PROJECT_SOURCE_DIR}/include ${PROJECT_BINARY_DIR}/include)
set(DOXYGEN_STRIP_FROM_INC_PATH ${PROJECT_SOURCE_DIR}/include ${PROJECT_BINARY_DIR}/include)
set(DOXYGEN_EXTRACT_ALL YES)
set(DOXYGEN_QUIET YES)
set(DOXYGEN_WARN_AS_ERROR YES)
set(DOXYGEN_JAVADOC_AUTOBRIEF YES)
set(DOXYGEN_GENERATE_LATEX NO)
set(DOXYGEN_FULL_PATH_NAMES YES)
set(DOXYGEN_EXCLUDE_SYMBOLS detail)
# The export macro would otherwise be read as part of each declaration.
set(DOXYGEN_MACRO_EXPANSION YES)
set(DOXYGEN_EXPAND_ONLY_PREDEF YES)
set(DOXYGEN_PREDEFINED REFDOC_API=)
doxygen_add_docs(docs ${PROJECT_SOURCE_DIR}/include ${PROJECT_BINARY_DIR}/include
  COMMENT "API reference (Doxygen) in ${PROJECT_BINARY_DIR}/docs/html")
