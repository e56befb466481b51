// SPDX-License-Identifier: MIT
// Registers read and written over a runtime.
#include "host/runtime/runtime_access.h"

#include <QScopeGuard>

#include <utility>

namespace dx4::host {
namespace {

AccessResult::Kind kindOf(const WriteOutcome &outcome)
{
    switch (outcome.end) {
    case WriteEnd::Confirmed:
        return AccessResult::Kind::Done;
    case WriteEnd::TimedOut:
    case WriteEnd::Replaced:
    case WriteEnd::NotTaken:
        return AccessResult::Kind::NoAnswer;
    case WriteEnd::Refused:
        return outcome.refusal == Refusal::NotConnected ? AccessResult::Kind::LineDown
                                                        : AccessResult::Kind::Refused;
    case WriteEnd::Rejected:
        return AccessResult::Kind::Refused;
    }
    return AccessResult::Kind::NoAnswer;
}

} // namespace

AccessResult accessResult(const WriteOutcome &outcome)
{
    if (kindOf(outcome) == AccessResult::Kind::Done)
        return {};
    return { kindOf(outcome), outcome.text, {} };
}

WriteWish parameterWrite(int station, const QString &regType, int address, quint16 value)
{
    WriteWish wish;
    wish.station = station;
    wish.regType = regType;
    wish.address = address;
    wish.values = { value };
    wish.always = true;
    return wish;
}

RuntimeAccess::RuntimeAccess(Runtime &runtime, WriteDesk::OutcomeHandler others)
    : CycleAccess(
        runtime.link(), runtime.cycle(), [&runtime] { return runtime.step(); },
        [&runtime] { return runtime.report().verdict; })
    , m_runtime(runtime)
    , m_others(std::move(others))
{
    m_runtime.onOutcome([this](const WriteOutcome &outcome) { note(outcome); });
}

RuntimeAccess::~RuntimeAccess()
{
    m_runtime.onOutcome(m_others);
}

AccessResult RuntimeAccess::write(int station, const QString &regType, int address, quint16 value)
{
    m_ended.reset();
    m_expected = m_runtime.write(parameterWrite(station, regType, address, value));
    // Also where a handler throws: the outcome is the others' from then on.
    const auto forget = qScopeGuard([this] { m_expected = 0; });
    m_runtime.run([this] { return m_ended.has_value(); });
    return accessResult(*m_ended);
}

bool RuntimeAccess::isLeftAlone(int station) const
{
    return m_runtime.isLeftAlone(station);
}

void RuntimeAccess::note(const WriteOutcome &outcome)
{
    if (outcome.id == m_expected)
        m_ended = outcome;
    else if (m_others)
        m_others(outcome);
}

} // namespace dx4::host
