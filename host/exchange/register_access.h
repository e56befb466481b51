// SPDX-License-Identifier: MIT
// Registers read and written one at a time, each with its outcome.
#pragma once

#include <QString>
#include <QVector>

namespace dx4::host {

/// How one access ended.
struct AccessResult {
    enum class Kind {
        Done,
        Refused, ///< the station answered with an exception, with all tries that could help
        NoAnswer, ///< no right reply came with all tries
        LineDown, ///< the line is closed; a write may still be carried out when it is back
        NotBegun, ///< the job is to end: nothing was asked for
    };

    Kind kind = Kind::Done;
    QString reason; ///< one line for the user: which register, and what came back; empty when done
    QVector<quint16> values; ///< of a read that was done
};

/// Reads and writes of a running link, for jobs that need one after the other. A call returns when
/// its access has ended; what is polled goes on meanwhile.
class RegisterAccess {
public:
    RegisterAccess() = default;
    virtual ~RegisterAccess() = default;
    RegisterAccess(const RegisterAccess &) = delete;
    RegisterAccess &operator=(const RegisterAccess &) = delete;

    /// Most registers of one read.
    virtual int blockSize() const = 0;

    /// Reads `count` registers, 1 to blockSize(), from an internal address on.
    virtual AccessResult read(int station, const QString &regType, int address, int count) = 0;

    /// Writes one register and waits for its echo.
    virtual AccessResult write(int station, const QString &regType, int address, quint16 value) = 0;
};

} // namespace dx4::host
