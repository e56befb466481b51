// SPDX-License-Identifier: MIT
// Parameter sets read from a station and restored to one.
#include "host/parameters/parameter_transfer.h"

#include "host/base/length.h"

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
        case AccessResult::Kind::NotBegun:
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

/// Values that a set names, and of which the station told another one.
QVector<ParameterDifference> unequal(const ParameterSet &wanted, const ParameterSet &held)
{
    QVector<ParameterDifference> differences;
    for (const ParameterDifference &difference : compare(wanted, held)) {
        if (difference.first && difference.second)
            differences.append(difference);
    }
    return differences;
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
        look();
        m_report.compared = m_report.verified + lengthOf(m_report.remaining);
        const bool mayWrite = m_report.interrupted.isEmpty() && !m_report.remaining.isEmpty();
        if (mayWrite && writeDifferences())
            look();
        m_report.refused = m_refusals.values();
        m_report.unseen = lengthOf(m_wanted.values) - m_report.verified - lengthOf(m_refusals)
            - lengthOf(m_report.remaining);
        return m_report;
    }

private:
    /// Reads what is wanted, as far as that goes, and notes what the station holds.
    void look()
    {
        ParameterSet held;
        held.station = m_station;
        Reader reader(m_access, held, m_progress);
        m_report.interrupted = reader.read(addressesOf(m_wanted));
        for (auto it = reader.refusals().begin(); it != reader.refusals().end(); ++it)
            m_refusals.insert(it.key(), it.value());
        m_report.remaining = unequal(m_wanted, held);
        m_report.verified = lengthOf(held.values) - lengthOf(m_report.remaining);
        forgetRefusalsOf(held);
    }

    /// A register that was refused as it was written counts as refused, and as verified where
    /// another write brought about what it was to hold.
    void forgetRefusalsOf(const ParameterSet &held)
    {
        for (auto it = held.values.begin(); it != held.values.end(); ++it) {
            if (m_wanted.values.value(it.key()) == it.value())
                m_refusals.remove(it.key());
        }
        const auto isRefused = [this](const ParameterDifference &difference) {
            return m_refusals.contains(difference.address);
        };
        m_report.remaining.erase(
            std::remove_if(m_report.remaining.begin(), m_report.remaining.end(), isRefused),
            m_report.remaining.end());
    }

    /// Writes what differs. When that breaks off, what the write under way did is not known, and
    /// only what comes behind it still differs for sure.
    ///
    /// @return whether it came to its end
    bool writeDifferences()
    {
        const QVector<ParameterDifference> differences = m_report.remaining;
        for (int i = 0; i < lengthOf(differences); ++i) {
            const ParameterDifference &next = differences.at(i);
            const AccessResult result =
                m_access.write(m_station, QStringLiteral("F"), next.address, *next.first);
            if (result.kind == AccessResult::Kind::Done)
                ++m_report.written;
            else if (result.kind == AccessResult::Kind::Refused)
                m_refusals.insert(next.address, result.reason);
            else
                return breakOff(result, differences.mid(i));
        }
        return true;
    }

    /// @param left  what was not written, first the register of this result
    bool breakOff(const AccessResult &result, const QVector<ParameterDifference> &left)
    {
        const bool maybeWritten = result.kind != AccessResult::Kind::NotBegun;
        m_report.interrupted = result.reason;
        m_report.remaining = maybeWritten ? left.mid(1) : left;
        if (maybeWritten || m_report.written > 0)
            m_report.verified = 0;
        return false;
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
