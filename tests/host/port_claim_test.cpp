// SPDX-License-Identifier: MIT
// What an open port is asked for: reads that fail where there is nothing, and RS-485.
#include "host/line/port_claim.h"

#include "pseudo_terminal.h"

#include <linux/serial.h>
#include <sys/ioctl.h>
#include <sys/syscall.h>

#include <cerrno>
#include <cstdarg>

using namespace dx4::host;

namespace {

// Flags of the last RS-485 setting, and what is answered to it: no test machine has such a port.
unsigned askedFlags = 0;
bool isOffered = false;

} // namespace

// Stands in for that of the system, for the one request that a pseudo-terminal refuses.
extern "C" [[gnu::visibility("default")]] int ioctl(int descriptor, unsigned long request,
                                                    ...) noexcept
{
    va_list arguments;
    va_start(arguments, request);
    void *const argument = va_arg(arguments, void *);
    va_end(arguments);
    if (request != TIOCSRS485 || !isOffered)
        return static_cast<int>(syscall(SYS_ioctl, descriptor, request, argument));
    askedFlags = static_cast<const serial_rs485 *>(argument)->flags;
    return 0;
}

TEST(PortClaimSettings, AReadThatFindsNothingFails)
{
    PseudoTerminal adapter;
    const int port =
        open(adapter.path().toLatin1().constData(), O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK);
    termios settings = adapter.settings();
    settings.c_cc[VMIN] = 0;
    settings.c_cc[VTIME] = 0;
    ASSERT_EQ(tcsetattr(port, TCSANOW, &settings), 0);
    char byte = 0;
    const ssize_t before = read(port, &byte, 1);

    const bool told = tellEmptyFromGone(port);

    const ssize_t empty = read(port, &byte, 1);
    const int reason = errno;
    const cc_t least = adapter.settings().c_cc[VMIN];
    close(port);
    EXPECT_EQ(before, 0);
    EXPECT_TRUE(told);
    EXPECT_EQ(empty, -1);
    EXPECT_EQ(reason, EAGAIN);
    EXPECT_EQ(least, 1);
}

TEST(PortClaimSettings, WhatIsNoTerminalIsToldNothing)
{
    int ends[2] = {};
    ASSERT_EQ(pipe(ends), 0);

    EXPECT_FALSE(tellEmptyFromGone(ends[0]));
    EXPECT_FALSE(tellEmptyFromGone(-1));
    close(ends[0]);
    close(ends[1]);
}

TEST(PortClaimSettings, TheKernelIsAskedToRaiseRtsWhileItSends)
{
    isOffered = true;
    const bool switched = switchDirectionByKernel(0);
    isOffered = false;

    EXPECT_TRUE(switched);
    EXPECT_EQ(askedFlags, 3U) << "enabled, on while sending";
}

TEST(PortClaimSettings, ADriverThatCannotSwitchSaysSo)
{
    const PseudoTerminal adapter;

    EXPECT_FALSE(switchDirectionByKernel(adapter.farEnd()));
}
