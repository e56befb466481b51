// SPDX-License-Identifier: MIT
// What runs on the line's thread.
#include "host/service/line_worker.h"

#include "host/base/length.h"
#include "host/link/notation.h"
#include "host/runtime/config_reload.h"
#include "host/runtime/config_runtime.h"
#include "wire/limits.h"

#include <algorithm>
#include <exception>
#include <iterator>
#include <utility>

namespace dx4::host {
namespace {

/// Values age while nothing happens to them: each is looked at that often.
constexpr Duration lookInterval = std::chrono::milliseconds(100);

/// For a thread without a line, which has only commands to wait for.
constexpr Duration longWait = std::chrono::hours(1);

QString stoppedText()
{
    return QStringLiteral("a stop goes first");
}

QString endedText()
{
    return QStringLiteral("the service ended");
}

QString textOf(const std::exception_ptr &thrown)
{
    try {
        std::rethrow_exception(thrown);
    } catch (const std::exception &error) {
        return QString::fromUtf8(error.what());
    } catch (...) {
        return QStringLiteral("unknown exception");
    }
}

} // namespace

LineWorker::LineWorker(LineFactory factory, ServiceSettings settings, Waits &waits, Inbox &inbox,
                       Outbox &outbox)
    : m_factory(std::move(factory))
    , m_settings(std::move(settings))
    , m_waits(waits)
    , m_inbox(inbox)
    , m_outbox(outbox)
    , m_downReason(QStringLiteral("not opened yet"))
{
}

void LineWorker::run()
{
    std::exception_ptr failure; // dealt with behind the handler, in which nothing may wait
    try {
        make();
        serve();
        return end();
    } catch (...) {
        failure = std::current_exception();
    }
    giveUp(textOf(failure));
    serve();
    end();
}

/// Until the service ends.
void LineWorker::serve()
{
    while (m_runtime && !m_inbox.isClosed()) {
        if (m_jobs->isEmpty())
            turn();
        else
            m_jobs->runNext();
    }
    while (!m_runtime && !m_inbox.isClosed()) {
        takeCommands();
        publish();
        m_inbox.wait(longWait);
    }
}

void LineWorker::make()
{
    LineParts parts;
    try {
        parts = m_factory();
    } catch (const std::exception &error) {
        parts.error = QString::fromUtf8(error.what());
    }
    m_line = std::move(parts.line);
    if (!m_line || !parts.plugin) {
        const QString unknown = QStringLiteral("line or driver could not be made");
        m_downReason = parts.error.isEmpty() ? unknown : parts.error;
        return tell(LineWentDown { m_downReason });
    }
    m_line->setWaits(m_waits);
    m_runtime = std::make_unique<Runtime>(std::move(parts.plugin), *m_line, ownSettings());
    m_jobs = std::make_unique<JobRunner>(
        *m_runtime, m_inbox, [this] { return turn(); },
        [this](ServiceEvent event) { tell(std::move(event)); });
    listen();
    execute(TakePlan { m_settings.plan });
    if (m_settings.config) {
        m_table.setLabels(*m_settings.config, m_runtime->link());
        setExtraGaps(m_runtime->guard(), *m_settings.config);
    }
}

RuntimeSettings LineWorker::ownSettings()
{
    RuntimeSettings settings = m_settings.runtime;
    settings.pause = [this](Duration span) { pause(span); };
    settings.isHurried = [this] { return m_inbox.isHurried(); };
    settings.isUserThere = [this] { return m_inbox.takeUser(); };
    return settings;
}

void LineWorker::listen()
{
    m_runtime->onOutcome([this](const WriteOutcome &outcome) { noteOutcome(outcome); });
    m_runtime->onAlarm([this](const QString &text) { tell(AlarmRaised { text }); });
    m_runtime->onNotice([this](const QString &text) { tell(NoticeGiven { text }); });
    m_runtime->onChange([this](const ValueChange &change) { m_table.touch(change.station); });
}

/// One step of the line with all that belongs to it.
Runtime::Step LineWorker::turn()
{
    takeCommands();
    const Runtime::Step done = m_runtime->step();
    m_table.touch(m_runtime->cycle().request().var.station);
    publish();
    if (done == Runtime::Step::LineDown || done == Runtime::Step::Idle)
        pause(m_runtime->idleTime());
    m_waits.giveWay();
    return done;
}

/// Also of a stop under way, which is the only time when it may be given up.
void LineWorker::pause(Duration span)
{
    if (isStopping())
        publish();
    if (m_settings.runtime.pause)
        m_settings.runtime.pause(span);
    else
        m_inbox.wait(span);
    if (isStopping() && m_inbox.takeCancellation(&m_stops))
        m_runtime->cancelStop();
}

/// Nobody knows in which state line and driver are. What is open ends as the worst it may be.
void LineWorker::giveUp(const QString &reason)
{
    m_downReason = QStringLiteral("the line failed and is not tried again: %1").arg(reason);
    m_isOpen = false;
    m_lost.clear();
    for (const auto &[key, write] : std::exchange(m_writes, {}))
        tell(WriteOutcome { write.id,
                            WriteEnd::TimedOut,
                            Refusal::None,
                            0,
                            true,
                            QStringLiteral("station %1: not confirmed: %2")
                                .arg(write.wish.station)
                                .arg(m_downReason),
                            write.wish,
                            {} });
    if (m_jobs)
        m_jobs->endAll(m_downReason);
    letGo();
    tell(AlarmRaised { m_downReason });
    tell(LineWentDown { m_downReason });
    for (int id : std::exchange(m_stops, {}))
        refuse(StopDrives { id, {} });
}

/// What was asked for before the end is carried out, or refused: stops are sent.
void LineWorker::end()
{
    takeCommands();
    if (m_runtime) {
        m_runtime->dropWrites(endedText());
        m_jobs->endAll(endedText());
    }
    letGo();
    m_outbox.post(std::exchange(m_events, {}));
}

/// The driver ends and the port is free, whoever still holds the service.
void LineWorker::letGo()
{
    m_jobs.reset();
    m_runtime.reset();
    m_line.reset();
}

void LineWorker::takeCommands()
{
    while (const std::optional<Command> command = m_inbox.take()) {
        std::visit([this](const auto &any) { m_runtime ? execute(any) : refuse(any); }, *command);
    }
}

void LineWorker::execute(const SubmitWrite &command)
{
    const WriteWish &wish = command.wish;
    m_writes[m_runtime->write(wish)] = { command.id, wish };
    show(wish.station, wish.regType, wish.address, lengthOf(wish.values), WriteAccess);
}

void LineWorker::execute(const TakePlan &command)
{
    m_runtime->setPlan(command.plan);
    m_table.setPlan(command.plan);
}

void LineWorker::execute(const TakeConfig &command)
{
    takeOver(*m_runtime, command.config, command.plan);
    m_settings.runtime.stops = runtimeSettings(command.config).stops; // to name the stations
    m_table.setPlan(command.plan);
    m_table.setLabels(command.config, m_runtime->link());
    Config running;
    running.line = m_line->settings();
    running.link = m_settings.runtime.link;
    tell(Reloaded { restartKeys(running, command.config) });
}

/// Stops that are asked for meanwhile are the same stop, unless drives are left that another try
/// may reach.
void LineWorker::execute(const StopDrives &command)
{
    m_jobs->endAll(stoppedText());
    m_stops = { command.id };
    const Duration budget = std::max(command.budget, m_inbox.takeStops(&m_stops));
    m_outbox.post(std::exchange(m_events, {}));
    const StopReport report = m_runtime->stop(budget);
    if (report.unconfirmed.isEmpty())
        m_inbox.takeStops(&m_stops);
    m_inbox.endStops(m_stops.size());
    for (int id : std::exchange(m_stops, {}))
        tell(StopEnded { id, report });
    m_table.touchAll();
}

void LineWorker::execute(const CancelStop &)
{
    m_runtime->cancelStop();
}

void LineWorker::execute(const ReadOnce &command)
{
    show(command.station, command.regType, command.address, command.count, ReadAccess);
    m_jobs->add(command);
}

void LineWorker::execute(const TakeCounters &command)
{
    tell(CountersTaken { command.id, m_runtime->lineCounters() });
}

void LineWorker::refuse(const SubmitWrite &command)
{
    tell(refusedWrite(command, Refusal::NotConnected, m_downReason));
}

void LineWorker::refuse(const StopDrives &command)
{
    StopReport report;
    for (const StopCommand &stop : std::as_const(m_settings.runtime.stops))
        report.unconfirmed.append(stop.station);
    report.text =
        QStringLiteral("NOTHING WAS STOPPED, the drives may still run: %1").arg(m_downReason);
    m_inbox.endStops(1);
    tell(AlarmRaised { report.text });
    tell(StopEnded { command.id, report });
}

void LineWorker::refuseJob(const Job &job)
{
    tell(notBegun(job, m_downReason));
    m_inbox.forgetJob(idOf(job));
}

/// Registers that are written or read are shown from then on, if there are such.
void LineWorker::show(int station, const QString &regType, int address, int count, int access)
{
    const Link &link = m_runtime->link();
    int found = -1;
    const bool isThere = station > 0 && station <= lastStation && count > 0
        && link.api().checkAddr(regType, addressText(regType, address), &found, 0, count, access)
            == AddressAccepted
        && found == address;
    if (isThere)
        m_table.add(station, regType, address, count);
}

void LineWorker::noteOutcome(WriteOutcome outcome)
{
    if (m_jobs->takeOutcome(outcome))
        return tell(JobWrote { outcome });
    const auto write = m_writes.find(outcome.id);
    if (write == m_writes.end())
        return; // of a job that was left
    outcome.id = write->second.id;
    m_table.touch(write->second.wish.station);
    m_writes.erase(write);
    tell(outcome);
}

/// Events come out with the snapshot of their step, but for those of a stop: it may take as long as
/// its budget.
void LineWorker::tell(ServiceEvent event)
{
    m_events.push_back(std::move(event));
    if (isStopping())
        m_outbox.post(std::exchange(m_events, {}));
}

void LineWorker::publish()
{
    auto snapshot = std::make_shared<LineSnapshot>();
    QVector<RegisterValue> changes;
    if (m_runtime) {
        noteLine();
        noteStations();
        const Duration now = m_line->now();
        if (now - m_lastLook >= lookInterval) {
            m_table.touchAll();
            m_lastLook = now;
        }
        changes = m_table.refresh(*m_runtime, now);
        snapshot->registers = m_table.all(now);
    }
    snapshot->isOpen = m_isOpen;
    snapshot->downReason = m_downReason;
    for (int station : std::as_const(m_lost))
        snapshot->lostStations.append(station);
    snapshot->takenAt = QDateTime::currentDateTimeUtc();
    m_outbox.post(std::move(snapshot), changes, std::exchange(m_events, {}));
}

void LineWorker::noteLine()
{
    const bool wasOpen = std::exchange(m_isOpen, m_line->isOpen());
    if (m_isOpen) {
        m_downReason.clear();
    } else {
        const QString broke = QStringLiteral("the line broke");
        const QString reason = m_runtime->lineError().isEmpty() ? broke : m_runtime->lineError();
        if (std::exchange(m_downReason, reason) != reason)
            tell(LineWentDown { reason });
    }
    if (wasOpen != m_isOpen)
        m_table.touchAll();
    if (m_isOpen && !wasOpen)
        tell(LineOpened {});
}

void LineWorker::noteStations()
{
    const std::set<int> &stations = m_table.stations();
    for (auto lost = m_lost.begin(); lost != m_lost.end();)
        lost = stations.count(*lost) > 0 ? std::next(lost) : m_lost.erase(lost);
    for (int station : stations) {
        const bool wasLost = m_lost.count(station) > 0;
        const bool isLost = m_runtime->isLeftAlone(station);
        if (isLost == wasLost)
            continue;
        m_table.touch(station);
        if (isLost) {
            m_lost.insert(station);
            tell(StationLost { station });
        } else {
            m_lost.erase(station);
            tell(StationBack { station });
        }
    }
}

WriteOutcome refusedWrite(const SubmitWrite &write, Refusal refusal, const QString &reason)
{
    const WriteWish &wish = write.wish;
    return { write.id,
             WriteEnd::Refused,
             refusal,
             0,
             false,
             QStringLiteral("station %1, %2: %3")
                 .arg(wish.station)
                 .arg(fullAddress(wish.regType, wish.address), reason),
             wish,
             {} };
}

} // namespace dx4::host
