// SPDX-License-Identifier: MIT
// Registers read and written over a runtime.
#pragma once

#include "host/exchange/cycle_access.h"
#include "host/runtime/runtime.h"

#include <optional>

namespace dx4::host {

/// Lets a runtime carry out each access; its breaker, its counters and its rules for writes apply.
/// Writes always go to the station: whoever uses this has compared already.
class RuntimeAccess : public CycleAccess {
public:
    /// Takes the runtime's outcome handler over.
    ///
    /// @param runtime  outlives this
    /// @param others   told of every outcome that is not of this access; becomes the runtime's
    ///                 handler at the end
    explicit RuntimeAccess(Runtime &runtime, WriteDesk::OutcomeHandler others = {});
    ~RuntimeAccess() override;

    AccessResult write(int station, const QString &regType, int address, quint16 value) override;

protected:
    bool isLeftAlone(int station) const override;

private:
    void note(const WriteOutcome &outcome);

    Runtime &m_runtime;
    WriteDesk::OutcomeHandler m_others;
    int m_expected = 0; ///< id of the write that is waited for; 0: none
    std::optional<WriteOutcome> m_ended;
};

/// A write that is sent also where the station holds the value already.
WriteWish parameterWrite(int station, const QString &regType, int address, quint16 value);

/// The outcome of a write as that of an access.
AccessResult accessResult(const WriteOutcome &outcome);

} // namespace dx4::host
