// SPDX-License-Identifier: MIT
// The cable between master and stations: takes its time, and breaks what the plan says.
#include "simulator/cable.h"

#include "simulator/frame_damage.h"

#include <algorithm>
#include <utility>

namespace dx4::sim {

namespace {

constexpr Micros shortestFrameGap { 1750 }; // the fixed gap of fast lines
constexpr int usualException = 4; // device failure
constexpr int fastLine = 19200; // bit/s, above which the gap is fixed
constexpr std::int64_t halfASecond = 500000; // us: what one half of a bit takes at 1 bit/s

/// Rounded up once for the whole span: cut off at each character, a long reply at 115,200 bit/s
/// would be 0.1 ms shorter than it is on a wire.
Micros timeOfHalfBits(std::int64_t halfBits, int bitsPerSecond)
{
    if (bitsPerSecond <= 0)
        return Micros(0);
    return Micros((halfBits * halfASecond + bitsPerSecond - 1) / bitsPerSecond);
}

std::string describe(const FaultRule &rule)
{
    std::string text = faultKindName(rule.kind);
    if (damagesFrame(rule.kind))
        text += rule.side == Side::Request ? " request" : " reply";
    return text;
}

} // namespace

Micros CableSettings::wireTime(std::size_t bytes) const
{
    return timeOfHalfBits(std::int64_t { 2 } * bitsPerCharacter * static_cast<std::int64_t>(bytes),
                          bitsPerSecond);
}

Micros CableSettings::frameGap() const
{
    if (bitsPerSecond <= 0 || bitsPerSecond > fastLine)
        return shortestFrameGap;
    constexpr int halfCharacters = 7;
    return timeOfHalfBits(std::int64_t { halfCharacters } * bitsPerCharacter, bitsPerSecond);
}

/// One request on its way, and what the striking rules made of it.
struct Cable::Passage {
    Bytes sent; ///< as the master sent it
    Bytes request; ///< as the stations hear it
    Bytes reply; ///< as the master hears it
    std::vector<FaultRule> rules; ///< those that strike
    Micros end {}; ///< of the request
    Micros delay {};
    std::optional<int> exception; ///< comes instead of the reply
    bool heard = true; ///< the stations get the request
    bool answered = true; ///< the master gets the reply
    bool echoed = false;
    bool unplugged = false; ///< by one of the rules, on the way
};

Cable::Cable(Bus &bus, const Clock &clock, CableSettings settings, FaultPlan plan)
    : m_bus(bus)
    , m_clock(clock)
    , m_settings(settings)
    , m_plan(std::move(plan))
{
}

void Cable::send(const Bytes &request)
{
    const Micros now = m_clock.now();
    ++m_number;
    tell(LineEvent::Kind::Request, now, request);

    Passage passage;
    passage.sent = request;
    passage.request = request;
    passage.end = now + m_settings.wireTime(request.size());
    if (unplugged()) {
        passage.heard = false;
    } else {
        passage.rules = m_plan.strike(m_number, request, now);
        strike(passage);
    }
    carry(passage);
}

void Cable::strike(Passage &passage)
{
    for (const FaultRule &rule : passage.rules) {
        tell(LineEvent::Kind::Fault, passage.end, {}, describe(rule));
        applyTo(passage, rule);
    }
}

void Cable::applyTo(Passage &passage, const FaultRule &rule)
{
    switch (rule.kind) {
    case FaultKind::DropRequest:
        passage.heard = false;
        return;
    case FaultKind::DropReply:
        passage.answered = false;
        return;
    case FaultKind::Delay:
        passage.delay += rule.duration;
        return;
    case FaultKind::FlipBits:
    case FaultKind::BreakCrc:
    case FaultKind::Truncate:
    case FaultKind::Junk:
    case FaultKind::WrongStation:
    case FaultKind::WrongFunction:
        if (rule.side == Side::Request)
            damage(passage.request, rule, m_plan.dice());
        return;
    case FaultKind::Exception:
        passage.exception = rule.value.value_or(usualException);
        return;
    case FaultKind::Echo:
        passage.echoed = true;
        return;
    case FaultKind::Silence:
        passage.answered = false;
        m_silentUntil = std::max(m_silentUntil, passage.end + rule.duration);
        return;
    case FaultKind::Unplug:
        passage.heard = false;
        passage.unplugged = true;
        m_arrivals.clear();
        m_unpluggedUntil = std::max(m_unpluggedUntil, passage.end + rule.duration);
        return;
    case FaultKind::PowerCycle:
        passage.heard = false;
        if (Inverter *inverter = m_bus.find(passage.sent.empty() ? 0 : passage.sent[0]))
            inverter->powerCycle(passage.end, rule.duration);
        return;
    }
}

void Cable::carry(Passage &passage)
{
    if (passage.request != passage.sent)
        tell(LineEvent::Kind::Damaged, passage.end, passage.request);
    if (passage.heard)
        obey(passage);
    else
        m_bus.advanceTo(passage.end);

    // Junk comes from outside: it needs no reply to stand beside, but a plug that is in.
    for (const FaultRule &rule : passage.rules) {
        if (damagesFrame(rule.kind) && rule.side == Side::Reply && !passage.unplugged)
            damage(passage.reply, rule, m_plan.dice());
    }
    if (!passage.answered || passage.end < m_silentUntil)
        passage.reply.clear();
    // The adapter at the master's end gives the request back whatever becomes of it.
    const Bytes echo = passage.echoed && !passage.unplugged ? passage.sent : Bytes();
    deliver(passage, echo);
}

void Cable::deliver(const Passage &passage, const Bytes &echo)
{
    Bytes all = echo;
    all.insert(all.end(), passage.reply.begin(), passage.reply.end());
    if (all.empty())
        return tell(LineEvent::Kind::NoReply, passage.end, {});
    const Micros start = passage.end + m_settings.turnaround + passage.delay;
    tell(LineEvent::Kind::Reply, echo.empty() ? start : passage.end, all);
    putEchoOnLine(echo, passage.end);
    putOnLine(passage.reply, start);
}

void Cable::obey(Passage &passage)
{
    if (!passage.exception) {
        passage.reply = m_bus.deliver(passage.request, passage.end);
        return;
    }
    m_bus.advanceTo(passage.end);
    const Bytes &request = passage.request;
    const Inverter *inverter = hasGoodCrc(request) ? m_bus.find(request[0]) : nullptr;
    if (!inverter || !inverter->powered())
        return;
    const int function = request[1] | 0x80;
    passage.reply = withCrc({ request[0], static_cast<std::uint8_t>(function),
                              static_cast<std::uint8_t>(*passage.exception) });
}

void Cable::putOnLine(const Bytes &bytes, Micros start)
{
    // A reply that still waits goes first: the line carries one byte at a time.
    const Micros begin = m_arrivals.empty() ? start : std::max(start, m_arrivals.back().time);
    for (std::size_t i = 0; i < bytes.size(); ++i)
        m_arrivals.push_back({ begin + m_settings.wireTime(i + 1), bytes[i] });
}

void Cable::putEchoOnLine(const Bytes &bytes, Micros start)
{
    // The echo waits for nobody: a reply that is still to come does not hold it up.
    const auto isEarlier = [](Micros time, const Arrival &arrival) { return time < arrival.time; };
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const Micros time = start + m_settings.wireTime(i + 1);
        const auto place = std::upper_bound(m_arrivals.begin(), m_arrivals.end(), time, isEarlier);
        m_arrivals.insert(place, { time, bytes[i] });
    }
}

