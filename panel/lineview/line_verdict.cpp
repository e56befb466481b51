// SPDX-License-Identifier: MIT
// One sentence that says what is wrong with a line.
#include "panel/lineview/line_verdict.h"

#include "panel/lineview/counts_window.h"

#include <QStringList>

#include <algorithm>
#include <optional>

namespace dx4::panel {
namespace {

constexpr int mostNamed = 4; // stations in one sentence

/// A kind of failure: how it is counted, what it is called, and what it points at.
struct Cause {
    quint64 (*count)(const host::RequestCounts &counts);
    const char *name; ///< behind "4 %"
    const char *atOne; ///< where to look when some stations have it and others not
    const char *atAll; ///< when all have it
};

/// By how much each tells: bytes that change on the way are told before what stations say.
const Cause causes[] = {
    { [](const host::RequestCounts &counts) { return counts.badCrc; },
      QT_TRANSLATE_NOOP("dx4::panel::LineVerdict", "wrong CRC"),
      QT_TRANSLATE_NOOP("dx4::panel::LineVerdict", "look at its stub"),
      QT_TRANSLATE_NOOP("dx4::panel::LineVerdict",
                        "look at the shield and at the resistors at both ends") },
    { [](const host::RequestCounts &counts) { return counts.truncated; },
      QT_TRANSLATE_NOOP("dx4::panel::LineVerdict", "truncated"),
      QT_TRANSLATE_NOOP("dx4::panel::LineVerdict", "look at its plug and its stub"),
      QT_TRANSLATE_NOOP("dx4::panel::LineVerdict", "look at the adapter and its cable") },
    { [](const host::RequestCounts &counts) { return counts.foreign; },
      QT_TRANSLATE_NOOP("dx4::panel::LineVerdict", "answered by another station"),
      QT_TRANSLATE_NOOP("dx4::panel::LineVerdict", "look for a second master, or an address twice"),
      QT_TRANSLATE_NOOP("dx4::panel::LineVerdict", "look for a second master on the line") },
    { [](const host::RequestCounts &counts) { return counts.wrongReplies; },
      QT_TRANSLATE_NOOP("dx4::panel::LineVerdict", "wrong reply"),
      QT_TRANSLATE_NOOP("dx4::panel::LineVerdict", "look whether its address is there twice"),
      QT_TRANSLATE_NOOP("dx4::panel::LineVerdict", "look for a second master on the line") },
    { [](const host::RequestCounts &counts) { return counts.timeouts; },
      QT_TRANSLATE_NOOP("dx4::panel::LineVerdict", "silence"),
      QT_TRANSLATE_NOOP("dx4::panel::LineVerdict",
                        "look at its plug, or give it a longer response_timeout"),
      QT_TRANSLATE_NOOP("dx4::panel::LineVerdict",
                        "look at the cable, or set a longer response_timeout") },
    { exceptionsOf, QT_TRANSLATE_NOOP("dx4::panel::LineVerdict", "refused"),
      QT_TRANSLATE_NOOP("dx4::panel::LineVerdict", "look at its registers in the configuration"),
      QT_TRANSLATE_NOOP("dx4::panel::LineVerdict", "look at the registers in the configuration") },
};

QString nameOf(const StationCounts &station)
{
    const QString number = LineVerdict::tr("Station %1").arg(station.station);
    return station.name.isEmpty() ? number : QStringLiteral("%1 (%2)").arg(number, station.name);
}

QString numbersOf(const QVector<StationCounts> &stations)
{
    QStringList numbers;
    for (const StationCounts &station : stations.mid(0, mostNamed))
        numbers.append(QString::number(station.station));
    const QString named = numbers.join(QStringLiteral(", "));
    const int left = static_cast<int>(stations.size()) - mostNamed;
    return left > 0 ? LineVerdict::tr("%1 and %2 more").arg(named).arg(left) : named;
}

QString namesOf(const QVector<StationCounts> &stations)
{
    return stations.size() == 1 ? nameOf(stations.constFirst())
                                : LineVerdict::tr("Stations %1").arg(numbersOf(stations));
}

double shareOf(quint64 part, quint64 all)
{
    return all == 0 ? 0.0 : static_cast<double>(part) / static_cast<double>(all);
}

QString percent(double share, const QLocale &locale)
{
    const double value = share * 100.0;
    return QStringLiteral("%1 %").arg(locale.toString(value, 'f', value < 1.0 ? 1 : 0));
}

template <typename Wanted>
QVector<StationCounts> stationsWith(const QVector<StationCounts> &stations, Wanted wanted)
{
    QVector<StationCounts> found;
    std::copy_if(stations.begin(), stations.end(), std::back_inserter(found), wanted);
    return found;
}

bool isAsked(const StationCounts &station)
{
    return station.counts.requests > 0 || station.counts.notAsked > 0;
}

/// Nothing that it says came: silence alone, or it is not asked any more for that.
bool isDumb(const StationCounts &station)
{
    const host::RequestCounts &counts = station.counts;
    const bool isHeard = counts.good > 0 || failuresOf(counts) > counts.timeouts;
    return !isHeard && counts.timeouts + counts.notAsked >= leastFailures;
}

/// Bytes came, and none of them was a frame.
bool isGarbled(const StationCounts &station)
{
    const host::RequestCounts &counts = station.counts;
    const bool hasFrame = counts.good > 0 || exceptionsOf(counts) > 0 || counts.foreign > 0;
    return !hasFrame && counts.badCrc + counts.truncated >= leastFailures;
}

using Sentence = std::optional<LineVerdict>;

LineVerdict bad(const QString &text)
{
    return { text, true };
}

Sentence ofClosedLine(const LineFacts &facts, const QLocale &)
{
    if (facts.isOpen)
        return std::nullopt;
    return bad(LineVerdict::tr("The line is closed: %1").arg(facts.downReason));
}

Sentence ofNothing(const LineFacts &facts, const QLocale &)
{
    if (std::any_of(facts.stations.begin(), facts.stations.end(), isAsked))
        return std::nullopt;
    return LineVerdict { LineVerdict::tr("Nothing was asked yet"), false };
}

Sentence ofGarbledLine(const LineFacts &facts, const QLocale &)
{
    const auto asked = stationsWith(facts.stations, isAsked);
    const auto garbled = stationsWith(asked, isGarbled);
    if (garbled.size() != asked.size())
        return std::nullopt;
    return bad(LineVerdict::tr("Bytes come, but no whole frame: look at speed and parity"));
}

Sentence ofDumbStations(const LineFacts &facts, const QLocale &)
{
    const auto asked = stationsWith(facts.stations, isAsked);
    const auto dumb = stationsWith(asked, isDumb);
    if (dumb.isEmpty())
        return std::nullopt;
    if (dumb.size() < asked.size())
        return bad((dumb.size() == 1
                        ? LineVerdict::tr(
                            "%1 does not answer, others do: look at its supply, plug and address")
                        : LineVerdict::tr(
                            "%1 do not answer, others do: look at supply, plugs and addresses"))
                       .arg(namesOf(dumb)));
    if (asked.size() == 1)
        return bad(
            LineVerdict::tr(
                "%1 does not answer: look at its supply and address, at speed and parity, and "
                "whether A and B are swapped")
                .arg(nameOf(asked.constFirst())));
    return bad(LineVerdict::tr(
        "No station answers: look at the plug of the adapter, at speed and parity, and "
        "whether A and B are swapped"));
}

double worstOf(const QVector<StationCounts> &stations, const Cause &cause)
{
    double worst = 0.0;
    for (const StationCounts &station : stations)
        worst = std::max(worst, shareOf(cause.count(station.counts), station.counts.requests));
    return worst;
}

QString othersText(const QVector<StationCounts> &all, const QVector<StationCounts> &hit)
{
    for (const StationCounts &station : all) {
        const bool isHit = std::any_of(hit.begin(), hit.end(), [&](const StationCounts &other) {
            return other.station == station.station;
        });
        if (!isHit && failuresOf(station.counts) > 0)
            return LineVerdict::tr("others less");
    }
    return LineVerdict::tr("all others clean");
}

Sentence ofCause(const LineFacts &facts, const Cause &cause, const QLocale &locale)
{
    const auto asked = stationsWith(
        facts.stations, [](const StationCounts &station) { return station.counts.requests > 0; });
    const auto hit = stationsWith(asked, [&cause](const StationCounts &station) {
        const quint64 count = cause.count(station.counts);
        return count >= leastFailures && shareOf(count, station.counts.requests) >= leastShare;
    });
    if (hit.isEmpty())
        return std::nullopt;
    const QString share = percent(worstOf(hit, cause), locale);
    const QString name = LineVerdict::tr(cause.name);
    if (asked.size() == 1)
        return bad(LineVerdict::tr("%1: %2 %3: %4")
                       .arg(nameOf(hit.constFirst()), share, name, LineVerdict::tr(cause.atAll)));
    if (hit.size() == asked.size())
        return bad(LineVerdict::tr("All stations: up to %1 %2: %3")
                       .arg(share, name, LineVerdict::tr(cause.atAll)));
    if (hit.size() == 1)
        return bad(LineVerdict::tr("%1: %2 %3, %4: %5")
                       .arg(nameOf(hit.constFirst()), share, name, othersText(asked, hit),
                            LineVerdict::tr(cause.atOne)));
    return bad(LineVerdict::tr("%1: up to %2 %3, %4: look at the cable between them")
                   .arg(namesOf(hit), share, name, othersText(asked, hit)));
}

/// What happens most is told; where two happen as often, the one that stands first.
Sentence ofCauses(const LineFacts &facts, const QLocale &locale)
{
    const Cause *worst = nullptr;
    double share = 0.0;
    for (const Cause &cause : causes) {
        const double own = worstOf(facts.stations, cause);
        if (own > share && ofCause(facts, cause, locale)) {
            worst = &cause;
            share = own;
        }
    }
    return worst ? ofCause(facts, *worst, locale) : std::nullopt;
}

Sentence ofLateReplies(const LineFacts &facts, const QLocale &)
{
    const auto late = stationsWith(facts.stations, [](const StationCounts &station) {
        return station.counts.lateReplies >= leastFailures;
    });
    if (late.isEmpty())
        return std::nullopt;
    return bad((late.size() == 1 ? LineVerdict::tr("%1 answers late: set a longer response_timeout")
                                 : LineVerdict::tr("%1 answer late: set a longer response_timeout"))
                   .arg(namesOf(late)));
}

Sentence ofNoise(const LineFacts &facts, const QLocale &)
{
    quint64 junk = 0;
    for (const StationCounts &station : facts.stations)
        junk += station.counts.junkBytes;
    if (junk < leastFailures)
        return std::nullopt;
    return bad(LineVerdict::tr("%1 bytes of noise between the frames: look at the bias resistors")
                   .arg(junk));
}

Sentence ofCleanLine(const LineFacts &facts, const QLocale &locale)
{
    quint64 requests = 0;
    quint64 failures = 0;
    for (const StationCounts &station : facts.stations) {
        requests += station.counts.requests;
        failures += failuresOf(station.counts);
    }
    const QString count = locale.toString(requests);
    if (failures == 0)
        return LineVerdict {
            LineVerdict::tr("All is well: %1 requests without a failure").arg(count), false
        };
    return LineVerdict { LineVerdict::tr(
                             "All is well: %1 of %2 requests failed and were sent again")
                             .arg(locale.toString(failures), count),
                         false };
}

} // namespace

LineVerdict verdictOf(const LineFacts &facts, const QLocale &locale)
{
    constexpr Sentence (*rules[])(const LineFacts &, const QLocale &) = {
        ofClosedLine, ofNothing,     ofGarbledLine, ofDumbStations,
        ofCauses,     ofLateReplies, ofNoise,       ofCleanLine,
    };
    for (const auto rule : rules) {
        if (const Sentence sentence = rule(facts, locale))
            return *sentence;
    }
    return {};
}

} // namespace dx4::panel
