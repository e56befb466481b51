// SPDX-License-Identifier: MIT
// What runs on the line's thread.
#pragma once

#include "host/service/inbox.h"
#include "host/service/job_runner.h"
#include "host/service/line_factory.h"
#include "host/service/outbox.h"
#include "host/service/register_table.h"
#include "host/service/service_settings.h"

#include <map>
#include <memory>
#include <set>
#include <vector>

namespace dx4::host {

/// Makes line, driver and runtime, turns them, and ends with them: run() is the whole life of the
/// line. Takes from the inbox between two requests and tells the outbox after each.
///
/// Where the line, the driver or a pause throws, the line is down for good: all that is open ends,
/// and what is asked for later is refused.
class LineWorker {
public:
    /// @param waits          of the place where it runs
    /// @param inbox, outbox  outlive this, as waits do
    LineWorker(LineFactory factory, ServiceSettings settings, Waits &waits, Inbox &inbox,
               Outbox &outbox);

    void run();

private:
    struct OpenWrite {
        int id = 0; ///< as the user has it
        WriteWish wish;
    };

    void serve();
    void make();
    RuntimeSettings ownSettings();
    void listen();
    Runtime::Step turn();
    void pause(Duration span);
    bool isStopping() const { return !m_stops.empty(); }
    void giveUp(const QString &reason);
    void end();
    void letGo();

    void takeCommands();
    void execute(const SubmitWrite &command);
    void execute(const TakePlan &command);
    void execute(const TakeConfig &command);
    void execute(const StopDrives &command);
    void execute(const CancelStop &command);
    void execute(const ReadOnce &command);
    void execute(const BackUp &command) { m_jobs->add(command); }
    void execute(const Restore &command) { m_jobs->add(command); }
    void execute(const TakeCounters &command);

    void refuse(const SubmitWrite &command);
    void refuse(const TakePlan &) { }
    void refuse(const TakeConfig &) { }
    void refuse(const StopDrives &command);
    void refuse(const CancelStop &) { }
    void refuse(const ReadOnce &command) { refuseJob(command); }
    void refuse(const BackUp &command) { refuseJob(command); }
    void refuse(const Restore &command) { refuseJob(command); }
    void refuse(const TakeCounters &command) { tell(CountersTaken { command.id, {} }); }
    void refuseJob(const Job &job);

    void show(int station, const QString &regType, int address, int count, int access);
    void noteOutcome(WriteOutcome outcome);
    void tell(ServiceEvent event);
    void publish();
    void noteLine();
    void noteStations();

    LineFactory m_factory;
    ServiceSettings m_settings;
    Waits &m_waits;
    Inbox &m_inbox;
    Outbox &m_outbox;
    std::unique_ptr<Line> m_line;
    std::unique_ptr<Runtime> m_runtime; // null where the line could not be made
    std::unique_ptr<JobRunner> m_jobs;
    RegisterTable m_table;
    std::map<int, OpenWrite> m_writes; // by the runtime's id
    std::vector<ServiceEvent> m_events; // not told yet
    std::vector<int> m_stops; // ids of the stop under way; empty where there is none
    bool m_isOpen = false;
    QString m_downReason;
    std::set<int> m_lost; // stations
    Duration m_lastLook { 0 }; // at all registers
};

/// A write that is refused before it reaches the line.
WriteOutcome refusedWrite(const SubmitWrite &write, Refusal refusal, const QString &reason);

} // namespace dx4::host
