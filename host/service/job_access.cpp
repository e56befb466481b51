// SPDX-License-Identifier: MIT
// Registers read and written for a job, while the line serves everybody else.
#include "host/service/job_access.h"

#include "host/runtime/runtime_access.h"

#include <utility>

namespace dx4::host {

JobAccess::JobAccess(Runtime &runtime, Turn turn, WhyItEnds whyItEnds, IsClosing isClosing)
    : CycleAccess(
        runtime.link(), runtime.cycle(),
        [turn, whyItEnds] {
            const Runtime::Step done = turn();
            return whyItEnds().isEmpty() ? done : Runtime::Step::LineDown;
        },
        [&runtime] { return runtime.report().verdict; })
    , m_runtime(runtime)
    , m_turn(std::move(turn))
    , m_whyItEnds(std::move(whyItEnds))
    , m_isClosing(std::move(isClosing))
{
}

AccessResult JobAccess::read(int station, const QString &regType, int address, int count)
{
    const QString before = m_whyItEnds();
    if (!before.isEmpty())
        return { AccessResult::Kind::NotBegun, before, {} };
    AccessResult result = CycleAccess::read(station, regType, address, count);
    const QString after = m_whyItEnds();
    if (result.kind == AccessResult::Kind::LineDown && !after.isEmpty())
        result.reason = after;
    return result;
}

AccessResult JobAccess::write(int station, const QString &regType, int address, quint16 value)
{
    const QString before = m_whyItEnds();
    if (!before.isEmpty())
        return { AccessResult::Kind::NotBegun, before, {} };
    const Value held = m_runtime.value(station, regType, address);
    const bool isHeld = held.known && !held.writePending;
    m_held = isHeld ? QVector<quint16> { held.value } : QVector<quint16>();
    m_ended.reset();
    m_expected = m_runtime.write(parameterWrite(station, regType, address, value));
    while (!m_ended && !m_isClosing())
        m_turn();
    if (!m_ended)
        return { AccessResult::Kind::LineDown, m_whyItEnds(), {} };
    return accessResult(*m_ended);
}

bool JobAccess::takeOutcome(WriteOutcome &outcome)
{
    if (outcome.id != m_expected)
        return false;
    outcome.before = m_held;
    m_ended = outcome;
    return true;
}

} // namespace dx4::host
