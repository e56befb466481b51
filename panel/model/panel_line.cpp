// SPDX-License-Identifier: MIT
// One line as the pages see it: what is shown of each drive, and what was asked of it.
#include "panel/model/panel_line.h"

#include <algorithm>
#include <utility>

namespace dx4::panel {
namespace {

host::WriteWish wishOf(int station, const char *regType, quint16 value)
{
    host::WriteWish wish;
    wish.station = station;
    wish.regType = QString::fromLatin1(regType);
    wish.values = { value };
    return wish;
}

/// How frequencies of a drive are written: as it reports them.
const host::RegisterValue *frequencyPattern(const DriveValues &values)
{
    return values.set ? values.set : values.actual;
}

constexpr int mostNames = 4; // in a sentence

} // namespace

LinePort portOf(host::LineService &service)
{
    return { [&service] { return service.snapshot(); },
             [&service](const host::WriteWish &wish) { return service.submit(wish); },
             [&service](host::Duration budget) { return service.stop(budget); } };
}

DriveWords wordsOf(const host::Config &config, const host::ControlConfig &control)
{
    DriveWords words;
    words.run = control.run;
    words.reverse = control.reverse;
    words.stop = config.stop.controlWord.value_or(0);
    const int bit = config.states.key(QStringLiteral("running"), -1);
    if (bit >= 0)
        words.runningBit = bit;
    return words;
}

PanelLine::PanelLine(LinePort port, const host::Config &config, const DriveWords &words,
                     Clock clock, QObject *parent)
    : QObject(parent)
    , m_port(std::move(port))
    , m_config(config)
    , m_words(words)
    , m_clock(std::move(clock))
    , m_snapshot(std::make_shared<host::LineSnapshot>())
{
    for (const host::StationConfig &station : m_config.stations)
        m_followed[station.address] = {};
}

void PanelLine::takeConfig(const host::Config &config)
{
    const host::ControlConfig control { m_words.run, m_words.reverse, {} };
    m_config = config;
    m_words = wordsOf(config, control);
}

void PanelLine::follow(const host::LineService &service)
{
    using host::LineService;
    connect(&service, &LineService::writeEnded, this, &PanelLine::noteWriteEnded);
    connect(&service, &LineService::stopEnded, this, &PanelLine::noteStopEnded);
    connect(&service, &LineService::alarmRaised, this, &PanelLine::noteAlarm);
    connect(&service, &LineService::valuesChanged, this, &PanelLine::look);
}

void PanelLine::look()
{
    const host::Duration now = m_clock.steady();
    const auto newest = m_port.snapshot();
    if (newest && newest != m_snapshot) {
        m_snapshot = newest;
        m_seenAt = now;
    }
    for (auto &[station, followed] : m_followed) {
        noteValues(station, followed);
        followed.way.look(now);
    }
}

/// The larger of both: a window that hung sees a snapshot late, and the time of day may be set
/// back.
host::Duration PanelLine::sinceSnapshot() const
{
    const host::Duration seen = m_clock.steady() - m_seenAt;
    if (!m_snapshot->takenAt.isValid())
        return seen;
    const host::Duration taken =
        std::chrono::milliseconds(m_snapshot->takenAt.msecsTo(m_clock.utc()));
    return std::max(seen, taken);
}

/// Null where it is old, or nothing was read.
const host::RegisterValue *PanelLine::certainStatus(int station) const
{
    const auto *status = m_snapshot->find(station, QStringLiteral("SW"), 0);
    const bool isCertain = status && status->state.known && !status->state.stale
        && ageOf(*status, sinceSnapshot()) < oldFrom;
    return isCertain ? status : nullptr;
}

void PanelLine::noteValues(int station, Followed &followed)
{
    const host::Duration now = m_clock.steady();
    const auto readAt = [&](const host::RegisterValue &value) {
        return now - ageOf(value, sinceSnapshot());
    };
    const auto &expected = followed.way.expected();
    const auto *told =
        expected ? m_snapshot->find(station, expected->regType, expected->address) : nullptr;
    if (told && told->state.known && !told->state.stale)
        followed.way.noteValue(told->state.value, readAt(*told));

    const auto *status = certainStatus(station);
    if (!m_words.runningBit || !status)
        return;
    // After a start the drive is believed to stand only by what was read once the start had ended.
    const bool isRunning = ((status->state.value >> *m_words.runningBit) & 1) != 0;
    const bool saysMore =
        followed.way.stage() != CommandWay::Stage::Queued && readAt(*status) > followed.startedAt;
    if (isRunning || saysMore)
        noteRunning(followed, isRunning);
}

void PanelLine::noteRunning(Followed &followed, bool isRunning)
{
    followed.mayRun = isRunning;
    followed.isStopOpen = followed.isStopOpen && isRunning;
}

QString PanelLine::nameOf(const host::StationConfig &station) const
{
    return station.name.isEmpty() ? tr("Station %1").arg(station.address) : station.name;
}

QString PanelLine::namesOf(const QVector<int> &stations) const
{
    QStringList names;
    for (const host::StationConfig &station : m_config.stations) {
        if (stations.contains(station.address))
            names.append(nameOf(station));
    }
    if (names.size() <= mostNames)
        return names.join(QStringLiteral(", "));
    const QStringList first = names.mid(0, mostNames - 1);
    return tr("%1 and %2 more")
        .arg(first.join(QStringLiteral(", ")))
        .arg(names.size() - first.size());
}

DriveShown PanelLine::drive(int index) const
{
    const host::StationConfig &station = m_config.stations.at(index);
    const Followed &followed = m_followed.at(station.address);
    const DriveValues values = valuesOf(*m_snapshot, station.address);
    const host::Duration since = sinceSnapshot();
    const QLocale locale;
    DriveShown shown;
    shown.station = station.address;
    shown.name = nameOf(station);
    shown.frequency = showQuantity(values.actual, since, locale);
    shown.set = showQuantity(values.set, since, locale);
    shown.state = showStates(values.status, since, m_config.states);
    shown.fault = showFault(values.fault, since, m_config.faults);
    shown.isFaulty = shown.fault.trust != Shown::Trust::Gone && values.fault->state.value != 0;
    shown.mayRun = followed.mayRun;
    shown.canReverse = m_words.reverse.has_value();
    shown.canTakeFrequency = frequencyPattern(values) != nullptr;
    for (const host::RegisterValue *value : values.others)
        shown.others.append({ value->name, showQuantity(value, since, locale) });
    shown.way =
        followed.isStopOpen ? tr("Stop not confirmed, may still run!") : followed.way.text();
    shown.isWayBad = followed.isStopOpen || followed.way.isBad();
    return shown;
}

QVector<int> PanelLine::mayRun() const
{
    QVector<int> stations;
    for (const auto &[station, followed] : m_followed) {
        if (followed.mayRun)
            stations.append(station);
    }
    return stations;
}

bool PanelLine::stands(int station) const
{
    const auto followed = m_followed.find(station);
    const auto *status = certainStatus(station);
    if (followed == m_followed.end() || followed->second.mayRun || !m_words.runningBit || !status)
        return false;
    return ((status->state.value >> *m_words.runningBit) & 1) == 0;
}

std::optional<Expectation> PanelLine::runningIs(bool isRunning) const
{
    if (!m_words.runningBit)
        return std::nullopt;
    const auto mask = static_cast<quint16>(1U << *m_words.runningBit);
    return Expectation { QStringLiteral("SW"), 0, mask, isRunning ? mask : quint16 { 0 } };
}

void PanelLine::send(int index, const host::WriteWish &wish, const QString &what,
                     const std::optional<Expectation> &expected)
{
    m_followed[stationOf(index)].way.begin(m_port.submit(wish), what, expected);
}

void PanelLine::start(int index)
{
    run(index, m_words.run, tr("Start"));
}

void PanelLine::reverse(int index)
{
    if (m_words.reverse)
        run(index, *m_words.reverse, tr("Reverse"));
}

void PanelLine::run(int index, quint16 word, const QString &what)
{
    // That all were stopped is not so any more.
    if (!m_isMessageBad)
        m_message.clear();
    Followed &followed = m_followed[stationOf(index)];
    send(index, wishOf(stationOf(index), "CW", word), what, runningIs(true));
    followed.mayRun = followed.mayRun || followed.way.isOpen();
    followed.startedAt = m_clock.steady();
}

void PanelLine::stop(int index)
{
    send(index, wishOf(stationOf(index), "CW", m_words.stop), tr("Stop"), runningIs(false));
}

void PanelLine::setFrequency(int index, double hertz)
{
    const DriveValues values = valuesOf(*m_snapshot, stationOf(index));
    const host::RegisterValue *pattern = frequencyPattern(values);
    const auto value = pattern ? pattern->scaling.registerValue(hertz) : std::nullopt;
    if (!value)
        return;
    std::optional<Expectation> expected;
    if (values.set)
        expected = Expectation { values.set->regType, values.set->address, 0xFFFF, *value };
    send(index, wishOf(stationOf(index), "FRE", *value), tr("Frequency"), expected);
}

double PanelLine::highestFrequency(int index) const
{
    const DriveValues values = valuesOf(*m_snapshot, stationOf(index));
    const host::RegisterValue *pattern = frequencyPattern(values);
    if (!pattern)
        return 0.0;
    return pattern->scaling.quantity(pattern->scaling.isSigned ? 0x7FFF : 0xFFFF);
}

void PanelLine::stopAll()
{
    m_stopId = m_port.stop(m_config.stop.confirmWithin);
    tell(m_stopId != 0 ? tr("Stop: on its way to all drives") : tr("Stop: the line is closed"),
         m_stopId == 0);
}

void PanelLine::noteWriteEnded(const host::WriteOutcome &outcome)
{
    const host::Duration now = m_clock.steady();
    Followed &followed = m_followed[outcome.wish.station];
    const bool wasOpen = followed.way.stage() == CommandWay::Stage::Queued;
    followed.way.noteEnded(outcome, now);
    if (wasOpen && followed.way.stage() != CommandWay::Stage::Queued)
        followed.startedAt = now;
    // An echoed stop of this drive settles the one that was not.
    const bool isStop = outcome.wish.regType == QLatin1String("CW")
        && outcome.wish.values == QVector<quint16> { m_words.stop };
    if (isStop && outcome.end == host::WriteEnd::Confirmed)
        followed.isStopOpen = false;
}

void PanelLine::noteStopEnded(int id, const host::StopReport &report)
{
    if (id != m_stopId)
        return;
    m_stopId = 0;
    const bool isBad = !report.unconfirmed.isEmpty();
    tell(isBad ? tr("Stop not confirmed: %1. May still run!").arg(namesOf(report.unconfirmed))
               : tr("Stop: confirmed by all drives"),
         isBad);
    for (auto &[station, followed] : m_followed) {
        followed.isStopOpen = report.unconfirmed.contains(station);
        // What was read before says nothing of a drive that did not answer its stop.
        if (followed.isStopOpen)
            followed.startedAt = m_clock.steady();
        // Without a status word the echo of the stop is all that will ever be known.
        if (!m_words.runningBit && !followed.isStopOpen)
            followed.mayRun = false;
    }
    Q_EMIT stopped(report.unconfirmed);
}

void PanelLine::noteAlarm(const QString &text)
{
    tell(text, true);
}

void PanelLine::tell(const QString &text, bool isBad)
{
    m_message = text;
    m_isMessageBad = isBad;
}

QString PanelLine::downReason() const
{
    return m_snapshot->isOpen ? QString() : m_snapshot->downReason;
}

QString PanelLine::message() const
{
    const QString reason = downReason();
    if (reason.isEmpty())
        return m_message;
    const QString down = tr("The line is down: %1").arg(reason);
    // What may still run comes first.
    return m_isMessageBad ? m_message + QLatin1Char('\n') + down : down;
}

} // namespace dx4::panel
