// SPDX-License-Identifier: MIT
// The kinds of faults, and which keys a rule of each has.
#include "simulator/fault_kind.h"

#include <array>

namespace dx4::sim {

namespace {

struct Row {
    FaultKind kind;
    const char *name;
    unsigned keys; ///< of FaultKey
};

/// In the order of the enumeration.
constexpr std::array<Row, 14> rows = { {
    { FaultKind::DropRequest, "drop-request", 0 },
    { FaultKind::DropReply, "drop-reply", 0 },
    { FaultKind::Delay, "delay", DurationKey },
    { FaultKind::FlipBits, "flip-bits", SideKey | CountKey },
    { FaultKind::BreakCrc, "break-crc", SideKey },
    { FaultKind::Truncate, "truncate", SideKey | CountKey },
    { FaultKind::Junk, "junk", SideKey | PlaceKey | CountKey },
    { FaultKind::WrongStation, "wrong-station", SideKey | ValueKey },
    { FaultKind::WrongFunction, "wrong-function", SideKey | ValueKey },
    { FaultKind::Exception, "exception", ValueKey },
    { FaultKind::Echo, "echo", 0 },
    { FaultKind::Silence, "silence", DurationKey },
    { FaultKind::Unplug, "unplug", DurationKey },
    { FaultKind::PowerCycle, "power-cycle", DurationKey },
} };

constexpr bool isInOrder()
{
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (rows[i].kind != static_cast<FaultKind>(i))
            return false;
    }
    return true;
}
static_assert(isInOrder(), "a kind is its row's number");

const Row &rowOf(FaultKind kind)
{
    return rows[static_cast<std::size_t>(kind)];
}

} // namespace

bool hasKey(FaultKind kind, FaultKey key)
{
    return (rowOf(kind).keys & key) != 0;
}

const char *faultKindName(FaultKind kind)
{
    return rowOf(kind).name;
}

std::optional<FaultKind> faultKindByName(const std::string &name)
{
    for (const Row &row : rows) {
        if (name == row.name)
            return row.kind;
    }
    return std::nullopt;
}

const std::vector<FaultKind> &allFaultKinds()
{
    static const std::vector<FaultKind> kinds = [] {
        std::vector<FaultKind> all;
        all.reserve(std::size(rows));
        for (const Row &row : rows)
            all.push_back(row.kind);
        return all;
    }();
    return kinds;
}

} // namespace dx4::sim
