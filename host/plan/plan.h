// SPDX-License-Identifier: MIT
// From the registers that a user wants to the addresses that may safely be handed to the driver.
#pragma once

#include "host/line/line_settings.h"
#include "host/link/link.h"

#include <QStringList>
#include <QVector>

#include <memory>
#include <optional>

namespace dx4::host {

/// One wish, in the drive's notation: "F c.13", "F 8.0-8.3", "D 0-9", "SW", "FU".
struct PlanEntry {
    int station = 1; ///< 1 to 247
    QString text;
};

/// What is polled, checked against what the driver makes of it.
struct Plan {
    QList<KEY_ADDRESS> addresses; ///< for Link::poll
    QList<KEY_ADDRESS> blocks; ///< the reads that follow from them, in order
    int wantedRegisters = 0;
    int separators = 0; ///< registers read only to keep stations apart
};

/// Makes plans that read every wanted register from its own station.
///
/// The driver joins addresses without looking at stations, and an address inside a longer one
/// shortens its block. So the wishes are turned into runs that neither overlap nor touch, and
/// "SW" and "FU" of every station are read too where the blocks of two stations would be joined.
/// Each plan is tried out on a driver that polls nothing, before anybody relies on it.
class Planner {
public:
    /// @param scratch   a private copy of the driver; not null: std::invalid_argument is thrown for
    ///                  one that could not be loaded
    /// @param settings  of the link that will poll; its block size counts
    Planner(std::unique_ptr<Plugin> scratch, const LinkSettings &settings);

    /// Makes a plan, or says which entry is wrong, why, and what would be right.
    ///
    /// @param error  out: the first reason; may be null
    std::optional<Plan> make(const QVector<PlanEntry> &entries, QString *error);

private:
    struct Register;
    std::optional<QVector<Register>> registersOf(const PlanEntry &entry, QString *error) const;
    std::optional<Plan> tryOut(const QVector<Register> &wanted, bool withSeparators,
                               QString *error);

    Link m_scratch;
};

/// Time of one rotation through the plan's blocks when every station answers at once.
///
/// @param turnaround  of a station, end of request to start of reply
Duration cycleTime(const Plan &plan, const LineSettings &line, Duration turnaround);

/// One line per block with its station, both forms of the address, count and wire time.
QStringList describe(const Plan &plan, const LineSettings &line);

/// Says which blocks of the driver no station could answer; one text each.
///
/// Addresses that no Planner made may lead to such blocks: the driver joins what is next to each
/// other in its order, also registers of two stations, and the sum may be no register at all. The
/// guard keeps these blocks from the line.
QStringList unreadable(const QList<KEY_ADDRESS> &blocks);

} // namespace dx4::host
