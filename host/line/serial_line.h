// SPDX-License-Identifier: MIT
// The line over a serial port of the machine, or over a pseudo-terminal.
#pragma once

#include "host/line/line.h"
#include "host/line/port_claim.h"

#include <memory>

class QSerialPort;

namespace dx4::host {

/// A serial port driven without an event loop: every call lasts until its deadline, and waits as
/// setWaits() says. What blocks its thread in any case is the system's: open().
///
/// An open port is held exclusively; open() names the program that has it already. A port that goes
/// away is closed by the call that notices, and open() finds it again under its lasting name.
class SerialLine : public Line {
public:
    /// The port is opened by open(), not here.
    explicit SerialLine(LineSettings settings);
    ~SerialLine() override;

    bool open(QString *error) override;
    void close() override;
    bool isOpen() const override;
    const LineSettings &settings() const override { return m_settings; }
    Duration now() const override;
    bool send(const QByteArray &bytes) override;
    QByteArray receive(int count, Duration deadline) override;
    int discardInput() override;
    bool awaitSilence(Duration gap, Duration deadline) override;
    void setWaits(Waits &waits) override { m_waits = &waits; }

private:
    QString tryOpen(const QString &device);
    bool configure();
    bool writeAll(const QByteArray &bytes, Duration deadline);
    int awaitInput(char *to, int most, Duration deadline);
    int readInto(char *to, int most);
    void noteActivity();

    LineSettings m_settings;
    Waits *m_waits = &blockingWaits();
    PortClaim m_claim; // outlives the port's own descriptor
    std::unique_ptr<QSerialPort> m_port;
    int m_descriptor = -1; // of the open port
    Duration m_lastActivity { 0 };
    Duration m_foundEmpty { 0 }; // when the kernel last had no bytes
};

} // namespace dx4::host
