// SPDX-License-Identifier: MIT
// What an open serial port is asked for beyond its settings.
#include "host/port_claim.h"

#include <linux/serial.h>
#include <sys/file.h>
#include <sys/ioctl.h>

namespace dx4::host {

bool claimPort(int descriptor)
{
    // The lock comes first: exclusive mode keeps nobody out who opened before, and never root.
    return flock(descriptor, LOCK_EX | LOCK_NB) == 0 && ioctl(descriptor, TIOCEXCL) == 0;
}

bool switchDirectionByKernel(int descriptor)
{
    serial_rs485 settings {};
    settings.flags = SER_RS485_ENABLED | SER_RS485_RTS_ON_SEND;
    return ioctl(descriptor, TIOCSRS485, &settings) == 0;
}

} // namespace dx4::host
