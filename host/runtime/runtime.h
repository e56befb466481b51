// SPDX-License-Identifier: MIT
// One line with everything a host must do for it: the object that tools and panels stand on.
#pragma once

#include "host/exchange/breaker.h"
#include "host/exchange/counters.h"
#include "host/plan/plan.h"
#include "host/writes/safe_stop.h"
#include "host/writes/write_desk.h"

#include <functional>
#include <memory>
#include <optional>

namespace dx4::host {

/// How one line is run.
struct RuntimeSettings {
    LinkSettings link;
    BreakerSettings breaker;
    QVector<StopCommand> stops; ///< sent by stop(); a station without one is left as it is
    QVector<int> stations; ///< that may be written to; empty: all
    Duration staleAfter = std::chrono::seconds(5); ///< age from which a value counts as old
    Duration userPatience { 0 }; ///< silence of the user that leads to a stop; 0: never
    /// Asked in each step, also of a stop under way: whether the user has been there since the last
    /// time, as noteUser() says it. Null: noteUser() alone does.
    std::function<bool()> isUserThere;
    std::function<void(Duration)> pause; ///< lets time pass; null: the thread sleeps
    /// Asked between requests and before one is sent; when it says so, a step that has sent nothing
    /// yet ends soon and sends nothing more: waits for replies that are owed and gaps before a
    /// request are cut short, that for the reply of a request on the line is not. What it says
    /// while stop() runs has no effect. Null: nobody is ever in a hurry.
    std::function<bool()> isHurried;
    /// The drives take a broadcast of "CW": where all stops have the same value it goes before
    /// them, to every drive on the line.
    bool stopBroadcast = false;
    /// For the stop that `userPatience` begins, and for the stops that are sent once more when the
    /// line is back.
    Duration stopBudget = std::chrono::seconds(2);
};

/// What is known of one register.
struct Value {
    quint16 value = 0; ///< the written one from write() to the end of the write
    bool known = false; ///< read, or written with confirmation, at least once; else `value` means
                        ///< nothing
    bool failed = false; ///< the last read of it was given up
    bool stale = false; ///< unknown, too old, its line or station is not there, or it was sent
                        ///< another value since which was not confirmed
    bool writePending = false; ///< a write of it has not ended
    Duration age { 0 }; ///< since the reply that brought or confirmed it; 0 when unknown
};

/// How a stop ended.
struct StopReport {
    QVector<int> unconfirmed; ///< stations that may still run; empty: all is well
    QString text; ///< one line for the user
};

/// Runs one line: plan, link, guarded exchange, breaker, writes, safe stop and counters.
///
/// All calls come from one thread, one Runtime per thread and line. Lines in one process need
/// private copies of the driver.
///
/// Handlers run inside step(), run() and stop(), none inside write(). They may write and read. The
/// first exception that a handler throws in a call is thrown by that call once it has done all that
/// it does without one: requests are settled and counted, outcomes reported, stops followed, the
/// other handlers called. run() ends with the step, stop() has stopped the drives before.
class Runtime {
public:
    using Step = Cycle::Step;
    using AlarmHandler = std::function<void(const QString &)>;

    /// @param plugin    a private copy where the process has another line; not null:
    ///                  std::invalid_argument is thrown for one that could not be loaded
    /// @param line      outlives the runtime; opened by step() when it is closed
    Runtime(std::unique_ptr<Plugin> plugin, Line &line, const RuntimeSettings &settings);

    /// Tells nobody of the writes that wait: whoever listens may be gone already. stop() ends them
    /// before.
    ~Runtime();

    /// Replaces the cyclic reads, at once or when the request on the line has ended. Values stay.
    void setPlan(const Plan &plan);

    /// One exchange. A closed line is opened first, with pauses that grow to 2 s. Stations that are
    /// left alone are passed over; where the probe of one is due it goes before the exchange.
    ///
    /// @return Idle: there is nothing to ask for now; LineDown: the line is closed. In both cases
    ///         call again after idleTime()
    Step step();

    /// Steps until `enough` says so, and pauses where there is nothing to do. `enough` is asked
    /// before each step.
    void run(const std::function<bool()> &enough);

    /// Why the line could not be opened the last time; empty while it is open.
    QString lineError() const { return m_lineError; }

    /// How long the next step would find nothing to do after Idle or LineDown; at most 100 ms, so
    /// that a write is not kept waiting.
    Duration idleTime() const;

    /// State of one register.
    Value value(int station, const QString &regType, int address) const;

    /// Takes a write; writes to one station take effect in the order of these calls. The outcome is
    /// reported once, and not before the call returns: by a step or by stop().
    ///
    /// @return its id
    int write(const WriteWish &wish) { return m_desk.submit(wish); }

    /// Ends every write that waits, for a host that goes away: as refused, or as timed out where it
    /// was sent. The outcomes are reported before it returns.
    void dropWrites(const QString &reason);

