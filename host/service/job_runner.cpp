// SPDX-License-Identifier: MIT
// Reads, backups and restores, one after the other.
#include "host/service/job_runner.h"

#include "host/base/length.h"
#include "host/link/address_verdict.h"
#include "host/link/notation.h"
#include "wire/limits.h"

#include <algorithm>
#include <utility>

namespace dx4::host {
namespace {

bool isRead(const Job &job)
{
    return std::holds_alternative<ReadOnce>(job);
}

QString stationRefusal(int station)
{
    const bool isThere = station >= 1 && station <= lastStation;
    return isThere ? QString()
                   : QStringLiteral("no station %1; stations are 1 to 247").arg(station);
}

} // namespace

int idOf(const Job &job)
{
    return std::visit([](const auto &any) { return any.id; }, job);
}

/// Lets reads that wait go before each access of a longer job.
class JobRunner::Polite : public RegisterAccess {
public:
    explicit Polite(JobRunner &runner)
        : m_runner(runner)
    {
    }

    int blockSize() const override { return m_runner.m_access.blockSize(); }

    AccessResult read(int station, const QString &regType, int address, int count) override
    {
        m_runner.runReads();
        return m_runner.m_access.read(station, regType, address, count);
    }

    AccessResult write(int station, const QString &regType, int address, quint16 value) override
    {
        m_runner.runReads();
        return m_runner.m_access.write(station, regType, address, value);
    }

private:
    JobRunner &m_runner;
};

JobRunner::JobRunner(Runtime &runtime, Inbox &inbox, JobAccess::Turn turn, Tell tell)
    : m_runtime(runtime)
    , m_inbox(inbox)
    , m_tell(std::move(tell))
    , m_access(
          runtime, std::move(turn), [this] { return whyItEnds(); },
          [&inbox] { return inbox.isClosed(); })
{
}

QString JobRunner::whyItEnds() const
{
    if (m_inbox.isClosed())
        return QStringLiteral("the service ends");
    if (!m_endReason.isEmpty())
        return m_endReason;
    return m_inbox.isCancelled(m_current) ? QStringLiteral("cancelled") : QString();
}

void JobRunner::runNext()
{
    const Job job = std::move(m_waiting.front());
    m_waiting.pop_front();
    m_endReason.clear();
    carryOut(job);
}

void JobRunner::carryOut(const Job &job)
{
    const int outer = std::exchange(m_current, idOf(job));
    try {
        std::visit([this](const auto &any) { run(any); }, job);
    } catch (...) {
        m_tell(notBegun(job, QStringLiteral("the line failed")));
        m_inbox.forgetJob(m_current);
        throw;
    }
    m_inbox.forgetJob(m_current);
    m_current = outer;
}

bool JobRunner::takeOutcome(WriteOutcome &outcome)
{
    if (!m_access.takeOutcome(outcome))
        return false;
    outcome.id = m_current;
    return true;
}

void JobRunner::endAll(const QString &reason)
{
    m_endReason = reason;
    for (const Job &job : std::exchange(m_waiting, {})) {
        m_tell(notBegun(job, reason));
        m_inbox.forgetJob(idOf(job));
    }
}

/// Those that are asked for once this job is to end are jobs of their own.
void JobRunner::runReads()
{
    while (whyItEnds().isEmpty()) {
        const auto read = std::find_if(m_waiting.begin(), m_waiting.end(), isRead);
        if (read == m_waiting.end())
            return;
        const Job job = std::move(*read);
        m_waiting.erase(read);
        carryOut(job);
    }
}

/// What the driver would never ask for would wait in it for ever.
QString JobRunner::refusalOf(const ReadOnce &job) const
{
    QString noStation = stationRefusal(job.station);
    if (!noStation.isEmpty())
        return noStation;
    if (job.count < 1 || job.count > m_access.blockSize())
        return QStringLiteral("%1 registers; one read takes 1 to %2")
            .arg(job.count)
            .arg(m_access.blockSize());
    int address = -1;
    const int code = m_runtime.link().api().checkAddr(
        job.regType, addressText(job.regType, job.address), &address, 0, job.count, ReadAccess);
    if (code != AddressAccepted)
        return addressVerdictText(code, job.regType, job.address + job.count - 1);
    return address == job.address ? QString() : QStringLiteral("no such address");
}

void JobRunner::run(const ReadOnce &job)
{
    const QString refusal = refusalOf(job);
    if (!refusal.isEmpty())
        m_tell(ReadEnded { job.id, { AccessResult::Kind::Refused, refusal, {} } });
    else
        m_tell(
            ReadEnded { job.id, m_access.read(job.station, job.regType, job.address, job.count) });
}

void JobRunner::run(const BackUp &job)
{
    const QString noStation = stationRefusal(job.set.station);
    if (!noStation.isEmpty())
        return m_tell(notBegun(job, noStation));
    Polite access(*this);
    BackupEnded end { job.id, job.set, {} };
    readParameters(access, end.set, &end.error, [&](int done, int total) {
        m_tell(JobProgressed { job.id, done, total });
    });
    m_tell(end);
}

void JobRunner::run(const Restore &job)
{
    const QString noStation = stationRefusal(job.station);
    if (!noStation.isEmpty())
        return m_tell(notBegun(job, noStation));
    Polite access(*this);
    RestoreEnded end { job.id, {} };
    end.report = restoreParameters(access, job.station, job.set, [&](int done, int total) {
        m_tell(JobProgressed { job.id, done, total });
    });
    m_tell(end);
}

ServiceEvent notBegun(const Job &job, const QString &reason)
{
    if (const auto *read = std::get_if<ReadOnce>(&job))
        return ReadEnded { read->id, { AccessResult::Kind::NotBegun, reason, {} } };
    if (const auto *backup = std::get_if<BackUp>(&job))
        return BackupEnded { backup->id, backup->set, reason };
    const auto &restore = std::get<Restore>(job);
    RestoreEnded end { restore.id, {} };
    end.report.unseen = lengthOf(restore.set.values);
    end.report.interrupted = reason;
    return end;
}

} // namespace dx4::host
