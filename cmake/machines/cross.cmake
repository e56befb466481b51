# What the toolchain files of other machines share. They set korvane_machine, as Debian calls
# it, korvane_triple and korvane_emulator.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_CXX_COMPILER "${korvane_triple}-g++")
set(CMAKE_LIBRARY_ARCHITECTURE "${korvane_triple}")

# The other machine's Debian, as scripts/machines.sh extracts it.
if(NOT KORVANE_SYSROOT)
  set(KORVANE_SYSROOT "${CMAKE_CURRENT_LIST_DIR}/../../build/machines/${korvane_machine}")
endif()
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES KORVANE_SYSROOT)
get_filename_component(CMAKE_SYSROOT "${KORVANE_SYSROOT}" ABSOLUTE)

# Programs are this machine's, all else the other's: a library of this one would be found and not link.
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
# pkg-config would tell of this machine's libraries otherwise.
set(ENV{PKG_CONFIG_SYSROOT_DIR} "${CMAKE_SYSROOT}")
set(ENV{PKG_CONFIG_LIBDIR}
  "${CMAKE_SYSROOT}/usr/lib/${korvane_triple}/pkgconfig:${CMAKE_SYSROOT}/usr/share/pkgconfig")

set(CMAKE_CROSSCOMPILING_EMULATOR "${korvane_emulator}" -L "${CMAKE_SYSROOT}")
