// SPDX-License-Identifier: MIT
// The device the simulator serves: a pseudo-terminal of its own or a serial port.
#include "simulator/port.h"

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace dx4::sim {

namespace {

[[noreturn]] void fail(const std::string &what)
{
    throw std::system_error(errno, std::generic_category(), what);
}

/// What a system call gave; throws where that is an error.
int orFail(int result, const std::string &what)
{
    if (result < 0)
        fail(what);
    return result;
}

struct SpeedRow {
    int bitsPerSecond;
    speed_t code;
};

constexpr std::array<SpeedRow, 9> speeds = { {
    { 1200, B1200 },
    { 2400, B2400 },
    { 4800, B4800 },
    { 9600, B9600 },
    { 19200, B19200 },
    { 38400, B38400 },
    { 57600, B57600 },
    { 115200, B115200 },
    { 230400, B230400 },
} };

speed_t speedCode(int bitsPerSecond)
{
    for (const SpeedRow &row : speeds) {
        if (row.bitsPerSecond == bitsPerSecond)
            return row.code;
    }
    throw std::invalid_argument("speed " + std::to_string(bitsPerSecond)
                                + ": expected a usual speed from 1200 to 230400 bit/s");
}

termios settingsOf(int descriptor, const std::string &path)
{
    termios settings {};
    orFail(tcgetattr(descriptor, &settings), path);
    return settings;
}

void makeRaw(int descriptor, const std::string &path)
{
    termios settings = settingsOf(descriptor, path);
    cfmakeraw(&settings);
    orFail(tcsetattr(descriptor, TCSANOW, &settings), path);
}

} // namespace

Port Port::openPty()
{
    Port port;
    const std::string what = "pseudo-terminal";
    port.m_descriptor = orFail(posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC), what);
    orFail(grantpt(port.m_descriptor), what);
    orFail(unlockpt(port.m_descriptor), what);
    char name[128];
    if (ptsname_r(port.m_descriptor, name, sizeof name) != 0)
        fail(what);
    port.m_path = name;
    port.m_masterSide = orFail(open(name, O_RDWR | O_NOCTTY | O_CLOEXEC), port.m_path);
    makeRaw(port.m_masterSide, port.m_path);
    return port;
}

Port Port::openSerial(const std::string &path, int speed, char parity, int stopBits)
{
    const speed_t code = speedCode(speed);
    Port port;
    port.m_path = path;
    port.m_claim = std::make_unique<common::PortClaim>();
    if (!port.m_claim->take(path))
        throw std::runtime_error(path + ": in use by "
                                 + common::holderText(common::holdersOf(path)));
    const auto strangers = common::strangersOn(path);
    if (!strangers.empty())
        throw std::runtime_error(path + ": in use by " + common::holderText(strangers)
                                 + ", which took no lock; end it, as two programs on one line "
                                   "disturb each other");
    port.m_descriptor =
        orFail(open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC), path);
    termios settings = settingsOf(port.m_descriptor, path);
    cfmakeraw(&settings);
    settings.c_cflag |= CLOCAL | CREAD;
    settings.c_cflag &= ~static_cast<tcflag_t>(PARENB | PARODD | CSTOPB | CRTSCTS);
    if (parity != 'N')
        settings.c_cflag |= PARENB;
    if (parity == 'O')
        settings.c_cflag |= PARODD;
    if (stopBits == 2)
        settings.c_cflag |= CSTOPB;
    cfsetspeed(&settings, code);
    orFail(tcsetattr(port.m_descriptor, TCSANOW, &settings), path);
    return port;
}

Port::~Port()
{
    // Of -1, where nothing is open, close() does nothing.
    close(m_masterSide);
    close(m_descriptor);
}

Port::Port(Port &&other) noexcept
    : m_path(std::move(other.m_path))
    , m_claim(std::move(other.m_claim))
    , m_descriptor(std::exchange(other.m_descriptor, -1))
    , m_masterSide(std::exchange(other.m_masterSide, -1))
{
}

Bytes Port::read()
{
    Bytes bytes(512);
    const ssize_t count = ::read(m_descriptor, bytes.data(), bytes.size());
    if (count < 0 && errno != EAGAIN && errno != EINTR)
        fail(m_path);
    // A device that ends has been taken away; one with nothing to say gives EAGAIN.
    if (count == 0)
        throw std::system_error(EIO, std::generic_category(), m_path);
    bytes.resize(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    return bytes;
}

void Port::write(const Bytes &bytes)
{
    if (!bytes.empty() && ::write(m_descriptor, bytes.data(), bytes.size()) < 0 && errno != EAGAIN
        && errno != EINTR)
        fail(m_path);
}

} // namespace dx4::sim
