// SPDX-License-Identifier: MIT
// The line over a serial port of the machine, or over a pseudo-terminal.
#include "host/line/serial_line.h"

#include "host/base/length.h"
#include "host/line/port_list.h"

#include <QFile>
#include <QSerialPort>
#include <QSocketNotifier>

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
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

/// A program that has the port open and took no lock would talk into every exchange.
QString sharedText(const QString &device)
{
    const QVector<PortHolder> strangers = strangersOn(device);
    if (strangers.isEmpty())
        return {};
    return QStringLiteral("in use by %1, which took no lock; end it, as two programs on one line "
                          "disturb each other")
        .arg(holderText(strangers));
}

QString inUseText(const QString &device)
{
    return QStringLiteral("in use by %1").arg(holderText(holdersOf(device)));
}

constexpr int wasteBytes = 256; // dropped at once

// Less than one character at 115,200 bit/s: looking again would find what may as well come later.
constexpr Duration momentAgo = std::chrono::microseconds(50);

// An event loop in this thread would move what arrives into the port's own buffer.
void keepFromEventLoop(const QSerialPort &port)
{
    const auto notifiers = port.findChildren<QSocketNotifier *>();
    for (QSocketNotifier *notifier : notifiers)
        notifier->setEnabled(false);
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
    if (m_settings.port.isEmpty()) {
        if (error)
            *error = QStringLiteral("no serial port is named; a configuration has it as port under "
                                    "[line]");
        return false;
    }
    // Resolved each time: an adapter that comes back may be another device under its lasting name.
    const QString device = portDevice(m_settings.port);
    // Made anew, because it belongs to the thread that makes it and that is the one to use it.
    m_port = std::make_unique<QSerialPort>(device);
    const QString refusal = tryOpen(device);
    if (refusal.isEmpty()) {
        m_port->clear();
        m_descriptor = m_port->handle();
        keepFromEventLoop(*m_port);
        noteActivity();
        return true;
    }
    if (error)
        *error = QStringLiteral("%1: %2").arg(m_settings.port, refusal);
    close();
    return false;
}

/// Opens the port as the settings say; gives the reason when that fails.
QString SerialLine::tryOpen(const QString &device)
{
    if (!m_claim.take(QFile::encodeName(device).toStdString()))
        return inUseText(device);
    QString others = m_settings.isShared ? QString() : sharedText(device);
    if (!others.isEmpty())
        return others;
    const bool opened = m_port->open(QIODevice::ReadWrite);
    // It sets exclusive mode. One that this user may open but cannot is held by a lock file.
    const bool isHeld = !opened && m_port->error() == QSerialPort::PermissionError
        && access(QFile::encodeName(device).constData(), R_OK | W_OK) == 0;
    if (isHeld) {
        m_claim.release(); // else this program would be among the holders
        return inUseText(device);
    }
    if (!opened && m_port->error() == QSerialPort::PermissionError)
        return permissionText(device);
    if (!opened || !configure())
        return m_port->errorString();
    if (!tellEmptyFromGone(m_port->handle()))
        return qt_error_string(errno);
    if (m_settings.kernelSwitchesDirection && !switchDirectionByKernel(m_port->handle()))
        return QStringLiteral("its driver cannot switch the RS-485 direction; leave that to the "
                              "adapter");
    return {};
}

bool SerialLine::configure()
{
    return m_port->setDataBits(QSerialPort::Data8)
        && m_port->setFlowControl(QSerialPort::NoFlowControl)
        && m_port->setBaudRate(m_settings.speed) && m_port->setParity(portParity(m_settings.parity))
        && m_port->setStopBits(m_settings.stopBits == 2 ? QSerialPort::TwoStop
                                                        : QSerialPort::OneStop);
}

void SerialLine::close()
{
    m_descriptor = -1;
    m_port->close();
    m_claim.release();
}

bool SerialLine::isOpen() const
{
    return m_descriptor >= 0;
}

