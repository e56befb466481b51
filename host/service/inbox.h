// SPDX-License-Identifier: MIT
// What other threads want of the line's.
#pragma once

#include "host/config/config.h"
#include "host/parameters/parameter_set.h"
#include "host/runtime/runtime.h"
#include "host/service/doorbell.h"

#include <atomic>
#include <deque>
#include <mutex>
#include <optional>
#include <set>
#include <variant>
#include <vector>

namespace dx4::host {

struct SubmitWrite {
    int id = 0;
    WriteWish wish;
};
struct TakePlan {
    Plan plan;
};
struct TakeConfig {
    Config config;
    Plan plan;
};
struct StopDrives {
    int id = 0;
    Duration budget { 0 };
};
struct CancelStop { };
struct ReadOnce {
    int id = 0;
    int station = 0;
    QString regType;
    int address = 0;
    int count = 1;
};
struct BackUp {
    int id = 0;
    ParameterSet set; ///< what is known already, and of which station
};
struct Restore {
    int id = 0;
    int station = 0;
    ParameterSet set;
};

struct TakeCounters {
    int id = 0;
};

using Command = std::variant<SubmitWrite, TakePlan, TakeConfig, StopDrives, CancelStop, ReadOnce,
                             BackUp, Restore, TakeCounters>;

/// Commands in their order. Calls may come from any thread, those that take from the line's alone.
///
/// From the call of stop() to the end of that stop no write is put in.
class Inbox {
public:
    /// What became of a command.
    enum class Taken { Yes, Stopping, Closed };

    /// @param waits  of the line's thread; outlives this
    explicit Inbox(Waits &waits)
        : m_bell(waits)
    {
    }

    /// Gives the next id: 1 or more, never used twice.
    int nextId() { return ++m_lastId; }

    Taken put(Command command);

    void noteUser() { m_isUserThere = true; }

    /// The job is to end.
    void cancelJob(int id);

    /// Takes no more commands. Those that were put in can still be taken.
    void close();

    // The line's side.

    /// The earliest command.
    std::optional<Command> take();
    bool isEmpty() const;

    /// Takes cancellations out of the middle, and the stops in front of the last one, which it is
    /// for as well.
    ///
    /// @param stops  out: appended, the ids of those stops
    /// @return whether there was a cancellation
    bool takeCancellation(std::vector<int> *stops);

    /// Takes the stops out of the middle that no cancellation stands before.
    ///
    /// @param stops  out: appended, their ids
    /// @return the longest of their budgets
    Duration takeStops(std::vector<int> *stops);

    /// So many stops have ended.
    void endStops(std::size_t count);

    /// Whether a stop waits to be taken, or the inbox is closed.
    bool isHurried() const { return m_waitingStops > 0 || m_isClosed; }
    bool isClosed() const { return m_isClosed; }

    /// Whether the user was there since the last call.
    bool takeUser() { return m_isUserThere.exchange(false); }

    bool isCancelled(int job) const;
    void forgetJob(int job);

    /// Lets time pass until a command comes.
    void wait(Duration span) { m_bell.wait(span); }

private:
    mutable std::mutex m_mutex;
    Doorbell m_bell;
    std::deque<Command> m_commands;
    std::set<int> m_jobs; ///< that have not ended
    std::set<int> m_cancelled; ///< of them
    std::size_t m_openStops = 0; ///< asked for and not ended
    std::atomic<int> m_waitingStops { 0 };
    std::atomic<int> m_lastId { 0 };
    std::atomic<bool> m_isUserThere { false };
    std::atomic<bool> m_isClosed { false };
};

} // namespace dx4::host
