// SPDX-License-Identifier: MIT
// From the registers that a user wants to the blocks that are read for them.
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
    QList<KEY_ADDRESS> blocks; ///< for Link::poll(); by station, type and address
    int wantedRegisters = 0;
};

/// Makes plans that read every wanted register from its own station, once, and no other.
///
/// Registers without a gap between them share a block, up to its size, within one station, type and
/// parameter group.
class Planner {
public:
    /// @param plugin    whose checks decide what is an address; nothing else of it is used, so it
    ///                  may be one that a link uses on the same thread; not null:
    ///                  std::invalid_argument is thrown for one that could not be loaded
    /// @param settings  of the link that will poll; its block size counts
    Planner(std::unique_ptr<Plugin> plugin, const LinkSettings &settings);

    /// Makes a plan, or says which entry is wrong, why, and what would be right.
    ///
    /// @param error  out: the first reason; may be null
    std::optional<Plan> make(const QVector<PlanEntry> &entries, QString *error);

private:
    struct Register;
    std::optional<QVector<Register>> registersOf(const PlanEntry &entry, QString *error) const;

    std::unique_ptr<Plugin> m_plugin;
    int m_blockSize;
};

/// Time of one rotation through the plan's blocks when every station answers at once.
///
/// @param turnaround  of a station, end of request to start of reply
Duration cycleTime(const Plan &plan, const LineSettings &line, Duration turnaround);

/// One line per block with its station, both forms of the address, count and wire time.
QStringList describe(const Plan &plan, const LineSettings &line);

/// Says which blocks no station could answer; one text each. No Planner makes them, and the guard
/// keeps them from the line.
QStringList unreadable(const QList<KEY_ADDRESS> &blocks);

} // namespace dx4::host
