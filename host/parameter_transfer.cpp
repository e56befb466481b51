// SPDX-License-Identifier: MIT
// Parameter sets read from a station and restored to one.
#include "host/parameter_transfer.h"

#include "host/length.h"

#include <algorithm>

namespace dx4::host {
namespace {

/// Consecutive registers of one group.
struct Run {
    int address;
    int count;
};

/// Runs of ascending addresses. Groups are far apart in internal addresses, so none spans two.
QVector<Run> runsOf(const QVector<int> &addresses, int longest)
{
    QVector<Run> runs;
    for (int address : addresses) {
        const bool continues = !runs.isEmpty() && runs.constLast().count < longest
            && runs.constLast().address + runs.constLast().count == address;
        if (continues)
            ++runs.last().count;
        else
            runs.append({ address, 1 });
    }
    return runs;
}

/// Reads runs into a set; splits those that are refused.
class Reader {
public:
    Reader(RegisterAccess &access, ParameterSet &set, const TransferProgress &progress)
        : m_access(access)
        , m_set(set)
        , m_progress(progress)
    {
    }

    /// @return why it broke off; empty when all was read or refused
    QString read(const QVector<int> &addresses)
    {
        m_total = lengthOf(addresses);
        for (const Run &run : runsOf(addresses, std::max(m_access.blockSize(), 1))) {
            QString broken = readRun(run);
            if (!broken.isEmpty())
                return broken;
        }
        return {};
    }

private:
    QString readRun(const Run &run)
    {
        const AccessResult result =
            m_access.read(m_set.station, QStringLiteral("F"), run.address, run.count);
        switch (result.kind) {
        case AccessResult::Kind::Done:
            for (int i = 0; i < run.count; ++i)
                m_set.values.insert(run.address + i, result.values.value(i));
            settled(run.count);
            return {};
        case AccessResult::Kind::Refused:
            return run.count > 1 ? readOneByOne(run) : refused(run.address);
        case AccessResult::Kind::NoAnswer:
        case AccessResult::Kind::LineDown:
            return result.reason;
        }
        return result.reason;
    }

    QString readOneByOne(const Run &run)
    {
        QString broken;
        for (int i = 0; i < run.count && broken.isEmpty(); ++i)
            broken = readRun({ run.address + i, 1 });
        return broken;
    }

    QString refused(int address)
    {
        m_set.refused.append(address);
        std::sort(m_set.refused.begin(), m_set.refused.end());
        settled(1);
        return {};
    }

    void settled(int count)
    {
        m_done += count;
        if (m_progress)
            m_progress(m_done, m_total);
    }

    RegisterAccess &m_access;
    ParameterSet &m_set;
    const TransferProgress &m_progress;
    int m_done = 0;
    int m_total = 0;
};

QVector<int> addressesOf(const ParameterSet &set)
{
    QVector<int> addresses;
    for (auto it = set.values.begin(); it != set.values.end(); ++it)
        addresses.append(it.key());
    return addresses;
}

/// Values of a station that a set names and that are not the set's.
QVector<ParameterDifference> unequal(const ParameterSet &wanted, const ParameterSet &held)
{
    QVector<ParameterDifference> differences = compare(wanted, held);
    const auto notWanted = [](const ParameterDifference &difference) {
        return !difference.first.has_value();
    };
    differences.erase(std::remove_if(differences.begin(), differences.end(), notWanted),
                      differences.end());
    return differences;
}

/// Writes what differs; false when it broke off.
bool writeDifferences(RegisterAccess &access, int station,
                      const QVector<ParameterDifference> &differences, RestoreReport &report)
{
    for (const ParameterDifference &difference : differences) {
        // What the station does not have cannot be written; it stays among the remaining.
        if (!difference.second)
            continue;
        const AccessResult result =
            access.write(station, QStringLiteral("F"), difference.address, *difference.first);
        switch (result.kind) {
        case AccessResult::Kind::Done:
            ++report.written;
            break;
        case AccessResult::Kind::Refused:
            report.refused.append(result.reason);
            break;
        case AccessResult::Kind::NoAnswer:
        case AccessResult::Kind::LineDown:
            report.interrupted = result.reason;
            return false;
        }
    }
    return true;
}

} // namespace

bool readParameters(RegisterAccess &access, ParameterSet &set, QString *error,
                    const TransferProgress &progress)
{
    QVector<int> missing;
    for (int address : allParameters()) {
        if (!set.values.contains(address) && !set.refused.contains(address))
            missing.append(address);
    }
    const QString broken = Reader(access, set, progress).read(missing);
    if (error && !broken.isEmpty())
        *error = broken;
    return broken.isEmpty();
}

RestoreReport restoreParameters(RegisterAccess &access, int station, const ParameterSet &wanted,
                                const TransferProgress &progress)
{
    RestoreReport report;
    const QVector<int> addresses = addressesOf(wanted);
    ParameterSet held;
    held.station = station;
    report.interrupted = Reader(access, held, progress).read(addresses);
    report.compared = lengthOf(held.values);
    if (!report.interrupted.isEmpty())
        return report;

    report.remaining = unequal(wanted, held);
    if (report.remaining.isEmpty())
        return report;
    if (!writeDifferences(access, station, report.remaining, report))
        return report;

    ParameterSet verified;
    verified.station = station;
    report.interrupted = Reader(access, verified, progress).read(addresses);
    report.remaining = unequal(wanted, verified);
    return report;
}

} // namespace dx4::host
