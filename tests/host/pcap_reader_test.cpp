// SPDX-License-Identifier: MIT
// What is taken from a capture that holds more than one line's frames.
#include "capture/pcap.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <sstream>
#include <streambuf>

using namespace dx4::capture;

namespace {

constexpr std::size_t fileHeader = 24;
constexpr std::size_t recordHeader = 16;
constexpr std::size_t linkType = 20;
constexpr std::size_t ipVersion = fileHeader + recordHeader;
constexpr std::size_t ipProtocol = ipVersion + 9;
constexpr std::size_t udpTargetPort = ipVersion + 22;

std::string captureOf(const Frame &frame)
{
    std::ostringstream out;
    PcapWriter(out).add(frame);
    return out.str();
}

/// A capture of one request.
std::string captureOfARequest()
{
    Frame frame;
    frame.bytes = { 1, 3, 0xD0, 0, 0, 2, 0x7C, 0xCB };
    return captureOf(frame);
}

Frame frameOfBytes(std::size_t count)
{
    Frame frame;
    frame.bytes.assign(count, 0x55);
    return frame;
}

std::optional<std::vector<Frame>> framesOf(const std::string &bytes, std::string *error = nullptr)
{
    std::istringstream in(bytes);
    return readPcap(in, error);
}

unsigned byteAt(const std::string &bytes, std::size_t place)
{
    return static_cast<unsigned char>(bytes.at(place));
}

/// The words of the IP header added up as its receiver does; 0xFFFF when the checksum is right. Own
/// arithmetic: two folds, which carry what 32 bits can hold.
unsigned sumOfIpHeader(const std::string &bytes)
{
    unsigned sum = 0;
    for (std::size_t i = 0; i < 10; ++i)
        sum += 256U * byteAt(bytes, ipVersion + 2 * i) + byteAt(bytes, ipVersion + 2 * i + 1);
    sum = sum % 65536U + sum / 65536U;
    return sum % 65536U + sum / 65536U;
}

/// Takes everything and counts how often it was told to write it out.
class FlushCounter : public std::streambuf {
public:
    int flushes = 0;

protected:
    int sync() override
    {
        ++flushes;
        return 0;
    }
    int overflow(int byte) override { return byte == EOF ? 0 : byte; }
};

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

TEST(PcapReader, RefusesAHeaderThatIsCutOrTooLong)
{
    const std::string whole = captureOfARequest();
    std::string error;

    EXPECT_FALSE(framesOf(whole.substr(0, fileHeader + recordHeader - 1), &error).has_value());
    EXPECT_EQ(error, "a packet's header is damaged");
    error.clear();
    EXPECT_EQ(framesWith(fileHeader + 10, 1, &error), -1) << "65536 bytes and more";
    EXPECT_EQ(error, "a packet's header is damaged");
}

TEST(PcapReader, ARefusalNeedsNoPlaceForItsReason)
{
    EXPECT_FALSE(framesOf("no capture").has_value());
}

TEST(PcapReader, AnEmptyFrameComesBack)
{
    const auto frames = framesOf(captureOf(frameOfBytes(0)));

    ASSERT_TRUE(frames.has_value());
    ASSERT_EQ(frames->size(), 1U);
    EXPECT_TRUE(frames->front().bytes.empty());
}

TEST(PcapWriter, TheLongestFrameFillsAPacketAndMoreIsCut)
{
    for (const std::size_t count : { std::size_t { 65507 }, std::size_t { 70000 } }) {
        const auto frames = framesOf(captureOf(frameOfBytes(count)));

        ASSERT_TRUE(frames.has_value()) << count;
        EXPECT_EQ(frames->front().bytes, frameOfBytes(65507).bytes);
    }
}

TEST(PcapWriter, TheIpChecksumIsRightForEveryLength)
{
    for (std::size_t count = 0; count <= 65507; count += 13) {
        const std::string bytes = captureOf(frameOfBytes(count));

        ASSERT_EQ(sumOfIpHeader(bytes), 0xFFFFU) << count;
    }
}

TEST(PcapWriter, RequestsGoFrom10001To10002AndRepliesBack)
{
    constexpr std::size_t source = ipVersion + 12;
    Frame reply = frameOfBytes(5);
    reply.sender = Sender::Station;

    EXPECT_EQ(captureOfARequest().substr(source, 8), std::string("\x0A\0\0\x01\x0A\0\0\x02", 8));
    EXPECT_EQ(captureOf(reply).substr(source, 8), std::string("\x0A\0\0\x02\x0A\0\0\x01", 8));
}

TEST(PcapWriter, EveryFrameIsInTheFileWhenItsCallReturns)
{
    FlushCounter counter;
    std::ostream out(&counter);
    PcapWriter writer(out);
    EXPECT_EQ(counter.flushes, 1);

    writer.add(frameOfBytes(5));

    EXPECT_EQ(counter.flushes, 2);
}
