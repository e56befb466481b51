// SPDX-License-Identifier: MIT
// Registers read and written for a job, while the line serves everybody else.
#pragma once

#include "host/exchange/cycle_access.h"
#include "host/runtime/runtime.h"

#include <functional>
#include <optional>

namespace dx4::host {

/// Turns the whole line, commands of others included, until an access has ended.
class JobAccess : public CycleAccess {
public:
    using Turn = std::function<Runtime::Step()>;
    using WhyItEnds = std::function<QString()>;
    using IsClosing = std::function<bool()>;

    /// @param runtime    outlives this
    /// @param turn       one step of the line with all that belongs to it
    /// @param whyItEnds  why the job is to end; empty as long as it is not. No access is begun
    /// then,
    ///                   a read is left, a write followed to its outcome
    /// @param isClosing  the thread is to end: a write is left as well
    JobAccess(Runtime &runtime, Turn turn, WhyItEnds whyItEnds, IsClosing isClosing);

    AccessResult read(int station, const QString &regType, int address, int count) override;
    AccessResult write(int station, const QString &regType, int address, quint16 value) override;

    /// @param outcome  gets what the station held before, as far as it was read
    /// @return whether the write was of this access
    bool takeOutcome(WriteOutcome &outcome);

protected:
    bool isLeftAlone(int station) const override { return m_runtime.isLeftAlone(station); }

private:
    Runtime &m_runtime;
    Turn m_turn;
    WhyItEnds m_whyItEnds;
    IsClosing m_isClosing;
    int m_expected = 0; ///< id of the write that is waited for; 0: none
    std::optional<WriteOutcome> m_ended;
    QVector<quint16> m_held; ///< by the register that is being written, before that
};

} // namespace dx4::host
