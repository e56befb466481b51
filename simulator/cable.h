// SPDX-License-Identifier: MIT
// The cable between master and stations: takes its time, and breaks what the plan says.
#pragma once

#include "simulator/bus.h"
#include "simulator/clock.h"
#include "simulator/fault_plan.h"

#include <deque>
#include <functional>
#include <optional>
#include <string>

namespace dx4::sim {

/// How fast the line is.
struct CableSettings {
    int bitsPerSecond = 9600; ///< 0: bytes take no time
    int bitsPerCharacter = 11; ///< start, eight data bits, parity and stop bit, or two stop bits
    Micros turnaround { 2000 }; ///< from the end of a request to the begin of the reply

    /// Time of so many characters back to back, rounded up once; 0 where bytes take no time.
    Micros wireTime(std::size_t bytes) const;

    /// Quiet time that ends a frame: three and a half characters, rounded up, 1750 us above
    /// 19200 bit/s.
    Micros frameGap() const;
};

/// What an observer of the cable is told.
struct LineEvent {
    enum class Kind {
        Request, ///< `bytes` as the master sent them
        Damaged, ///< `bytes` of the request as the stations heard them, where they differ
        Fault, ///< `text` names the fault that struck
        Reply, ///< `bytes` as the master hears them
        NoReply, ///< the master hears nothing
        Plug, ///< `text` is "unplugged" or "plugged"
    };
    Kind kind = Kind::Request;
    int number = 0; ///< which request of the line it belongs to, from 1; 0 before the first
    Micros time { 0 }; ///< Request: its first bit; Reply: likewise; others: when it was known
    Bytes bytes;
    std::string text;
};

/// Connects one master to the stations of a bus. All work is done inside the calls; nothing runs by
/// itself. Time comes from the clock alone, chance from the plan's dice alone, so the same plan,
/// seed and requests at the same times give the same bytes.
class Cable {
public:
    using Observer = std::function<void(const LineEvent &)>;

    /// `bus` and `clock` must outlive the cable.
    Cable(Bus &bus, const Clock &clock, CableSettings settings = {}, FaultPlan plan = {});

    /// Adds an observer; all hear every event, in the order they were added.
    void observe(Observer observer) { m_observers.push_back(std::move(observer)); }

    /// Puts one frame of the master on the line, its first bit now. The stations obey it as of its
    /// end; the reply becomes due byte by byte.
    void send(const Bytes &request);

    /// The bytes that have reached the master by now and were not taken before.
    Bytes receive();

    /// When the next byte reaches the master; none when nothing is on its way.
    std::optional<Micros> nextByteAt() const;

    /// Lets time pass for the stations of a line where nothing happens. Left to the next request, a
    /// night of many stations takes seconds, in which none of them answers.
    void passTime() { m_bus.advanceTo(m_clock.now()); }

    /// Pulls the plug: what is on its way is lost, and nothing passes until plug().
    void unplug();

    /// Puts the plug back; ends an Unplug of the plan as well.
    void plug();

    /// Whether the plug is out now.
    bool unplugged() const;

    /// The rules that strike from now on.
    FaultPlan &plan() { return m_plan; }

    /// How many requests were sent so far.
    int requestCount() const { return m_number; }

    const CableSettings &settings() const { return m_settings; }

private:
    struct Passage;
    struct Arrival {
        Micros time;
        std::uint8_t byte;
    };

    void strike(Passage &passage);
    void applyTo(Passage &passage, const FaultRule &rule);
    void carry(Passage &passage);
    void obey(Passage &passage);
    void deliver(const Passage &passage, const Bytes &echo);
    void putOnLine(const Bytes &bytes, Micros start);
    void putEchoOnLine(const Bytes &bytes, Micros start);
    void tell(LineEvent::Kind kind, Micros time, const Bytes &bytes, const std::string &text = {});

    Bus &m_bus;
    const Clock &m_clock;
    CableSettings m_settings;
    FaultPlan m_plan;
    std::vector<Observer> m_observers;
    std::deque<Arrival> m_arrivals; ///< ascending in time
    int m_number = 0;
    bool m_pulled = false; ///< unplugged by hand
    Micros m_unpluggedUntil { 0 };
    Micros m_silentUntil { 0 };
};

/// Sends a request and lets the clock run until the line has been quiet for a frame gap after the
/// reply, or `timeout` has passed without a byte. Gives what the master heard.
Bytes exchange(Cable &cable, VirtualClock &clock, const Bytes &request,
               Micros timeout = Micros(1000000));

} // namespace dx4::sim
