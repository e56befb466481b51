// SPDX-License-Identifier: MIT
// A serial line in memory for libmodbus: this program's write, read and select stand before those
// of the C library.
#include "memory_line.h"

#include <fcntl.h>
#include <sys/select.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>

namespace {

int lineDescriptor = -1;
const char *waiting = nullptr;
std::size_t waitingBytes = 0;

std::size_t takeWaiting(void *buffer, std::size_t wanted)
{
    const std::size_t count = std::min(wanted, waitingBytes);
    std::memcpy(buffer, waiting, count);
    waiting += count;
    waitingBytes -= count;
    return count;
}

} // namespace

extern "C" {

__attribute__((visibility("default"))) ssize_t write(int fd, const void *bytes, std::size_t count)
{
    if (fd == lineDescriptor)
        return static_cast<ssize_t>(count);
    return syscall(SYS_write, fd, bytes, count);
}

__attribute__((visibility("default"))) ssize_t read(int fd, void *buffer, std::size_t wanted)
{
    if (fd == lineDescriptor)
        return static_cast<ssize_t>(takeWaiting(buffer, wanted));
    return syscall(SYS_read, fd, buffer, wanted);
}

__attribute__((visibility("default"))) int select(int count, fd_set *readable, fd_set *writable,
                                                  fd_set *failed, timeval *patience)
{
    if (count == lineDescriptor + 1)
        return waitingBytes > 0 ? 1 : 0;
    return static_cast<int>(syscall(SYS_select, count, readable, writable, failed, patience));
}

} // extern "C"

int bench::memoryLineDescriptor()
{
    // A number of its own that nobody else gets; what it is opened on does not matter.
    if (lineDescriptor < 0)
        lineDescriptor = open("/dev/null", O_RDWR | O_CLOEXEC);
    return lineDescriptor;
}

void bench::setMemoryReply(const QByteArray &reply)
{
    waiting = reply.constData();
    waitingBytes = static_cast<std::size_t>(reply.size());
}
