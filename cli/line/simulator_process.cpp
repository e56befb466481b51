// SPDX-License-Identifier: MIT
// The simulated inverter, run as a process of its own.
#include "cli/line/simulator_process.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

#include <csignal>
#include <sys/prctl.h>
#include <unistd.h>

namespace dx4::cli {
namespace {

constexpr int startPatience = 5000; // ms until it must have named its device
constexpr int endPatience = 2000; // ms from the request to end until it is killed
const QString firstWord = QStringLiteral("pty ");

/// Runs in the new process, before the simulator's program.
void leaveGroupButNotParent()
{
    setpgid(0, 0);
    prctl(PR_SET_PDEATHSIG, SIGTERM);
}

} // namespace

SimulatorFile locateSimulator(const QString &explicitPath)
{
    QStringList candidates { explicitPath };
    if (explicitPath.isEmpty()) {
        const QDir program(QCoreApplication::applicationDirPath());
        candidates = QStringList { program.filePath(QStringLiteral("dx4-sim")),
                                   QDir::cleanPath(
                                       program.filePath(QStringLiteral("../simulator/dx4-sim"))) };
    }
    SimulatorFile found;
    for (const QString &candidate : candidates) {
        found.tried.append(candidate);
        if (!QFileInfo(candidate).isExecutable())
            continue;
        found.path = QFileInfo(candidate).absoluteFilePath();
        break;
    }
    return found;
}

#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
void SimulatorProcess::OwnGroup::setupChildProcess()
{
    leaveGroupButNotParent();
}
#else
SimulatorProcess::OwnGroup::OwnGroup()
{
    setChildProcessModifier(leaveGroupButNotParent);
}
#endif

SimulatorProcess::~SimulatorProcess()
{
    if (m_process.state() == QProcess::NotRunning)
        return;
    m_process.terminate();
    if (!m_process.waitForFinished(endPatience)) {
        m_process.kill();
        m_process.waitForFinished(endPatience);
    }
}

bool SimulatorProcess::start(const QString &program, const QString &stations, int speed,
                             QString *error)
{
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_process.start(program,
                    { QStringLiteral("--pty"), QStringLiteral("--stations"), stations,
                      QStringLiteral("--speed"), QString::number(speed) });
    while (m_process.state() != QProcess::NotRunning && !m_process.canReadLine()) {
        if (!m_process.waitForReadyRead(startPatience))
            break;
    }
    const QString line = QString::fromLocal8Bit(m_process.readLine()).trimmed();
    if (line.startsWith(firstWord)) {
        m_device = line.mid(firstWord.size());
        return true;
    }
    if (error) {
        *error = filled("%1 did not name its device: %2", program,
                        line.isEmpty() ? m_process.errorString() : line);
    }
    return false;
}

} // namespace dx4::cli
