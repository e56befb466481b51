# 32-bit ARM with floating point in hardware; see scripts/machines.sh.
set(CMAKE_SYSTEM_PROCESSOR arm)
set(korvane_machine armhf)
set(korvane_triple arm-linux-gnueabihf)
set(korvane_emulator qemu-arm-static)
include("${CMAKE_CURRENT_LIST_DIR}/cross.cmake")
