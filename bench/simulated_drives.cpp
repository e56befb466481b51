// SPDX-License-Identifier: MIT
// The simulator in a process of its own, as fast as its line and no slower.
#include "simulated_drives.h"

#include <stdexcept>

namespace bench {
namespace {

constexpr int patience = 10000; // ms
const QString portWord = QStringLiteral("pty ");

} // namespace

SimulatedDrives::SimulatedDrives(const Load &load)
{
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_process.start(QString::fromLocal8Bit(KORVANE_SIMULATOR_FILE),
                    { QStringLiteral("--pty"), QStringLiteral("--turnaround"), QStringLiteral("0"),
                      QStringLiteral("--speed"), QString::number(load.speed),
                      QStringLiteral("--stations"), QStringLiteral("1-%1").arg(load.stations) });
    while (!m_process.canReadLine() && m_process.waitForReadyRead(patience)) { }
    const QString line = QString::fromLocal8Bit(m_process.readLine()).trimmed();
    if (!line.startsWith(portWord))
        throw std::runtime_error("the simulator names no device: " + line.toStdString());
    m_port = line.mid(portWord.size());
}

SimulatedDrives::~SimulatedDrives()
{
    m_process.terminate();
    m_process.waitForFinished(patience);
}

} // namespace bench
