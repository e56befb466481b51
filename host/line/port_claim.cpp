// SPDX-License-Identifier: MIT
// What an open serial port is asked for beyond its settings.
#include "host/line/port_claim.h"

#include <linux/serial.h>
#include <sys/ioctl.h>
#include <termios.h>

namespace dx4::host {

bool tellEmptyFromGone(int descriptor)
{
    termios settings {};
    const bool isTerminal = tcgetattr(descriptor, &settings) == 0;
    settings.c_cc[VMIN] = 1;
    return isTerminal && tcsetattr(descriptor, TCSANOW, &settings) == 0;
}

bool switchDirectionByKernel(int descriptor)
{
    serial_rs485 settings {};
    settings.flags = SER_RS485_ENABLED | SER_RS485_RTS_ON_SEND;
    return ioctl(descriptor, TIOCSRS485, &settings) == 0;
}

} // namespace dx4::host