    /// Writes whose outcome was not reported.
    int pendingWrites() const { return m_desk.pending(); }

    void onOutcome(WriteDesk::OutcomeHandler handler) { m_desk.onOutcome(std::move(handler)); }
    void onChange(Link::ChangeHandler handler) { m_link.onChange(std::move(handler)); }

    /// Called with what must not go unheard: a stop that was not confirmed, or was at last.
    void onAlarm(AlarmHandler handler) { m_alarm = std::move(handler); }

    /// Called with what a user had better know of the line: a station that needs a longer timeout,
    /// or registers of a plan that cannot be polled, see unreadable().
    void onNotice(AlarmHandler handler) { m_notice = std::move(handler); }

    /// Drops all waiting writes, sends the configured stops and waits for their echoes, no longer
    /// than `budget` or than one request to each station takes. Every station has its stop after
    /// that; with a budget of 0 none is waited for. Nothing else is sent meanwhile, and every write
    /// is refused.
    ///
    /// What is unconfirmed is reported by an alarm and repeated by the steps that follow. Until it
    /// is confirmed or given up, a station takes no write but its stop. Where no stops are
    /// configured the writes are dropped, and the report says so.
    StopReport stop(Duration budget);

    /// The user is there and gives up the stops that are not confirmed; an alarm names their
    /// stations. A stop that waits in the driver may still go out once.
    ///
    /// @return those stations; they may still run
    QVector<int> cancelStop();

    /// Replaces RuntimeSettings::stops, as a reloaded configuration may have other stations. A
    /// station whose stop is not confirmed yet keeps its command.
    void setStops(const QVector<StopCommand> &stops) { m_stop.setCommands(stops); }

    /// Replaces RuntimeSettings::stations. Writes that were taken before are sent; a stop that is
    /// not confirmed yet is, wherever its station stands.
    void setStations(const QVector<int> &stations) { m_settings.stations = stations; }

    /// Replaces RuntimeSettings::stopBroadcast and RuntimeSettings::stopBudget.
    void setStopBroadcast(bool isWanted) { m_stop.setBroadcast(isWanted); }
    void setStopBudget(Duration budget) { m_settings.stopBudget = budget; }

    /// The user is there. With a patience set, a user who is silent for longer stops the drives;
    /// no write is taken then until the last stop is confirmed, or the user is back.
    void noteUser();

    const CounterSet &counters() const { return m_cycle.counters(); }
    /// A copy of them, with the time in which they were counted.
    LineCounters lineCounters() const { return { counters(), m_line.now() - m_start }; }
    QJsonObject countersJson() const { return lineCounters().toJson(); }
    bool isLeftAlone(int station) const { return m_breaker.isLeftAlone(station); }

    /// Of the last step that used the line, for traces and messages.
    const Cycle &cycle() const { return m_cycle; }
    const ExchangeReport &report() const { return m_guard.report(); }
    GuardedExchange &guard() { return m_guard; }
    Link &link() { return m_link; }

private:
    class StopCall;

    bool isHurried() const;
    Refusal gate(const WriteWish &wish) const;
    bool mayBeWritten(int station) const;
    bool isStop(const WriteWish &wish) const;
    Step takeStep();
    StopReport stopDrives(Duration budget);
    Refusal stopGate(const WriteWish &wish, bool isStop) const;
    bool ensureOpen();
    void applyPlan();
    Step cycleStep();
    void settle(Step step);
    void settleAsked(Step step);
    void noteKnowledge(Step step);
    void lineWentDown();
    void listen();
    void showLife();
    void lookAfterSilent();
    void probe(int station);
    Purpose purposeOf(const FRAME_PRO &request) const;
    StopOutlook outlookOf(int station) const;
    void beginStop(Duration budget);
    bool goesOn(Duration end) const;
    Step stopStep();
    bool isUnproven() const;
    void settleStop(Step step);
    void watchUser();
    void alarm(const QString &text);
    void tellNotice();
    void notice(const QString &text);
    Line &m_line;
    RuntimeSettings m_settings;
    Link m_link;
    GuardedExchange m_guard;
    Breaker m_breaker;
    BreakerExchange m_exchange;
    Cycle m_cycle;
    WriteDesk m_desk;
    SafeStop m_stop;
    AlarmHandler m_alarm;
    AlarmHandler m_notice;
    std::optional<Plan> m_nextPlan;
    int m_blocks = 0;
    std::map<BlockKey, Duration> m_known; // when each block was last read, or written
    std::map<BlockKey, Duration> m_doubts; // when each block was last sent without confirmation
    Duration m_start;
    Duration m_lastUser;
    Duration m_openAt { 0 };
    Duration m_openDelay { 0 };
    QString m_lineError;
    bool m_wasOpen = false;
    int m_stopCalls = 0; // under way
    bool m_userGone = false;
};

} // namespace dx4::host
