// SPDX-License-Identifier: MIT
// A host with the built plug-in on one end of a pseudo-terminal and a libmodbus slave on the other.
#pragma once

#include "host/exchange/cycle.h"
#include "host/line/serial_line.h"
#include "modbus_peer.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

/// One host: a private copy of the driver, its line to a peer, and the changes it was told of.
class HostUnderTest {
public:
    HostUnderTest(const ModbusPeer &peer, int linkNumber = 1);

    /// Takes `count` steps; gives their results as "served", "retry", "given up", "idle" or
    /// "line down".
    std::vector<std::string> steps(int count);

    /// Visible value of one register of station 1.
    int value(const char *type, int address);

    dx4::host::Link link;
    dx4::host::SerialLine line;
    dx4::host::LineExchange exchange;
    dx4::host::Cycle cycle;
    std::vector<std::string> changes; ///< "link station name address", in order
};

class Integration : public ::testing::Test {
protected:
    ModbusPeer peer { 1 };
    HostUnderTest host { peer };
};

/// An address of station 1 to poll.
KEY_ADDRESS polled(const char *type, int address, int count = 1);

/// Internal address of "F" group and index.
constexpr int parameter(int group, int index)
{
    return group * 256 + index;
}
