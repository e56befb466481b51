# Ends the configure step at the first package other than Qt's core that is looked for, found or not:
# -DCMAKE_PROJECT_TOP_LEVEL_INCLUDES=cmake/OnlyQtCore.cmake. CMake 3.24 or later asks it.
macro(korvane_only_qt_core method package)
  set(korvane_parts ${ARGN})
  list(REMOVE_ITEM korvane_parts 5.15 COMPONENTS Core QUIET REQUIRED)
  # What Qt looks for on its own account, out of its own files, is its affair.
  if(NOT CMAKE_CURRENT_LIST_FILE MATCHES "/Qt[56][A-Za-z]*/" AND
      (NOT "${package}" MATCHES "^Qt[56]$" OR NOT "${korvane_parts}" STREQUAL ""))
    message(FATAL_ERROR "${package} is looked for with ${ARGN}; expected Qt's core alone")
  endif()
endmacro()
cmake_language(SET_DEPENDENCY_PROVIDER korvane_only_qt_core SUPPORTED_METHODS FIND_PACKAGE)
