# fuzz/targets.txt as CMake lists, for the fuzz build and the suite that replays the seeds.
#   REFDOC_FUZZ_TARGET_NAMES, REFDOC_FUZZ_TARGET_CLASSES   one element per target, in file order
#   REFDOC_FUZZ_TARGET_SOURCES   the target bodies (fuzz/<class>.cpp) and the code they share
# refdoc_write_fuzz_target_list(<file>) writes the list as C++ for the replay test:
#   REFDOC_FUZZ_TARGET(name, Class, "seed folder;...")
set(REFDOC_FUZZ_DIR ${CMAKE_CURRENT_LIST_DIR})
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${REFDOC_FUZZ_DIR}/targets.txt)

file(STRINGS ${REFDOC_FUZZ_DIR}/targets.txt _refdoc_fuzz_lines REGEX "^[a-z]")
set(REFDOC_FUZZ_TARGET_NAMES)
set(REFDOC_FUZZ_TARGET_CLASSES)
set(_refdoc_fuzz_list)
foreach(_line IN LISTS _refdoc_fuzz_lines)
  string(REGEX REPLACE "[ \t]+" ";" _fields "${_line}")
  list(POP_FRONT _fields _name _class)
  list(APPEND REFDOC_FUZZ_TARGET_NAMES ${_name})
  list(APPEND REFDOC_FUZZ_TARGET_CLASSES ${_class})
  set(_seeds ${REFDOC_FUZZ_DIR}/corpus/${_name})
  foreach(_folder IN LISTS _fields)
    list(APPEND _seeds ${PROJECT_SOURCE_DIR}/${_folder})
  endforeach()
  string(APPEND _refdoc_fuzz_list "REFDOC_FUZZ_TARGET(${_name}, ${_class}, \"${_seeds}\")\n")
endforeach()

set(REFDOC_FUZZ_TARGET_SOURCES ${REFDOC_FUZZ_DIR}/ScratchRoot.cpp)
foreach(_class IN LISTS REFDOC_FUZZ_TARGET_CLASSES)
  list(APPEND REFDOC_FUZZ_TARGET_SOURCES ${REFDOC_FUZZ_DIR}/${_class}.cpp)
endforeach()

function(refdoc_write_fuzz_target_list file)
  file(CONFIGURE OUTPUT ${file} CONTENT "// Made by CMake from fuzz/targets.txt.\n${_refdoc_fuzz_list}" @ONLY)
endfunction()
