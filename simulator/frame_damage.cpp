// SPDX-License-Identifier: MIT
// What a fault does to the bytes of one frame.
#include "simulator/frame_damage.h"

#include <algorithm>
#include <set>

namespace dx4::sim {

namespace {

constexpr int usualBits = 1;
constexpr int usualJunk = 3;

std::uint32_t sizeOf(const Bytes &frame)
{
    return static_cast<std::uint32_t>(frame.size());
}

void flipBits(Bytes &frame, int count, Dice &dice)
{
    const std::uint32_t bits = sizeOf(frame) * 8;
    const std::size_t wanted = std::min<std::size_t>(static_cast<std::size_t>(count), bits);
    // Each bit once: two flips of the same bit would be none.
    std::set<std::uint32_t> chosen;
    while (chosen.size() < wanted)
        chosen.insert(dice.below(bits));
    for (std::uint32_t bit : chosen)
        frame[bit / 8] = static_cast<std::uint8_t>(frame[bit / 8] ^ (1U << (bit % 8)));
}

void breakCrc(Bytes &frame)
{
    const auto crc = frame.end() - std::min<std::ptrdiff_t>(2, frame.end() - frame.begin());
    std::transform(crc, frame.end(), crc,
                   [](std::uint8_t byte) { return static_cast<std::uint8_t>(~byte); });
}

void truncate(Bytes &frame, const FaultRule &rule, Dice &dice)
{
    if (frame.empty())
        return;
    const std::size_t kept =
        rule.count ? static_cast<std::size_t>(*rule.count) : 1 + dice.below(sizeOf(frame) - 1);
    frame.resize(std::min(kept, frame.size()));
}

void addJunk(Bytes &frame, const FaultRule &rule, Dice &dice)
{
    Bytes junk(static_cast<std::size_t>(rule.count.value_or(usualJunk)));
    for (std::uint8_t &byte : junk)
        byte = static_cast<std::uint8_t>(dice.below(256));
    std::ptrdiff_t place = 0;
    if (rule.place == JunkPlace::After)
        place = static_cast<std::ptrdiff_t>(frame.size());
    else if (rule.place == JunkPlace::Inside && frame.size() > 1)
        place = 1 + static_cast<std::ptrdiff_t>(dice.below(sizeOf(frame) - 1));
    frame.insert(frame.begin() + place, junk.begin(), junk.end());
}

int otherStation(int station)
{
    return station < 247 ? station + 1 : 1;
}

int otherFunction(int function)
{
    return function == 3 ? 4 : 3;
}

/// Puts another station or function in front; leaves frames alone that are too short to have both.
void replaceHead(Bytes &frame, const FaultRule &rule)
{
    if (frame.size() < smallestFrame)
        return;
    if (rule.kind == FaultKind::WrongStation)
        frame[0] = static_cast<std::uint8_t>(rule.value.value_or(otherStation(frame[0])));
    else
        frame[1] = static_cast<std::uint8_t>(rule.value.value_or(otherFunction(frame[1])));
    renewCrc(frame);
}

} // namespace

void damage(Bytes &frame, const FaultRule &rule, Dice &dice)
{
    switch (rule.kind) {
    case FaultKind::FlipBits:
        return flipBits(frame, rule.count.value_or(usualBits), dice);
    case FaultKind::BreakCrc:
        return breakCrc(frame);
    case FaultKind::Truncate:
        return truncate(frame, rule, dice);
    case FaultKind::Junk:
        return addJunk(frame, rule, dice);
    case FaultKind::WrongStation:
    case FaultKind::WrongFunction:
        return replaceHead(frame, rule);
    case FaultKind::DropRequest:
    case FaultKind::DropReply:
    case FaultKind::Delay:
    case FaultKind::Exception:
    case FaultKind::Echo:
    case FaultKind::Silence:
    case FaultKind::Unplug:
    case FaultKind::PowerCycle:
        return;
    }
}

} // namespace dx4::sim
