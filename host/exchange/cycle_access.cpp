// SPDX-License-Identifier: MIT
// Registers read and written over a link and its cycle.
#include "host/exchange/cycle_access.h"

#include "host/frames/verdict_text.h"
#include "host/link/notation.h"

#include <utility>

namespace dx4::host {
namespace {

// Each time another read failed, or took the place of this one: no more of them wait at once.
constexpr int mostAsked = 513;

QString accessText(int station, const QString &regType, int address)
{
    return QStringLiteral("station %1, %2").arg(station).arg(fullAddress(regType, address));
}

} // namespace

CycleAccess::CycleAccess(Link &link, Cycle &cycle, Verdict verdict)
    : CycleAccess(
        link, cycle, [&cycle] { return cycle.step(); }, std::move(verdict))
{
}

CycleAccess::CycleAccess(Link &link, const Cycle &cycle, Stepper step, Verdict verdict)
    : m_link(link)
    , m_cycle(cycle)
    , m_step(std::move(step))
    , m_verdict(std::move(verdict))
{
    if (!m_verdict)
        m_verdict = [&cycle] { return checkReply(cycle.request(), cycle.reply().bytes); };
}

AccessResult CycleAccess::read(int station, const QString &regType, int address, int count)
{
    const QString what = accessText(station, regType, address);
    for (int asked = 0; asked < mostAsked; ++asked) {
        m_link.addConditionRead(station, regType, address, count, --m_lastTag);
        std::optional<AccessResult> result = await(what, &Link::hasConditionRead);
        if (result && result->kind == AccessResult::Kind::Done)
            result->values = m_link.values(station, regType, address, count);
        if (result)
            return *result;
        const bool isStuck = m_link.hasConditionRead(m_lastTag);
        if (isStuck || isLeftAlone(station))
            break;
    }
    return dropped(station, what);
}

AccessResult CycleAccess::write(int station, const QString &regType, int address, quint16 value)
{
    const QString what = accessText(station, regType, address);
    m_link.write(station, regType, address, { value }, --m_lastTag);
    const std::optional<AccessResult> result = await(what, &Link::hasWrite);
    return result ? *result : dropped(station, what);
}

/// Turns the cycle until the access of the last tag has ended.
///
/// @return nothing when it left the driver's list without a step of its own
std::optional<AccessResult> CycleAccess::await(const QString &what, bool (Link::*waits)(int) const)
{
    // One idle step is the driver's pause after some requests in a row; a second one means that a
    // request stands in the way which it cannot encode.
    for (int idleSteps = 0; idleSteps < 2;) {
        const Cycle::Step step = m_step();
        idleSteps = step == Cycle::Step::Idle ? idleSteps + 1 : 0;
        if (step == Cycle::Step::LineDown)
            return AccessResult { AccessResult::Kind::LineDown,
                                  what + QStringLiteral(": the line is down"),
                                  {} };
        const bool ended = step == Cycle::Step::Served || step == Cycle::Step::GivenUp;
        if (ended && m_cycle.request().var.varKind == m_lastTag)
            return outcome(what, step);
        if (!(m_link.*waits)(m_lastTag))
            break;
    }
    return std::nullopt;
}

bool CycleAccess::isLeftAlone(int) const
{
    return false;
}

AccessResult CycleAccess::dropped(int station, const QString &what) const
{
    const QString why = isLeftAlone(station) ? notAskedText() : QStringLiteral("dropped");
    return { AccessResult::Kind::NoAnswer, QStringLiteral("%1: %2").arg(what, why), {} };
}

AccessResult CycleAccess::outcome(const QString &what, Cycle::Step step) const
{
    if (step == Cycle::Step::Served)
        return {};
    if (m_cycle.reply().kind == Reply::Kind::NotAsked)
        return { AccessResult::Kind::NoAnswer,
                 QStringLiteral("%1: %2").arg(what, notAskedText()),
                 {} };
    const ReplyVerdict verdict = m_verdict();
    const auto kind = verdict.cause == ReplyCause::Exception ? AccessResult::Kind::Refused
                                                             : AccessResult::Kind::NoAnswer;
    return { kind, QStringLiteral("%1: %2").arg(what, verdictText(verdict)), {} };
}

} // namespace dx4::host
