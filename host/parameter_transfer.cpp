// SPDX-License-Identifier: MIT
// Parameter sets read from a station and restored to one.
#include "host/parameter_transfer.h"

#include "host/length.h"

#include <QMap>

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

/// Why the station refused, by internal address.
using Refusals = QMap<int, QString>;

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

    const Refusals &refusals() const { return m_refusals; }

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
            return run.count > 1 ? readOneByOne(run) : refused(run.address, result.reason);
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

    QString refused(int address, const QString &reason)
    {
        m_refusals.insert(address, reason);
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
    Refusals m_refusals;
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

/// Values that a set names, that the station does not hold, and that it did not refuse.
QVector<ParameterDifference> unequal(const ParameterSet &wanted, const ParameterSet &held,
                                     const Refusals &refusals)
{
    QVector<ParameterDifference> differences = compare(wanted, held);
    const auto isElsewhere = [&refusals](const ParameterDifference &difference) {
        return !difference.first.has_value() || refusals.contains(difference.address);
    };
    differences.erase(std::remove_if(differences.begin(), differences.end(), isElsewhere),
                      differences.end());
    return differences;
}

/// Writes what differs; gives why it broke off, empty when it did not.
QString writeDifferences(RegisterAccess &access, int station,
                         const QVector<ParameterDifference> &differences, int &written,
                         Refusals &refusals)
{
    for (const ParameterDifference &difference : differences) {
        const AccessResult result =
            access.write(station, QStringLiteral("F"), difference.address, *difference.first);
        switch (result.kind) {
        case AccessResult::Kind::Done:
            ++written;
            break;
        case AccessResult::Kind::Refused:
            refusals.insert(difference.address, result.reason);
            break;
        case AccessResult::Kind::NoAnswer:
        case AccessResult::Kind::LineDown:
            return result.reason;
        }
    }
    return {};
}

/// One restore on its way: compare, write, verify.
class Restore {
public:
    Restore(RegisterAccess &access, int station, const ParameterSet &wanted,
            const TransferProgress &progress)
        : m_access(access)
        , m_station(station)
        , m_wanted(wanted)
        , m_progress(progress)
    {
    }

    RestoreReport run()
    {
        const ParameterSet held = read();
        m_report.compared = lengthOf(held.values);
        if (!m_report.interrupted.isEmpty())
            return m_report;
        m_report.remaining = unequal(m_wanted, held, m_refusals);
        if (!m_report.remaining.isEmpty())
            writeAndVerify();
        m_report.refused = m_refusals.values();
        return m_report;
    }

private:
    ParameterSet read()
    {
        ParameterSet held;
        held.station = m_station;
        Reader reader(m_access, held, m_progress);
        m_report.interrupted = reader.read(addressesOf(m_wanted));
        for (auto it = reader.refusals().begin(); it != reader.refusals().end(); ++it)
            m_refusals.insert(it.key(), it.value());
        return held;
    }

    void writeAndVerify()
    {
        m_report.interrupted =
            writeDifferences(m_access, m_station, m_report.remaining, m_report.written, m_refusals);
        if (!m_report.interrupted.isEmpty())
            return;
        const ParameterSet verified = read();
        // Another write may have brought about what the station refused to take.
        for (auto it = verified.values.begin(); it != verified.values.end(); ++it) {
            if (m_wanted.values.value(it.key()) == it.value())
                m_refusals.remove(it.key());
        }
        m_report.remaining = unequal(m_wanted, verified, m_refusals);
    }

    RegisterAccess &m_access;
    const int m_station;
    const ParameterSet &m_wanted;
    const TransferProgress &m_progress;
    RestoreReport m_report;
    Refusals m_refusals;
};

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
    return Restore(access, station, wanted, progress).run();
}

} // namespace dx4::host
