// SPDX-License-Identifier: MIT
// Late replies, one case each: what is believed, what is withheld, and what is told.
#include "host/guarded_exchange.h"
#include "scripted_line.h"
#include "trial_requests.h"

#include <gtest/gtest.h>

using namespace dx4::host;
using std::chrono::milliseconds;

namespace {

/// 10000 bit/s: a character takes 1 ms; 100 ms response timeout.
LineSettings slow()
{
    LineSettings settings;
    settings.speed = 10000;
    settings.responseTimeout = milliseconds(100);
    return settings;
}

class LateReplies : public ::testing::Test {
protected:
    ScriptedLine inverter { slow() };
    GuardedExchange guard { inverter.line };
};

} // namespace

TEST_F(LateReplies, OfARequestThatABrokenLineDidNotTakeAreOfNobodyInHand)
{
    const FRAME_PRO read = readOf(1, 0xD000, 2);
    inverter.changes = { silence() };
    guard.run(read);
    inverter.line.close();
    const Reply broken = guard.run(read);
    inverter.line.open(nullptr);
    inverter.line.inject(framed("01 03 04 12 34 56 78"));
    inverter.line.advance(milliseconds(20));

    guard.listen();

    EXPECT_EQ(broken.kind, Reply::Kind::LineDown);
    EXPECT_EQ(guard.report().lateReplies, 1);
}

TEST_F(LateReplies, WhoseRegistersHoldTheBytesOfARefusalRefuseNothing)
{
    inverter.registers = { { { 1, 0xD000 }, 0x0183 },
                           { { 1, 0xD001 }, 0x02C0 },
                           { { 1, 0xD002 }, 0xF100 } };

    const Reply reply = guard.run(readOf(1, 0xD000, 4));

    EXPECT_EQ(reply.bytes, framed("01 03 08 01 83 02 C0 F1 00 00 00"));
}
