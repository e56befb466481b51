// SPDX-License-Identifier: MIT
// What of a line's events stands in its capture.
#include "simulator/capture.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

using namespace dx4;

TEST(Capture, HoldsRequestsAndRepliesAlone)
{
    using Kind = sim::LineEvent::Kind;
    std::stringstream file;
    sim::Capture write(file);
    std::string error;

    write({ Kind::Request, 1, sim::Micros(1000), { 0x01, 0x03 }, {} });
    write({ Kind::Damaged, 1, sim::Micros(2000), { 0x01, 0x13 }, {} });
    write({ Kind::Fault, 1, sim::Micros(2000), {}, "flip-bit" });
    write({ Kind::Reply, 1, sim::Micros(3000), { 0x01, 0x83, 0x02 }, {} });
    write({ Kind::NoReply, 2, sim::Micros(4000), {}, {} });
    write({ Kind::Plug, 2, sim::Micros(5000), {}, "unplugged" });
    const auto frames = capture::readPcap(file, &error);

    ASSERT_TRUE(frames) << error;
    ASSERT_EQ(frames->size(), 2U);
    EXPECT_EQ(frames->front().time, sim::Micros(1000));
    EXPECT_EQ(frames->front().sender, capture::Sender::Master);
    EXPECT_EQ(frames->front().bytes, (sim::Bytes { 0x01, 0x03 }));
    EXPECT_EQ(frames->back().time, sim::Micros(3000));
    EXPECT_EQ(frames->back().sender, capture::Sender::Station);
    EXPECT_EQ(frames->back().bytes, (sim::Bytes { 0x01, 0x83, 0x02 }));
}
