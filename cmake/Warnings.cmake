# Warnings for our own code, as a target to link. -DKORVANE_WERROR=ON makes each an error.
option(KORVANE_WERROR "Treat warnings as errors" OFF)

add_library(korvane_warnings INTERFACE)
target_compile_options(korvane_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wold-style-cast
  -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-align -Wformat=2 -Wundef
  $<$<CXX_COMPILER_ID:GNU>:-Wduplicated-cond -Wlogical-op>
  $<$<BOOL:${KORVANE_WERROR}>:-Werror>)
