// SPDX-License-Identifier: MIT
// What goes wrong on the line, and when: rules as data, chosen by a seeded generator.
#pragma once

#include "simulator/bytes.h"
#include "simulator/clock.h"
#include "simulator/fault_kind.h"

#include <cstdint>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace dx4::sim {

/// The frame that FlipBits, BreakCrc, Truncate, Junk, WrongStation and WrongFunction work on.
enum class Side { Request, Reply };

/// Where Junk stands in relation to the frame.
enum class JunkPlace { Before, Inside, After };

/// Modbus registers, both ends included.
struct RegisterRange {
    std::uint16_t first = 0;
    std::uint16_t last = 0xFFFF;
};

/// One rule. It strikes when every condition that is set holds; a rule without conditions strikes
/// at every request.
struct FaultRule {
    FaultKind kind = FaultKind::DropReply;

    std::optional<int> frame; ///< the n-th request of the line, from 1
    std::optional<int> every; ///< every n-th request: n, 2n, 3n and so on
    std::optional<double> probability; ///< 0 to 1; drawn only when all else holds
    std::optional<RegisterRange> registers; ///< the request touches one of these
    std::optional<int> station; ///< the request is for this station
    std::optional<Micros> from; ///< at this time or later
    std::optional<Micros> until; ///< before this time
    std::optional<int> times; ///< strikes at most so often

    Side side = Side::Reply;
    JunkPlace place = JunkPlace::Before;
    std::optional<int> count; ///< bits or bytes; FlipBits 1, Truncate drawn, Junk 3 when not set
    std::optional<int> value; ///< station, function or exception code; a usual one when not set
    Micros duration { 0 }; ///< 0 for a Silence, an Unplug or a PowerCycle lasts this exchange only

    int struck = 0; ///< how often it struck so far
};

/// A generator that gives the same numbers on every machine for the same seed.
class Dice {
public:
    explicit Dice(std::uint64_t seed)
        : m_engine(seed)
    {
    }

    /// 0 to `sides` - 1; 0 when there are no sides.
    std::uint32_t below(std::uint32_t sides);

    /// Whether a chance of `probability`, 0 to 1, came true.
    bool chance(double probability);

private:
    std::mt19937_64 m_engine;
};

/// The rules of a line with the state they need: how often each struck, and the dice.
class FaultPlan {
public:
    /// No rule: a good line.
    FaultPlan() = default;

    /// These rules, drawn with this seed.
    explicit FaultPlan(std::vector<FaultRule> rules, std::uint64_t seed = 1);

    /// Adds a rule behind the others.
    void add(const FaultRule &rule) { m_rules.push_back(rule); }

    /// Takes all rules away; a fault that still lasts is the cable's and goes on.
    void clear() { m_rules.clear(); }

    /// The rules in their order, with their counts.
    const std::vector<FaultRule> &rules() const { return m_rules; }

    /// The rules that strike at this request, in their order; counts and dice move on.
    ///
    /// @param number   the request's place on the line, from 1
    /// @param request  its bytes, as the master sent them
    /// @param now      when it was sent
    std::vector<FaultRule> strike(int number, const Bytes &request, Micros now);

    /// The dice, for what the rules leave open.
    Dice &dice() { return m_dice; }

private:
    std::vector<FaultRule> m_rules;
    Dice m_dice { 1 };
};

} // namespace dx4::sim
