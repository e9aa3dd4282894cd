# Every installed header compiles on its own: one generated source per header includes only it
# (twice, so that a missing include guard shows too),
# built with the project's warnings as part of the default build. A header that leans on an
# include its user happened to make first fails here, not in a user's project.
set(_header_roots ${PROJECT_SOURCE_DIR}/include ${PROJECT_SOURCE_DIR}/platform/include ${PROJECT_BINARY_DIR}/include)
set(_check_sources)
foreach(_root ${_header_roots})
  file(GLOB_RECURSE _headers CONFIGURE_DEPENDS RELATIVE ${_root} ${_root}/*.hpp)
  foreach(_header ${_headers})
    string(MAKE_C_IDENTIFIER ${_header} _name)
    set(_source ${CMAKE_CURRENT_BINARY_DIR}/header_check/${_name}.cpp)
    file(CONFIGURE OUTPUT ${_source} CONTENT "#include <${_header}>\n#include <${_header}>\n")
    list(APPEND _check_sources ${_source})
  endforeach()
endforeach()

add_library(refdoc_header_check OBJECT ${_check_sources})
target_link_libraries(refdoc_header_check PRIVATE refdoc_docparser refdoc_build_options)
