// SPDX-License-Identifier: MIT
// The simulated inverter, run as a process of its own.
#pragma once

#include "cli/console/filled.h"

#include <QProcess>
#include <QStringList>

namespace dx4::cli {

/// Where the simulator's program was looked for.
struct SimulatorFile {
    QString path; ///< empty when none was found
    QStringList tried;
};

/// Finds dx4-sim: `explicitPath` when given, else beside this program and in its build tree.
SimulatorFile locateSimulator(const QString &explicitPath);

/// One running simulator on a pseudo-terminal; it ends with this object.
class SimulatorProcess {
public:
    SimulatorProcess() = default;
    ~SimulatorProcess();
    SimulatorProcess(const SimulatorProcess &) = delete;
    SimulatorProcess &operator=(const SimulatorProcess &) = delete;

    /// Starts it and waits until it names its device.
    ///
    /// @param stations  between commas
    /// @param speed     of its line, bit/s
    /// @param error     out: why it does not run
    bool start(const QString &program, const QString &stations, int speed, QString *error);

    /// The device to open.
    QString device() const { return m_device; }

private:
    /// Ctrl-C reaches the whole process group of the terminal. The simulator stays out of it, so
    /// that the motor can still be stopped, and ends with this program however that ends.
    class OwnGroup : public QProcess {
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    protected:
        void setupChildProcess() override;
#else
    public:
        OwnGroup();
#endif
    };

    OwnGroup m_process;
    QString m_device;
};

} // namespace dx4::cli
