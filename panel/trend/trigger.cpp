// SPDX-License-Identifier: MIT
// What one waits for: a level that is crossed, or a fault.
#include "panel/trend/trigger.h"

namespace dx4::panel {

void Trigger::arm(const TriggerRule &rule)
{
    m_rule = rule;
    m_wasThere.reset();
}

bool Trigger::isThere(double quantity) const
{
    return m_rule->when == TriggerRule::When::Rises ? quantity >= m_rule->level
                                                    : quantity <= m_rule->level;
}

bool Trigger::note(const TraceKey &key, double quantity)
{
    if (!m_rule || m_rule->when == TriggerRule::When::Fault || !(m_rule->key == key))
        return false;
    const bool isNow = isThere(quantity);
    const bool crosses = m_wasThere == std::optional<bool>(false) && isNow;
    m_wasThere = isNow;
    if (crosses)
        disarm();
    return crosses;
}

bool Trigger::noteFault()
{
    const bool fires = m_rule && m_rule->when == TriggerRule::When::Fault;
    if (fires)
        disarm();
    return fires;
}

} // namespace dx4::panel