Duration SerialLine::now() const
{
    return steadyNow();
}

bool SerialLine::send(const QByteArray &bytes)
{
    if (!isOpen())
        return false;
    const Duration onTheWire = m_settings.wireTime(lengthOf(bytes));
    const bool sent = writeAll(bytes, now() + 2 * onTheWire + std::chrono::seconds(1));
    if (!sent)
        close();
    // The kernel holds the bytes now; the line is busy until the last one has left.
    m_lastActivity = now() + onTheWire;
    return sent;
}

QByteArray SerialLine::receive(int count, Duration deadline)
{
    if (!isOpen() || count <= 0)
        return {};
    QByteArray received(count, Qt::Uninitialized);
    int length = 0;
    while (length < count) {
        // Where a part came, the rest takes its time on the wire: waking for each character would
        // cost more than everything else that a request does.
        if (length > 0)
            m_waits->until(
                std::min(m_lastActivity + m_settings.wireTime(count - length), deadline));
        const int more = awaitInput(received.data() + length, count - length, deadline);
        if (more == 0)
            break;
        length += more;
    }
    received.truncate(length);
    return received;
}

int SerialLine::discardInput()
{
    if (!isOpen() || now() - m_foundEmpty < momentAgo)
        return 0;
    int dropped = 0;
    char waste[wasteBytes];
    while (const int more = readInto(waste, wasteBytes))
        dropped += more;
    return dropped;
}

bool SerialLine::awaitSilence(Duration gap, Duration deadline)
{
    while (isOpen()) {
        const Duration silentAt = m_lastActivity + gap;
        const Duration time = now();
        // Watching the port meanwhile costs the kernel more than looking once at the end. What came
        // at some time before counts as having come at the end, which makes the silence no shorter.
        if (time >= silentAt && discardInput() == 0)
            return isOpen();
        if (time >= deadline)
            return false;
        m_waits->until(std::min(m_lastActivity + gap, deadline));
    }
    return false;
}

/// Hands bytes to the kernel, which may not have room for all of them at once.
bool SerialLine::writeAll(const QByteArray &bytes, Duration deadline)
{
    qsizetype written = 0;
    while (written < bytes.size()) {
        const ssize_t count = ::write(m_descriptor, bytes.constData() + written,
                                      static_cast<std::size_t>(bytes.size() - written));
        if (count > 0)
            written += count;
        else if (count == -1 && errno == EINTR)
            continue;
        else if (count == -1 && errno != EAGAIN)
            return false;
        else if (now() >= deadline
                 || m_waits->forEvents(m_descriptor, POLLOUT, deadline) != POLLOUT)
            return false;
    }
    return true;
}

/// Waits until bytes come and takes them; closes the port when it broke. The port's own waits count
/// in milliseconds, too coarse for a gap of 1.75 ms, and note each arrival in a buffer of theirs,
/// which costs more than the driver does: the descriptor is used directly.
///
/// @return number of bytes taken, 0 at the deadline and when the port broke
int SerialLine::awaitInput(char *to, int most, Duration deadline)
{
    // An unplugged adapter reports input as well; it still hands over what it had before.
    return m_waits->forEvents(m_descriptor, POLLIN, deadline) == 0 ? 0 : readInto(to, most);
}

/// Takes what the kernel holds without waiting; closes the port when it broke.
///
/// @return number of bytes taken
int SerialLine::readInto(char *to, int most)
{
    ssize_t count = -1;
    do {
        count = ::read(m_descriptor, to, static_cast<std::size_t>(most));
    } while (count == -1 && errno == EINTR);
    const bool isEmpty = count == -1 && errno == EAGAIN;
    if (count > 0)
        noteActivity();
    else if (isEmpty)
        m_foundEmpty = now();
    else
        close();
    return static_cast<int>(std::max<ssize_t>(count, 0));
}

void SerialLine::noteActivity()
{
    m_lastActivity = now();
}

} // namespace dx4::host
