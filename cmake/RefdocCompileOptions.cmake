# Warning and sanitizer flags shared by every target of the project (not by consumers).
add_library(refdoc_build_options INTERFACE)
target_compile_options(refdoc_build_options INTERFACE -Wall -Wextra -Wpedantic)
# GCC 12 reports a false -Wrestrict inside std::string concatenation at -O3 (libstdc++'s own
# memcpy after inlining); the warning says nothing about this project's code.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_GREATER_EQUAL 12
   AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  target_compile_options(refdoc_build_options INTERFACE -Wno-restrict)
endif()
if(REFDOC_WERROR)
  target_compile_options(refdoc_build_options INTERFACE -Werror)
endif()

if(REFDOC_SANITIZERS)
  list(JOIN REFDOC_SANITIZERS "," _refdoc_san)
  set(_refdoc_san_flags -fsanitize=${_refdoc_san} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  # Applied globally so that GoogleTest's main, the tool and the libraries agree on the runtime.
  add_compile_options(${_refdoc_san_flags})
  add_link_options(-fsanitize=${_refdoc_san})
endif()

# Everything the shared libraries do not name in their public headers stays hidden.
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
