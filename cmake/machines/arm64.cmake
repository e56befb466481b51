# 64-bit ARM; see scripts/machines.sh.
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(korvane_machine arm64)
set(korvane_triple aarch64-linux-gnu)
set(korvane_emulator qemu-aarch64-static)
include("${CMAKE_CURRENT_LIST_DIR}/cross.cmake")