Bytes Cable::receive()
{
    Bytes arrived;
    const Micros now = m_clock.now();
    while (!m_arrivals.empty() && m_arrivals.front().time <= now) {
        arrived.push_back(m_arrivals.front().byte);
        m_arrivals.pop_front();
    }
    return arrived;
}

std::optional<Micros> Cable::nextByteAt() const
{
    if (m_arrivals.empty())
        return std::nullopt;
    return m_arrivals.front().time;
}

void Cable::unplug()
{
    m_pulled = true;
    m_arrivals.clear();
    tell(LineEvent::Kind::Plug, m_clock.now(), {}, "unplugged");
}

void Cable::plug()
{
    m_pulled = false;
    m_unpluggedUntil = Micros(0);
    tell(LineEvent::Kind::Plug, m_clock.now(), {}, "plugged");
}

bool Cable::unplugged() const
{
    return m_pulled || m_clock.now() < m_unpluggedUntil;
}

void Cable::tell(LineEvent::Kind kind, Micros time, const Bytes &bytes, const std::string &text)
{
    const LineEvent event { kind, m_number, time, bytes, text };
    for (const Observer &observer : m_observers)
        observer(event);
}

Bytes exchange(Cable &cable, VirtualClock &clock, const Bytes &request, Micros timeout)
{
    cable.send(request);
    const Micros deadline = clock.now() + timeout;
    Bytes heard;
    for (std::optional<Micros> next; (next = cable.nextByteAt()) && *next <= deadline;) {
        clock.advanceTo(*next);
        const Bytes arrived = cable.receive();
        heard.insert(heard.end(), arrived.begin(), arrived.end());
    }
    clock.advanceTo(heard.empty() ? deadline : clock.now() + cable.settings().frameGap());
    return heard;
}

} // namespace dx4::sim
