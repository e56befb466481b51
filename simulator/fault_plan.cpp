// SPDX-License-Identifier: MIT
// What goes wrong on the line, and when: rules as data, chosen by a seeded generator.
#include "simulator/fault_plan.h"

#include <algorithm>
#include <utility>

namespace dx4::sim {

namespace {

/// Registers that a request of function 3, 6 or 16 touches; none for any other bytes.
std::optional<RegisterRange> touchedRegisters(const Bytes &request)
{
    if (request.size() < 8)
        return std::nullopt;
    const unsigned function = request[1];
    if (function != 3 && function != 6 && function != 16)
        return std::nullopt;
    const unsigned first = wordAt(request, 2);
    // A request for no register at all names its first one all the same.
    const unsigned count = function == 6 ? 1U : std::max(unsigned { wordAt(request, 4) }, 1U);
    const unsigned last = std::min(first + count - 1, 0xFFFFU);
    return RegisterRange { static_cast<std::uint16_t>(first), static_cast<std::uint16_t>(last) };
}

bool touches(const RegisterRange &wanted, const Bytes &request)
{
    const std::optional<RegisterRange> touched = touchedRegisters(request);
    return touched && touched->first <= wanted.last && touched->last >= wanted.first;
}

bool applies(const FaultRule &rule, int number, const Bytes &request, Micros now)
{
    if (rule.times && rule.struck >= *rule.times)
        return false;
    if (rule.frame && *rule.frame != number)
        return false;
    if (rule.every && (*rule.every < 1 || number % *rule.every != 0))
        return false;
    if (rule.from && now < *rule.from)
        return false;
    if (rule.until && now >= *rule.until)
        return false;
    if (rule.station && (request.empty() || request[0] != *rule.station))
        return false;
    return !rule.registers || touches(*rule.registers, request);
}

} // namespace

// The distributions of the standard library differ between implementations; the engine does not.
std::uint32_t Dice::below(std::uint32_t sides)
{
    return sides == 0 ? 0U : static_cast<std::uint32_t>(m_engine() % sides);
}

bool Dice::chance(double probability)
{
    constexpr double range = 9007199254740992.0; // 2^53, what a double holds exactly
    return static_cast<double>(m_engine() >> 11) / range < probability;
}

FaultPlan::FaultPlan(std::vector<FaultRule> rules, std::uint64_t seed)
    : m_rules(std::move(rules))
    , m_dice(seed)
{
}

std::vector<FaultRule> FaultPlan::strike(int number, const Bytes &request, Micros now)
{
    std::vector<FaultRule> striking;
    for (FaultRule &rule : m_rules) {
        if (!applies(rule, number, request, now))
            continue;
        if (rule.probability && !m_dice.chance(*rule.probability))
            continue;
        ++rule.struck;
        striking.push_back(rule);
    }
    return striking;
}

} // namespace dx4::sim
