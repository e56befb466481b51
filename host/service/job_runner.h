// SPDX-License-Identifier: MIT
// Reads, backups and restores, one after the other.
#pragma once

#include "host/service/inbox.h"
#include "host/service/job_access.h"
#include "host/service/service_events.h"

#include <deque>
#include <functional>
#include <variant>

namespace dx4::host {

using Job = std::variant<ReadOnce, BackUp, Restore>;

/// Carries jobs out on the line's thread. A read goes between two accesses of a backup or restore
/// that is under way.
class JobRunner {
public:
    using Tell = std::function<void(ServiceEvent)>;

    /// @param runtime, inbox  outlive this
    /// @param turn            one step of the line with all that belongs to it
    JobRunner(Runtime &runtime, Inbox &inbox, JobAccess::Turn turn, Tell tell);

    void add(Job job) { m_waiting.push_back(std::move(job)); }
    bool isEmpty() const { return m_waiting.empty(); }

    /// Carries the earliest job out.
    void runNext();

    /// Has the job under way end soon, and ends those that wait.
    void endAll(const QString &reason);

    /// @param outcome  gets the id of the job, and what the station held before
    /// @return whether the write was of a job
    bool takeOutcome(WriteOutcome &outcome);

private:
    class Polite;

    void carryOut(const Job &job);
    void run(const ReadOnce &job);
    void run(const BackUp &job);
    void run(const Restore &job);
    void runReads();
    QString refusalOf(const ReadOnce &job) const;
    QString whyItEnds() const;

    Runtime &m_runtime;
    Inbox &m_inbox;
    Tell m_tell;
    JobAccess m_access;
    std::deque<Job> m_waiting;
    int m_current = 0; ///< job under way; 0: none
    QString m_endReason; ///< of the jobs under way; empty: they go on
};

int idOf(const Job &job);

/// How a job ended that was not begun.
ServiceEvent notBegun(const Job &job, const QString &reason);

} // namespace dx4::host
