// SPDX-License-Identifier: MIT
// Registers read and written over a link and its cycle.
#include "host/cycle_access.h"

#include "host/notation.h"
#include "host/verdict_text.h"

#include <utility>

namespace dx4::host {
namespace {

QString accessText(int station, const QString &regType, int address)
{
    return QStringLiteral("station %1, %2").arg(station).arg(fullAddress(regType, address));
}

} // namespace

QString notAskedText()
{
    return QStringLiteral("not asked, the station does not answer");
}

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
    m_link.addConditionRead(station, regType, address, count, --m_lastTag);
    AccessResult result = await(station, accessText(station, regType, address), m_lastTag,
                                &Link::waitingConditionReads);
    if (result.kind == AccessResult::Kind::Done)
        result.values = m_link.values(station, regType, address, count);
    return result;
}

AccessResult CycleAccess::write(int station, const QString &regType, int address, quint16 value)
{
    m_link.write(station, regType, address, { value }, --m_lastTag);
    return await(station, accessText(station, regType, address), m_lastTag, &Link::waitingWrites);
}

AccessResult CycleAccess::await(int station, const QString &what, int tag,
                                int (Link::*waiting)() const)
{
    // One idle step is the driver's pause after some requests in a row; a second one means that a
    // request stands in the way which it cannot encode.
    for (int idleSteps = 0; idleSteps < 2;) {
        const Cycle::Step step = m_step();
        idleSteps = step == Cycle::Step::Idle ? idleSteps + 1 : 0;
        if (step == Cycle::Step::LineDown)
            return { AccessResult::Kind::LineDown,
                     what + QStringLiteral(": the line is down"),
                     {} };
        const bool ended = step == Cycle::Step::Served || step == Cycle::Step::GivenUp;
        if (ended && m_cycle.request().var.varKind == tag)
            return outcome(what, step);
        // A condition read that fails takes those behind it along.
        if ((m_link.*waiting)() == 0)
            break;
    }
    return { AccessResult::Kind::NoAnswer,
             QStringLiteral("%1: %2").arg(what, whyDropped(station)),
             {} };
}

QString CycleAccess::whyDropped(int) const
{
    return QStringLiteral("dropped");
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
