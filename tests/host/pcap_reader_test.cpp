// SPDX-License-Identifier: MIT
// What is taken from a capture that holds more than one line's frames.
#include "capture/pcap.h"

#include <gtest/gtest.h>

#include <sstream>

using namespace dx4::capture;

namespace {

constexpr std::size_t fileHeader = 24;
constexpr std::size_t recordHeader = 16;
constexpr std::size_t linkType = 20;
constexpr std::size_t ipVersion = fileHeader + recordHeader;
constexpr std::size_t ipProtocol = ipVersion + 9;
constexpr std::size_t udpTargetPort = ipVersion + 22;

/// A capture of one request.
std::string captureOfARequest()
{
    std::ostringstream out;
    Frame frame;
    frame.bytes = { 1, 3, 0xD0, 0, 0, 2, 0x7C, 0xCB };
    PcapWriter(out).add(frame);
    return out.str();
}

/// Frames of the capture with one byte changed; -1 when it is refused.
int framesWith(std::size_t place, char value, std::string *error = nullptr)
{
    std::string bytes = captureOfARequest();
    bytes.at(place) = value;
    std::istringstream in(bytes);
    const auto frames = readPcap(in, error);
    return frames ? static_cast<int>(frames->size()) : -1;
}

} // namespace

TEST(PcapReader, TakesARequestAsItWasWritten)
{
    EXPECT_EQ(framesWith(ipVersion, 0x45), 1);
}

TEST(PcapReader, PassesPacketsOfOtherProtocolsOver)
{
    EXPECT_EQ(framesWith(ipVersion, 0x60), 0) << "IPv6";
    EXPECT_EQ(framesWith(ipProtocol, 6), 0) << "TCP";
}

TEST(PcapReader, PassesPacketsOfOtherPortsOver)
{
    EXPECT_EQ(framesWith(udpTargetPort, 2), 0);
}

TEST(PcapReader, RefusesPacketsThatDoNotBeginWithIp)
{
    std::string error;

    EXPECT_EQ(framesWith(linkType, 1, &error), -1);
    EXPECT_EQ(error, "packets that do not begin with IP; expected link type 101");
}

TEST(PcapReader, RefusesAFileThatEndsInsideAPacket)
{
    const std::string whole = captureOfARequest();
    std::string error;

    std::istringstream cut(whole.substr(0, whole.size() - 1));
    const auto frames = readPcap(cut, &error);

    EXPECT_FALSE(frames.has_value());
    EXPECT_EQ(error, "the file ends inside a packet");
}
