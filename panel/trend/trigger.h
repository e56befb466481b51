// SPDX-License-Identifier: MIT
// What one waits for: a level that is crossed, or a fault.
#pragma once

#include "panel/trend/trace_key.h"

#include <optional>

namespace dx4::panel {

struct TriggerRule {
    enum class When {
        Rises, ///< to the level, or above it
        Falls, ///< to the level, or below it
        Fault, ///< of any drive
    };

    When when = When::Fault;
    TraceKey key; ///< register whose level counts
    double level = 0.0; ///< quantity
};

/// Fires once, then it has to be armed again. A crossing is from one side to the other: a value
/// that is there already when the trigger is armed does not fire it.
class Trigger {
public:
    void arm(const TriggerRule &rule);
    void disarm() { m_rule.reset(); }
    bool isArmed() const { return m_rule.has_value(); }

    /// Takes the newest quantity of a register.
    ///
    /// @return whether it fired
    bool note(const TraceKey &key, double quantity);

    /// A drive reports a fault that it did not report before.
    ///
    /// @return whether it fired
    bool noteFault();

private:
    bool isThere(double quantity) const;

    std::optional<TriggerRule> m_rule;
    std::optional<bool> m_wasThere; // none: no value came yet
};

} // namespace dx4::panel
