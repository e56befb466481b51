# S/390, whose byte order is big-endian; see scripts/machines.sh.
set(CMAKE_SYSTEM_PROCESSOR s390x)
set(korvane_machine s390x)
set(korvane_triple s390x-linux-gnu)
set(korvane_emulator qemu-s390x-static)
include("${CMAKE_CURRENT_LIST_DIR}/cross.cmake")
