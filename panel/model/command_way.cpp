// SPDX-License-Identifier: MIT
// The way of one command: asked for, echoed, and seen in what the drive reports.
#include "panel/model/command_way.h"

namespace dx4::panel {

void CommandWay::begin(int id, const QString &what, const std::optional<Expectation> &expected)
{
    m_id = id;
    m_what = what;
    m_expected = expected;
    m_stage = id == 0 ? Stage::Refused : Stage::Queued;
    m_reason = id == 0 ? tr("the line is being closed") : QString();
}

void CommandWay::noteEnded(const host::WriteOutcome &outcome, host::Duration now)
{
    if (outcome.id != m_id || m_stage != Stage::Queued)
        return;
    m_echoedAt = now;
    m_reason = outcome.text;
    if (outcome.end == host::WriteEnd::Confirmed)
        m_stage = Stage::Echoed;
    else if (outcome.end == host::WriteEnd::TimedOut && outcome.sent)
        m_stage = Stage::Unconfirmed;
    else
        m_stage = Stage::Refused;
}

void CommandWay::noteValue(quint16 value, host::Duration readAt)
{
    const bool mayTell = m_stage == Stage::Echoed || m_stage == Stage::Unseen;
    if (mayTell && m_expected && readAt > m_echoedAt && m_expected->isMetBy(value))
        m_stage = Stage::Seen;
}

void CommandWay::look(host::Duration now)
{
    if (m_stage == Stage::Echoed && m_expected && now - m_echoedAt >= seenWithin)
        m_stage = Stage::Unseen;
}

QString CommandWay::stageText() const
{
    switch (m_stage) {
    case Stage::None:
        break;
    case Stage::Queued:
        return tr("on its way, no echo yet");
    case Stage::Echoed:
        return tr("echoed");
    case Stage::Seen:
        return tr("done, the drive reports it");
    case Stage::Unseen:
        return tr("echoed, but the drive does not report it");
    case Stage::Unconfirmed:
        return tr("sent, but not echoed; the drive may have taken it");
    case Stage::Refused:
        return tr("refused: %1").arg(m_reason);
    }
    return {};
}

QString CommandWay::text() const
{
    if (m_stage == Stage::None)
        return {};
    return QStringLiteral("%1: %2").arg(m_what, stageText());
}

} // namespace dx4::panel
