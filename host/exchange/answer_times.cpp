// SPDX-License-Identifier: MIT
// How long each station takes to answer, and how long it is waited for.
#include "host/exchange/answer_times.h"

#include <algorithm>
#include <utility>

namespace dx4::host {
namespace {

constexpr int runToBelieve = 3; // late answers in a row
constexpr int promptToForget = 32; // answers in a row
constexpr int memory = 16; // answers until an outlier has lost most of its weight

double milliseconds(Duration span)
{
    return static_cast<double>(span.count()) / 1000.0;
}

/// A quarter on top, so that the next answer need not come to the microsecond.
Duration withMargin(Duration delay)
{
    return delay + delay / 4;
}

} // namespace

AnswerTimes::AnswerTimes(Duration responseTimeout)
    : m_responseTimeout(responseTimeout)
{
}

void AnswerTimes::noteAnswer(int number, Duration delay, bool sure)
{
    Station &station = m_stations[number];
    if (sure) {
        const Duration slowest = station.slowest.value_or(delay);
        station.slowest = std::max(delay, slowest - slowest / memory);
    }
    if (delay > timeoutOf(number)) {
        station.promptInARow = 0;
        station.latest = std::max(station.latest, delay);
        if (++station.lateInARow >= runToBelieve)
            raise(number, station);
        return;
    }
    station.lateInARow = 0;
    station.latest = Duration { 0 };
    if (sure && ++station.promptInARow >= promptToForget)
        lower(number, station);
}

void AnswerTimes::raise(int number, Station &station)
{
    const Duration wanted = std::min(withMargin(station.latest), mostTimeouts * m_responseTimeout);
    station.lateInARow = 0;
    if (wanted <= timeoutOf(number))
        return;
    station.timeout = wanted;
    m_notice = QStringLiteral("station %1 answers later than the response timeout of %2 ms; it is "
                              "waited for %3 ms from now on, and timeout_ms had better be that")
                   .arg(number)
                   .arg(milliseconds(m_responseTimeout))
                   .arg(milliseconds(wanted));
}

/// Follows a sure answer, so that the slowest one is known.
void AnswerTimes::lower(int number, Station &station)
{
    station.promptInARow = 0;
    const Duration wanted = std::max(2 * *station.slowest, m_responseTimeout);
    if (wanted >= station.timeout)
        return;
    station.timeout = wanted;
    m_notice = QStringLiteral("station %1 is quicker again; it is waited for %2 ms from now on")
                   .arg(number)
                   .arg(milliseconds(wanted));
}

Duration AnswerTimes::timeoutOf(int station) const
{
    const auto found = m_stations.find(station);
    return found == m_stations.end() ? m_responseTimeout
                                     : std::max(found->second.timeout, m_responseTimeout);
}

std::optional<Duration> AnswerTimes::slowestOf(int station) const
{
    const auto found = m_stations.find(station);
    return found == m_stations.end() ? std::nullopt : found->second.slowest;
}

QString AnswerTimes::takeNotice()
{
    return std::exchange(m_notice, QString());
}

} // namespace dx4::host
