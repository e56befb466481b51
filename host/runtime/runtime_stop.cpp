// SPDX-License-Identifier: MIT
// The parts of a runtime that stop the drives and look after stations that do not answer.
#include "host/runtime/runtime.h"

#include "host/writes/stop_words.h"
#include "register_tables.h"
#include "result_codes.h"
#include "wire/function_code.h"

#include <QStringList>

#include <algorithm>

namespace dx4::host {
namespace {

constexpr int functionByte = 1;

QString noStopsText()
{
    return QStringLiteral("no stops are configured, nothing was stopped");
}

QString stationList(const QVector<int> &stations)
{
    QStringList names;
    for (int station : stations)
        names.append(QString::number(station));
    return names.join(QStringLiteral(", "));
}

/// The value of a "CW" that a request writes.
std::optional<quint16> commandOf(const FRAME_PRO &request)
{
    const bool isCommand = request.var.regType == REG_LIST[TypeCw]
        && request.frame[functionByte] == WriteSingleRegister;
    if (!isCommand)
        return std::nullopt;
    return static_cast<quint16>(request.var.data[0] + 256 * request.var.data[1]);
}

} // namespace

/// Every write is refused while one is under way, whatever a handler does meanwhile.
class Runtime::StopCall {
public:
    explicit StopCall(int &calls)
        : m_calls(calls)
    {
        ++m_calls;
    }
    ~StopCall() { --m_calls; }
    StopCall(const StopCall &) = delete;
    StopCall &operator=(const StopCall &) = delete;

private:
    int &m_calls;
};

Purpose Runtime::purposeOf(const FRAME_PRO &request) const
{
    if (m_link.api().state->phase == PhaseCyclicRead)
        return Purpose::Polled;
    if (request.var.varKind == safeStopTag)
        return Purpose::Bounded;
    const std::optional<quint16> command = commandOf(request);
    const bool isStop = command && m_stop.isStop(request.var.station, { *command });
    return isStop ? Purpose::Urgent : Purpose::Asked;
}

StopOutlook Runtime::outlookOf(int station) const
{
    StopOutlook outlook;
    outlook.isLeftAlone = m_breaker.isLeftAlone(station);
    outlook.lastAnswer = m_breaker.lastAnswer(station);
    outlook.living = m_exchange.livingTimeout(station);
    outlook.timeout = m_guard.timeoutOf(station);
    outlook.repeat = outlook.isLeftAlone ? m_exchange.probeTimeout(station)
        : m_breaker.isInDoubt(station)   ? m_exchange.doubtTimeout(station)
                                         : outlook.timeout;
    outlook.request = m_guard.gapBefore(station) + m_line.settings().wireTime(stopFrameBytes);
    return outlook;
}

/// Probes go ahead of the exchange that is due, so that a long rotation does not delay them. The
/// probe of a station that is to be stopped is its stop.
void Runtime::lookAfterSilent()
{
    const Duration now = m_line.now();
    const std::optional<int> probed = m_breaker.dueProbe(now);
    const std::optional<int> stopped =
        probed && m_stop.isPending(*probed) ? probed : m_stop.due(now);
    if (stopped)
        m_stop.repeat(*stopped);
    else if (probed)
        probe(*probed);
}

void Runtime::probe(int station)
{
    const Reply reply = m_exchange.probe(station);
    if (wasAsked(reply))
        m_cycle.noteProbe(station, m_guard.report(), reply.turnaround);
    showLife();
}

/// Tells the stop of every station that was just heard, late or in time.
void Runtime::showLife()
{
    for (int station : std::as_const(m_guard.report().heardStations))
        m_stop.noteSignOfLife(station);
}

/// A late reply shows that a station lives; what it said is old.
void Runtime::listen()
{
    m_exchange.listen();
    showLife();
}

Refusal Runtime::stopGate(const WriteWish &wish, bool isStop) const
{
    const bool nothingPasses = m_stopCalls > 0 || m_stop.isUrgent(m_line.now());
    const bool isHeld = m_stop.isPending(wish.station) || (m_userGone && m_stop.isPending());
    return nothingPasses || (isHeld && !isStop) ? Refusal::Stopping : Refusal::None;
}

void Runtime::beginStop(Duration budget)
{
    // First of all, so that nothing gets in which is submitted as others are dropped.
    const StopCall call(m_stopCalls);
    m_stop.begin(m_line.now(), budget);
    for (const StopCommand &command : m_stop.commands())
        m_breaker.noteAsked(command.station);
    // A closed line is tried at once: its pauses may be as long as the budget.
    m_openAt = m_line.now();
    m_openDelay = Duration { 0 };
    m_link.failWrites();
    m_desk.abandon(WriteEnd::Refused, Refusal::Stopping, QStringLiteral("a stop goes first"));
    m_desk.deliver();
}

StopReport Runtime::stop(Duration budget)
{
    StopReport report;
    m_link.handlerErrors().during([&] {
        report = stopDrives(budget);
        m_desk.deliver();
    });
    return report;
}

StopReport Runtime::stopDrives(Duration budget)
{
    const StopCall call(m_stopCalls);
    const Duration end = m_line.now() + budget;
    beginStop(budget);
    if (!m_stop.isConfigured())
        return { {}, noStopsText() };
    while (goesOn(end)) {
        const Step done = step();
        if (done == Step::Idle || done == Step::LineDown)
            m_settings.pause(std::clamp(end - m_line.now(), Duration { 1 }, idleTime()));
    }
    StopReport report { m_stop.unconfirmed(), QLatin1String(allStopsConfirmed) };
    if (report.unconfirmed.isEmpty())
        return report;
    report.text = QStringLiteral("STOP NOT CONFIRMED by station %1: it may still run")
                      .arg(stationList(report.unconfirmed));
    alarm(report.text);
    return report;
}

/// Whether stop() has something to do before its end. A pass that has begun is completed: every
/// station gets its stop.
bool Runtime::goesOn(Duration end) const
{
    const bool isInPass = m_stop.isPassing() && m_line.isOpen();
    return m_stop.isPending() && (isInPass || m_line.now() < end);
}

Runtime::Step Runtime::stopStep()
{
    if (const std::optional<quint16> word = m_stop.takeBroadcast())
        m_guard.broadcast(*word, m_stop.broadcastAllowance(m_line.now()));
    if (!m_stop.prepareNext(m_line.now()))
        return Step::Idle;
    const Step step = m_cycle.step();
    if (step != Step::Idle)
        settle(step);
    return step;
}

/// Whether the try that was given up says nothing of the station: one copy of a stop may be its
/// echo or the adapter's.
bool Runtime::isUnproven() const
{
    return m_cycle.request().var.varKind == safeStopTag && m_stop.wasUrgent()
        && m_guard.report().echoStripped;
}

/// Follows what a request means for the stops that are pending.
void Runtime::settleStop(Step step)
{
    const FRAME_PRO &request = m_cycle.request();
    if (m_cycle.reply().kind == Reply::Kind::Withheld)
        m_stop.noteWithheld(request.var.station, m_line.now());
    if (!wasAsked(m_cycle.reply()))
        return;
    const std::optional<quint16> command = commandOf(request);
    const bool isStop = command && m_stop.isStop(request.var.station, { *command });
    // A stop without its echo may not have arrived; of any other command the worst is assumed.
    if (command && (!isStop || step == Step::Served))
        m_stop.noteCommand(request.var.station, *command);
    const bool wasPending = m_stop.isPending();
    m_stop.afterStep(m_cycle, step, m_guard.report(), m_line.now());
    showLife();
    if (wasPending && !m_stop.isPending())
        alarm(QLatin1String(allStopsConfirmed));
}

QVector<int> Runtime::cancelStop()
{
    noteUser();
    if (!m_stop.isPending())
        return {};
    const QVector<int> stations = m_stop.unconfirmed();
    m_stop.cancel();
    m_link.handlerErrors().during([&] {
        alarm(QStringLiteral("the stop is given up, NOT CONFIRMED by station %1: it may still run")
                  .arg(stationList(stations)));
    });
    return stations;
}

void Runtime::noteUser()
{
    m_lastUser = m_line.now();
    m_userGone = false;
}

void Runtime::watchUser()
{
    if (m_settings.isUserThere && m_settings.isUserThere())
        noteUser();
    const bool isLate = m_settings.userPatience > Duration { 0 }
        && m_line.now() - m_lastUser > m_settings.userPatience;
    if (!isLate || m_userGone)
        return;
    m_userGone = true;
    alarm(QStringLiteral("the user interface is silent: %1")
              .arg(m_stop.isConfigured() ? QStringLiteral("stopping") : noStopsText()));
    if (m_stopCalls == 0)
        beginStop(m_settings.stopBudget);
}

} // namespace dx4::host
