// SPDX-License-Identifier: MIT
// What an open serial port is asked for beyond its settings.
#include "host/port_claim.h"

#include <QFile>

#include <fcntl.h>
#include <linux/serial.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>

namespace dx4::host {

bool PortClaim::take(const QString &device)
{
    release();
    const int flags = O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC;
    const int descriptor = ::open(QFile::encodeName(device).constData(), flags);
    if (descriptor < 0)
        return errno != EBUSY; // of a port in exclusive mode
    m_descriptor = descriptor;
    // The lock counts for root too, whom exclusive mode does not keep out, and against those who
    // opened before that was set.
    if (flock(descriptor, LOCK_EX | LOCK_NB) == 0)
        return true;
    release();
    return false;
}

void PortClaim::release()
{
    if (m_descriptor >= 0)
        ::close(m_descriptor);
    m_descriptor = -1;
}

bool tellEmptyFromGone(int descriptor)
{
    termios settings {};
    if (tcgetattr(descriptor, &settings) != 0)
        return false;
    settings.c_cc[VMIN] = 1;
    return tcsetattr(descriptor, TCSANOW, &settings) == 0;
}

bool switchDirectionByKernel(int descriptor)
{
    serial_rs485 settings {};
    settings.flags = SER_RS485_ENABLED | SER_RS485_RTS_ON_SEND;
    return ioctl(descriptor, TIOCSRS485, &settings) == 0;
}

} // namespace dx4::host
