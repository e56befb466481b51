// SPDX-License-Identifier: MIT
// A line in memory with stations, virtual time and a byte log.
#pragma once

#include "simulator/byte_log.h"
#include "simulator/cable.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

/// Base of the tests of line and stations: station 1 and 2 on a line of 9600 bit/s.
class LineFixture : public ::testing::Test {
protected:
    LineFixture()
        : LineFixture(dx4::sim::FaultPlan())
    {
    }

    explicit LineFixture(dx4::sim::FaultPlan plan)
        : inverter(bus.add(1))
        , second(bus.add(2))
        , cable(bus, clock, {}, std::move(plan))
    {
        cable.observe([this](const dx4::sim::LineEvent &event) {
            log.push_back(dx4::sim::logLine(event));
            events.push_back(event);
        });
    }

    /// Sends the payload with its CRC behind it; gives all that came back as hex, CRC included.
    std::string ask(const std::string &payload)
    {
        return sendRaw(dx4::sim::withCrc(dx4::sim::fromHex(payload)));
    }

    /// Sends these very bytes; gives all that came back as hex.
    std::string sendRaw(const dx4::sim::Bytes &bytes)
    {
        return dx4::sim::toHex(dx4::sim::exchange(cable, clock, bytes));
    }

    /// The payload with its CRC behind it, as hex.
    static std::string framed(const std::string &payload)
    {
        return dx4::sim::toHex(dx4::sim::withCrc(dx4::sim::fromHex(payload)));
    }

    /// Lets the drives run for so long without a request.
    void pass(int milliseconds)
    {
        clock.advance(std::chrono::milliseconds(milliseconds));
        bus.advanceTo(clock.now());
    }

    dx4::sim::VirtualClock clock;
    dx4::sim::Bus bus;
    dx4::sim::Inverter &inverter; ///< station 1
    dx4::sim::Inverter &second; ///< station 2
    dx4::sim::Cable cable;
    std::vector<std::string> log;
    std::vector<dx4::sim::LineEvent> events;
};
