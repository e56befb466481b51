// SPDX-License-Identifier: MIT
// The stop that is sent when nobody watches any more, and followed until it is confirmed.
#include "host/safe_stop.h"

#include "host/breaker.h"

#include <algorithm>
#include <utility>

namespace dx4::host {
namespace {

constexpr Duration firstDelay = std::chrono::milliseconds(200);
constexpr Duration longestDelay = std::chrono::seconds(10);

QString controlWordType()
{
    return QStringLiteral("CW");
}

} // namespace

SafeStop::SafeStop(Link &link, const QVector<StopCommand> &commands)
    : m_link(link)
    , m_commands(commands)
{
}

void SafeStop::setCommands(QVector<StopCommand> commands)
{
    for (const StopCommand &former : std::as_const(m_commands)) {
        if (m_pending.count(former.station) == 0)
            continue;
        commands.erase(
            std::remove_if(commands.begin(), commands.end(),
                           [&](const StopCommand &next) { return next.station == former.station; }),
            commands.end());
        commands.append(former);
    }
    m_commands = std::move(commands);
}

void SafeStop::begin()
{
    m_pending.clear();
    for (const StopCommand &command : std::as_const(m_commands))
        m_pending[command.station] = Try {};
}

void SafeStop::tryNow()
{
    for (auto &[station, next] : m_pending)
        next = Try {};
}

void SafeStop::tryStation(int station)
{
    const auto waiting = m_pending.find(station);
    if (waiting != m_pending.end())
        waiting->second = Try {};
}

void SafeStop::prepare(Duration now)
{
    bool isDue = false;
    for (const StopCommand &command : std::as_const(m_commands)) {
        const auto waiting = m_pending.find(command.station);
        if (waiting == m_pending.end() || now < waiting->second.notBefore)
            continue;
        isDue = true;
        if (!isQueued(command.station))
            m_link.write(command.station, controlWordType(), 0, { command.controlWord },
                         safeStopTag);
    }
    // The driver serves in order and knows no urgent write. What stands before the stop is failed
    // without the line, which is how the driver lets go of it.
    if (isDue)
        m_link.failAhead(safeStopTag);
}

void SafeStop::afterStep(const Cycle &cycle, Cycle::Step step, Duration now)
{
    const VARIABLE &served = cycle.request().var;
    const auto waiting = m_pending.find(served.station);
    if (served.varKind != safeStopTag || waiting == m_pending.end())
        return;
    if (step == Cycle::Step::Served) {
        m_pending.erase(waiting);
    } else if (step == Cycle::Step::GivenUp) {
        Try &next = waiting->second;
        next.delay = std::clamp(2 * next.delay, firstDelay, longestDelay);
        next.notBefore = now + next.delay;
    }
}

bool SafeStop::isQueued(int station) const
{
    const QList<VARIABLE> &waiting = m_link.api().state->writeList;
    return std::any_of(waiting.begin(), waiting.end(), [station](const VARIABLE &write) {
        return write.varKind == safeStopTag && write.station == station;
    });
}

QVector<int> SafeStop::unconfirmed() const
{
    QVector<int> stations;
    for (const auto &[station, next] : m_pending)
        stations.append(station);
    return stations;
}

bool SafeStop::isStop(int station, const QVector<quint16> &values) const
{
    return std::any_of(m_commands.begin(), m_commands.end(), [&](const StopCommand &command) {
        return command.station == station && values == QVector<quint16> { command.controlWord };
    });
}

} // namespace dx4::host
