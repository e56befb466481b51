// SPDX-License-Identifier: MIT
// From the registers that a user wants to the blocks that are read for them.
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

/// One register of one station, ordered as it will be read.
struct Planner::Register {
    int station;
    int type; ///< its row in REG_LIST
    int address;

    auto fields() const { return std::tie(station, type, address); }
    bool operator<(const Register &other) const { return fields() < other.fields(); }
    bool operator==(const Register &other) const { return fields() == other.fields(); }
};

namespace {

constexpr int requestBytes = 8;
constexpr int replyFrameBytes = 5; // of a read reply, besides its registers

void tell(QString *error, const QString &what)
{
    if (error)
        *error = what;
}

/// Runs without gap of sorted registers, each within one station, type and group, cut to length.
template <typename Registers> QList<KEY_ADDRESS> runsOf(const Registers &registers, int longest)
{
    QList<KEY_ADDRESS> runs;
    for (const auto &next : registers) {
        const bool continues = !runs.isEmpty() && runs.constLast().station == next.station
            && runs.constLast().regType == REG_LIST[next.type] && runs.constLast().count < longest
            && runs.constLast().address + runs.constLast().count == next.address;
        if (continues)
            ++runs.last().count;
        else
            runs.append(wanted(next.station, REG_LIST[next.type], next.address));
    }
    return runs;
}

} // namespace

Planner::Planner(std::unique_ptr<Plugin> plugin, const LinkSettings &settings)
    : m_plugin(notNull(std::move(plugin)))
    , m_blockSize(settings.blockSize)
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
    const int code = m_plugin->api().checkAddr(range->regType, range->firstText, &first, 0,
                                               range->count, ReadAccess);
    if (code != AddressAccepted) {
        tell(error, addressVerdictText(code, range->regType, first + range->count - 1));
        return std::nullopt;
    }
    const auto *const name = std::find(std::begin(REG_LIST), std::end(REG_LIST), range->regType);
    const auto type = static_cast<int>(name - std::begin(REG_LIST));
    QVector<Register> registers;
    for (int i = 0; i < range->count; ++i)
        registers.append({ entry.station, type, first + i });
    return registers;
}

std::optional<Plan> Planner::make(const QVector<PlanEntry> &entries, QString *error)
{
    if (m_blockSize < 1 || m_blockSize > largestBlock) {
        tell(error, QStringLiteral("block size %1; it can be 1 to 123").arg(m_blockSize));
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
    std::sort(registers.begin(), registers.end());
    registers.erase(std::unique(registers.begin(), registers.end()), registers.end());
    return Plan { runsOf(registers, m_blockSize), static_cast<int>(registers.size()) };
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
                QStringLiteral("station %1, %2: not polled, as it is a block of %3 registers; a "
                               "request asks for 1 to 123")
                    .arg(block.station)
                    .arg(fullAddress(block.regType, block.address))
                    .arg(block.count));
    }
    return texts;
}

} // namespace dx4::host
