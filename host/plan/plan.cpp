// SPDX-License-Identifier: MIT
// From the registers that a user wants to the addresses that may safely be handed to the driver.
#include "host/plan/plan.h"

#include "host/link/address_range.h"
#include "host/link/address_verdict.h"
#include "host/link/notation.h"
#include "register_tables.h"
#include "wire/limits.h"

#include <algorithm>
#include <iterator>
#include <numeric>
#include <tuple>
#include <utility>

namespace dx4::host {

/// One register of one station, ordered as the driver will read it.
struct Planner::Register {
    int station;
    QString regType;
    int address;

    bool operator<(const Register &other) const
    {
        return std::tie(station, regType, address)
            < std::tie(other.station, other.regType, other.address);
    }
    bool operator==(const Register &other) const
    {
        return station == other.station && regType == other.regType && address == other.address;
    }
};

namespace {

constexpr int requestBytes = 8;
constexpr int replyFrameBytes = 5; // of a read reply, besides its registers

void tell(QString *error, const QString &what)
{
    if (error)
        *error = what;
}

template <typename Registers> void sortUnique(Registers &registers)
{
    std::sort(registers.begin(), registers.end());
    registers.erase(std::unique(registers.begin(), registers.end()), registers.end());
}

/// Runs without gap of sorted registers, each within one station, type and group, cut to length.
template <typename Registers> QList<KEY_ADDRESS> runsOf(const Registers &registers, int longest)
{
    QList<KEY_ADDRESS> runs;
    for (const auto &next : registers) {
        const bool continues = !runs.isEmpty() && runs.constLast().station == next.station
            && runs.constLast().regType == next.regType && runs.constLast().count < longest
            && runs.constLast().address + runs.constLast().count == next.address;
        if (continues)
            ++runs.last().count;
        else
            runs.append(wanted(next.station, next.regType, next.address));
    }
    return runs;
}

} // namespace

Planner::Planner(std::unique_ptr<Plugin> scratch, const LinkSettings &settings)
    : m_scratch(std::move(scratch), settings)
{
}

std::optional<QVector<Planner::Register>> Planner::registersOf(const PlanEntry &entry,
                                                               QString *error) const
{
    if (entry.station < 1 || entry.station > lastStation) {
        tell(error, QStringLiteral("no station %1; stations are 1 to 247").arg(entry.station));
        return std::nullopt;
    }
    const auto range = parseRange(entry.text, error);
    if (!range)
        return std::nullopt;
    int first = 0;
    const int code = m_scratch.api().checkAddr(range->regType, range->firstText, &first, 0,
                                               range->count, ReadAccess);
    if (code != AddressAccepted) {
        tell(error, addressVerdictText(code, range->regType, first + range->count - 1));
        return std::nullopt;
    }
    QVector<Register> registers;
    for (int i = 0; i < range->count; ++i)
        registers.append({ entry.station, range->regType, first + i });
    return registers;
}

std::optional<Plan> Planner::make(const QVector<PlanEntry> &entries, QString *error)
{
    const int blockSize = m_scratch.settings().blockSize;
    if (blockSize < 1 || blockSize > largestBlock) {
        tell(error, QStringLiteral("block size %1; it can be 1 to 123").arg(blockSize));
        return std::nullopt;
    }
    QVector<Register> registers;
    for (const PlanEntry &entry : entries) {
        QString reason;
        const auto asked = registersOf(entry, &reason);
        if (!asked) {
            tell(error,
                 QStringLiteral("station %1, \"%2\": %3")
                     .arg(entry.station)
                     .arg(entry.text, reason));
            return std::nullopt;
        }
        registers += *asked;
    }
    sortUnique(registers);
    auto plan = tryOut(registers, false, error);
    return plan ? plan : tryOut(registers, true, error);
}

std::optional<Plan> Planner::tryOut(const QVector<Register> &wantedRegisters, bool withSeparators,
                                    QString *error)
{
    QVector<Register> registers = wantedRegisters;
    for (int i = 0; withSeparators && i < wantedRegisters.size(); ++i) {
        registers.append({ wantedRegisters.at(i).station, REG_LIST[TypeSw], 0 });
        registers.append({ wantedRegisters.at(i).station, REG_LIST[TypeFu], 0 });
    }
    sortUnique(registers);

    Plan plan;
    plan.addresses = runsOf(registers, m_scratch.settings().blockSize);
    plan.blocks = m_scratch.poll(plan.addresses);
    plan.wantedRegisters = static_cast<int>(wantedRegisters.size());
    plan.separators = static_cast<int>(registers.size() - wantedRegisters.size());

    QVector<Register> covered;
    for (const KEY_ADDRESS &block : std::as_const(plan.blocks)) {
        if (block.count < 1 || block.count > m_scratch.settings().blockSize) {
            tell(error, QStringLiteral("the driver made a block of %1 registers").arg(block.count));
            return std::nullopt;
        }
        for (int i = 0; i < block.count; ++i)
            covered.append({ block.station, block.regType, block.address + i });
    }
    std::sort(covered.begin(), covered.end());
    if (covered == registers)
        return plan;
    tell(error, QStringLiteral("the driver's blocks do not cover what is wanted"));
    return std::nullopt;
}

Duration cycleTime(const Plan &plan, const LineSettings &line, Duration turnaround)
{
    return std::accumulate(plan.blocks.begin(), plan.blocks.end(), Duration { 0 },
                           [&](Duration sum, const KEY_ADDRESS &block) {
                               return sum + line.silentGap() + turnaround
                                   + line.wireTime(requestBytes + replyFrameBytes
                                                   + 2 * block.count);
                           });
}

QStringList describe(const Plan &plan, const LineSettings &line)
{
    QStringList lines;
    for (const KEY_ADDRESS &block : plan.blocks) {
        const Duration wire = line.wireTime(requestBytes + replyFrameBytes + 2 * block.count);
        const double milliseconds = static_cast<double>(wire.count()) / 1000.0;
        lines.append(QStringLiteral("station %1  %2  %3 registers  %4 ms")
                         .arg(block.station)
                         .arg(fullAddress(block.regType, block.address))
                         .arg(block.count)
                         .arg(QString::number(milliseconds, 'f', 1)));
    }
    return lines;
}

QStringList unreadable(const QList<KEY_ADDRESS> &blocks)
{
    QStringList texts;
    for (const KEY_ADDRESS &block : blocks) {
        if (block.count < 1 || block.count > largestBlock)
            texts.append(
                QStringLiteral("station %1, %2: not polled, as the driver joined it with what "
                               "follows to a block of %3 registers")
                    .arg(block.station)
                    .arg(fullAddress(block.regType, block.address))
                    .arg(block.count));
    }
    return texts;
}

} // namespace dx4::host
