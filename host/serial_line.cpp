// SPDX-License-Identifier: MIT
// The line over a serial port of the machine, or over a pseudo-terminal.
#include "host/serial_line.h"

#include "host/length.h"
#include "host/port_claim.h"
#include "host/port_list.h"

#include <QFile>
#include <QSerialPort>

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

namespace dx4::host {
namespace {

QSerialPort::Parity portParity(Parity parity)
{
    switch (parity) {
    case Parity::None:
        return QSerialPort::NoParity;
    case Parity::Even:
        return QSerialPort::EvenParity;
    case Parity::Odd:
        return QSerialPort::OddParity;
    }
    return QSerialPort::NoParity;
}

timespec toTimespec(Duration span)
{
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(span);
    timespec result {};
    result.tv_sec = seconds.count();
    result.tv_nsec = std::chrono::nanoseconds(span - seconds).count();
    return result;
}

} // namespace

SerialLine::SerialLine(LineSettings settings)
    : m_settings(std::move(settings))
    , m_port(std::make_unique<QSerialPort>())
{
}

SerialLine::~SerialLine() = default;

bool SerialLine::open(QString *error)
{
    if (isOpen())
        return true;
    // Resolved each time: an adapter that comes back may be another device under its lasting name.
    const QString device = portDevice(m_settings.port);
    m_port->setPortName(device);
    const QString refusal = tryOpen(device);
    if (refusal.isEmpty()) {
        m_port->clear();
        noteActivity();
        return true;
    }
    if (error)
        *error = QStringLiteral("%1: %2").arg(m_settings.port, refusal);
    m_port->close();
    return false;
}

/// Opens the port as the settings say; gives the reason when that fails.
QString SerialLine::tryOpen(const QString &device)
{
    const bool opened = m_port->open(QIODevice::ReadWrite);
    // One that this user may open but cannot is held: in exclusive mode, or by a lock file.
    const bool isHeld = opened ? !claimPort(m_port->handle())
                               : m_port->error() == QSerialPort::PermissionError
            && access(QFile::encodeName(device).constData(), R_OK | W_OK) == 0;
    if (isHeld)
        return QStringLiteral("in use by %1").arg(holderText(holdersOf(device)));
    if (!opened || !configure())
        return m_port->errorString();
    if (m_settings.kernelSwitchesDirection && !switchDirectionByKernel(m_port->handle()))
        return QStringLiteral("its driver cannot switch the RS-485 direction; leave that to the "
                              "adapter");
    return {};
}

bool SerialLine::configure()
{
    return m_port->setBaudRate(m_settings.speed) && m_port->setDataBits(QSerialPort::Data8)
        && m_port->setParity(portParity(m_settings.parity))
        && m_port->setStopBits(m_settings.stopBits == 2 ? QSerialPort::TwoStop
                                                        : QSerialPort::OneStop)
        && m_port->setFlowControl(QSerialPort::NoFlowControl);
}

void SerialLine::close()
{
    m_port->close();
}

bool SerialLine::isOpen() const
{
    return m_port->isOpen();
}

Duration SerialLine::now() const
{
    return std::chrono::duration_cast<Duration>(
        std::chrono::steady_clock::now().time_since_epoch());
}

bool SerialLine::send(const QByteArray &bytes)
{
    if (!isOpen())
        return false;
    bool sent = m_port->write(bytes) == bytes.size();
    const int patience =
        static_cast<int>(m_settings.wireTime(2 * lengthOf(bytes)) / std::chrono::milliseconds(1))
        + 1000;
    while (sent && m_port->bytesToWrite() > 0)
        sent = m_port->waitForBytesWritten(patience);
    if (!sent)
        close();
    // The kernel holds the bytes now; the line is busy until the last one has left.
    m_lastActivity = now() + m_settings.wireTime(lengthOf(bytes));
    return sent;
}

QByteArray SerialLine::receive(int count, Duration deadline)
{
    QByteArray received;
    while (isOpen() && received.size() < count) {
        if (m_port->bytesAvailable() == 0 && !waitForInput(deadline))
            break;
        received.append(m_port->read(count - received.size()));
    }
    return received;
}

int SerialLine::discardInput()
{
    if (!isOpen())
        return 0;
    // A deadline in the past collects what the kernel already holds and waits for nothing.
    while (waitForInput(Duration { 0 }))
        ;
    const int dropped = static_cast<int>(m_port->bytesAvailable());
    m_port->clear(QSerialPort::Input);
    return dropped;
}

bool SerialLine::awaitSilence(Duration gap, Duration deadline)
{
    while (isOpen()) {
        const Duration silentAt = m_lastActivity + gap;
        if (now() >= silentAt)
            return true;
        if (now() >= deadline)
            return false;
        if (waitForInput(std::min(silentAt, deadline)))
            m_port->readAll();
    }
    return false;
}

/// Waits for bytes and takes them into the port's buffer. The port's own wait counts in
/// milliseconds, too coarse for a gap of 1.75 ms, so the descriptor is watched here.
bool SerialLine::waitForInput(Duration deadline)
{
    pollfd watched {};
    watched.fd = m_port->handle();
    watched.events = POLLIN;
    int ready = -1;
    do {
        const timespec span = toTimespec(std::max(deadline - now(), Duration { 0 }));
        ready = ppoll(&watched, 1, &span, nullptr);
    } while (ready < 0 && errno == EINTR); // a signal is no reason to give up on a reply
    if (ready <= 0)
        return false;
    const bool arrived = (watched.revents & POLLIN) && m_port->waitForReadyRead(0);
    if (arrived)
        noteActivity();
    else if (broken() || (watched.revents & (POLLERR | POLLHUP | POLLNVAL)))
        close();
    return arrived;
}

bool SerialLine::broken() const
{
    return m_port->error() != QSerialPort::NoError && m_port->error() != QSerialPort::TimeoutError;
}

void SerialLine::noteActivity()
{
    m_lastActivity = now();
}

} // namespace dx4::host
