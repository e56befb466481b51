// SPDX-License-Identifier: MIT
// How often the program has had a file brought to the disk.
#include "synced_calls.h"

#include <atomic>

#include <sys/syscall.h>
#include <unistd.h>

namespace {

std::atomic<int> calls { 0 };

} // namespace

int syncedCalls()
{
    return calls;
}

// Libraries find these before those of the system.
extern "C" {

__attribute__((visibility("default"))) int fdatasync(int descriptor)
{
    ++calls;
    return static_cast<int>(syscall(SYS_fdatasync, descriptor));
}

__attribute__((visibility("default"))) int fsync(int descriptor)
{
    ++calls;
    return static_cast<int>(syscall(SYS_fsync, descriptor));
}
}
