// SPDX-License-Identifier: MIT
// What a station answers: values, echoes of writes, exceptions and silence.
#include "simulator/inverter.h"
#include "simulator/slave.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <iterator>
#include <memory>
#include <stdexcept>

using namespace dx4::sim;

namespace {

std::string framed(const std::string &payload)
{
    return toHex(withCrc(fromHex(payload)));
}

std::string answerTo(Slave &slave, const std::string &payload)
{
    return toHex(slave.answer(withCrc(fromHex(payload))));
}

struct ExceptionRow {
    const char *name;
    const char *request;
    const char *reply; // without its CRC
};

class SlaveExceptions : public ::testing::TestWithParam<ExceptionRow> { };

struct RangeRow {
    const char *name;
    const char *group; // high byte of the register
    int last; // highest index
    const char *written; // first bytes of the answer to a write
};

class ParameterGroups : public ::testing::TestWithParam<RangeRow> { };

std::string readOf(const std::string &highByte, int index)
{
    return "01 03 " + highByte + ' ' + toHex({ static_cast<std::uint8_t>(index) }) + " 00 01";
}

template <typename Row> std::string rowName(const ::testing::TestParamInfo<Row> &row)
{
    return row.param.name;
}

} // namespace

TEST(Crc, MatchesThePublishedCheckValue)
{
    const Bytes digits = { '1', '2', '3', '4', '5', '6', '7', '8', '9' };

    const std::uint16_t crc = crcOf(digits, digits.size());

    EXPECT_EQ(crc, 0x4B37);
}

TEST(SlaveReplies, ReadGivesTheValueHighByteFirst)
{
    Inverter inverter;
    Slave slave(1, inverter);
    inverter.write(0xF003, 0x1234);

    const std::string reply = answerTo(slave, "01 03 F0 03 00 01");

    EXPECT_EQ(reply, "01 03 02 12 34 B5 33");
}

TEST(SlaveReplies, FaultCodeIsZeroWhenAllIsWell)
{
    Inverter inverter;
    Slave slave(1, inverter);

    const Bytes reply = slave.answer(fromHex("01 03 20 01 00 01 DE 0A"));

    EXPECT_EQ(toHex(reply), "01 03 02 00 00 B8 44");
}

TEST(SlaveReplies, WriteOfOneRegisterIsEchoedAndKept)
{
    Inverter inverter;
    Slave slave(1, inverter);

    const std::string reply = answerTo(slave, "01 06 FC 0D 01 02");

    EXPECT_EQ(reply, framed("01 06 FC 0D 01 02"));
    EXPECT_EQ(inverter.read(0xFC0D), 0x0102);
}

TEST(SlaveReplies, WriteOfSeveralRegistersTellsStartAndCount)
{
    Inverter inverter;
    Slave slave(1, inverter);

    const std::string reply = answerTo(slave, "01 10 F1 00 00 02 04 00 07 00 08");

    EXPECT_EQ(reply, framed("01 10 F1 00 00 02"));
    EXPECT_EQ(inverter.read(0xF100), 7);
    EXPECT_EQ(inverter.read(0xF101), 8);
}

TEST(SlaveReplies, ControlAndFrequencyAreWrittenTogether)
{
    Inverter inverter;
    Slave slave(1, inverter);

    answerTo(slave, "01 10 10 01 00 02 04 00 01 0B B8");

    EXPECT_DOUBLE_EQ(inverter.drive().setHertz(), 30.0);
    EXPECT_EQ(inverter.read(0xD001), 3000);
}

TEST(SlaveReplies, StatusAndFaultAreReadTogether)
{
    Inverter inverter;
    Slave slave(1, inverter);

    const std::string reply = answerTo(slave, "01 03 20 00 00 02");

    EXPECT_EQ(reply, framed("01 03 04 00 01 00 00"));
}

TEST(SlaveReplies, AnotherStationGetsNoAnswer)
{
    Inverter inverter;
    Slave slave(1, inverter);

    EXPECT_EQ(answerTo(slave, "02 03 F0 00 00 01"), "");
}

TEST(SlaveReplies, BroadcastIsObeyedInSilence)
{
    Inverter inverter;
    Slave slave(1, inverter);

    const std::string reply = answerTo(slave, "00 06 F0 05 00 2A");

    EXPECT_EQ(reply, "");
    EXPECT_EQ(inverter.read(0xF005), 42);
}

TEST(SlaveReplies, BadCrcGetsNoAnswerAndChangesNothing)
{
    Inverter inverter;
    Slave slave(1, inverter);

    const Bytes reply = slave.answer(fromHex("01 06 F0 05 00 2A 00 00"));

    EXPECT_EQ(toHex(reply), "");
    EXPECT_EQ(inverter.read(0xF005), 0);
}

TEST(SlaveReplies, FrameWithBytesBehindItGetsNoAnswerAndLeavesTheNextOneWhole)
{
    Inverter inverter;
    Slave slave(1, inverter);
    Bytes request = withCrc(fromHex("01 06 F0 05 00 2A"));
    request.push_back(0x55);

    const Bytes reply = slave.answer(request);
    const std::string next = answerTo(slave, "01 03 F0 05 00 01");

    EXPECT_EQ(toHex(reply), "");
    EXPECT_EQ(next, "01 03 02 00 00 B8 44");
}

TEST(SlaveReplies, RefusedBroadcastIsSilent)
{
    Inverter inverter;
    Slave slave(1, inverter);

    EXPECT_EQ(answerTo(slave, "00 01 00 00 00 01"), ""); // a function that there is not
    EXPECT_EQ(answerTo(slave, "00 06 F8 04 01 E1"), ""); // a value above its limit
    EXPECT_EQ(answerTo(slave, "00 06 20 00 00 01"), ""); // read only
}

TEST(SlaveReplies, UnknownFunctionIsRefusedInAFrameOfEveryLength)
{
    Inverter inverter;
    Slave slave(1, inverter);
    const Bytes longest = withCrc(Bytes(254, 0x01)); // 256 bytes with its CRC
    const Bytes tooLong = withCrc(Bytes(255, 0x01));

    EXPECT_EQ(answerTo(slave, "01 07"), framed("01 87 01"));
    EXPECT_EQ(toHex(slave.answer(longest)), framed("01 81 01"));
    EXPECT_EQ(toHex(slave.answer(tooLong)), "");
}

TEST(SlaveReplies, UnknownFunctionWithABadCrcGetsNoAnswer)
{
    Inverter inverter;
    Slave slave(1, inverter);

    EXPECT_EQ(toHex(slave.answer(fromHex("01 07 00 00"))), "");
}

TEST(SlaveReplies, FrameBelowFourBytesGetsNoAnswer)
{
    Inverter inverter;
    Slave slave(1, inverter);

    EXPECT_EQ(toHex(slave.answer({})), "");
    EXPECT_EQ(toHex(slave.answer(fromHex("01"))), "");
    EXPECT_EQ(answerTo(slave, "01"), ""); // a good CRC, and no function
}

TEST(SlaveReplies, TruncatedFrameLeavesTheNextOneWhole)
{
    Inverter inverter;
    Slave slave(1, inverter);

    const Bytes none = slave.answer(fromHex("01 03 F0 00 00"));
    const std::string next = answerTo(slave, "01 03 F0 00 00 01");

    EXPECT_EQ(toHex(none), "");
    EXPECT_EQ(next, "01 03 02 00 00 B8 44");
}

TEST(SlaveReplies, ValueOutsideItsLimitsKeepsAllOfTheWriteOut)
{
    Inverter inverter;
    Slave slave(1, inverter);

    const std::string reply = answerTo(slave, "01 10 F8 04 00 02 04 00 E6 00 00");

    EXPECT_EQ(reply, framed("01 90 03"));
    EXPECT_EQ(inverter.read(0xF804), 400);
}

TEST(SlaveReplies, BrokenByteCountDoesNotReachTheDrive)
{
    Inverter inverter;
    Slave slave(1, inverter);
    inverter.write(0x1002, 3000);

    const std::string reply = answerTo(slave, "01 10 10 01 00 02 02 00 01");

    EXPECT_EQ(reply, framed("01 90 03"));
    EXPECT_DOUBLE_EQ(inverter.drive().setHertz(), 30.0);
}

TEST(SlaveStations, GiveTheirDescriptorsBack)
{
    Inverter inverter;
    const auto openNow = [] {
        namespace fs = std::filesystem;
        return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
    };
    const auto before = openNow();

    std::make_unique<Slave>(1, inverter).reset();

    EXPECT_EQ(openNow(), before);
}

TEST(SlaveStations, OnlyOneTo247Exist)
{
    Inverter inverter;

    EXPECT_THROW(Slave(0, inverter), std::invalid_argument);
    EXPECT_NO_THROW(Slave(1, inverter));
    EXPECT_NO_THROW(Slave(247, inverter));
    EXPECT_THROW(Slave(248, inverter), std::invalid_argument);
}

TEST_P(SlaveExceptions, AreAnsweredWithTheirCode)
{
    Inverter inverter;
    Slave slave(1, inverter);

    const std::string reply = answerTo(slave, GetParam().request);

    EXPECT_EQ(reply, framed(GetParam().reply));
}

INSTANTIATE_TEST_SUITE_P(
    Rows, SlaveExceptions,
    ::testing::Values(
        ExceptionRow { "ReadCoilsIsNoFunction", "01 01 00 00 00 01", "01 81 01" },
        ExceptionRow { "ReadInputsIsNoFunction", "01 04 F0 00 00 01", "01 84 01" },
        ExceptionRow { "MaskWriteIsNoFunction", "01 16 F0 00 00 01 00 02", "01 96 01" },
        ExceptionRow { "DeviceIdentificationIsNoFunction", "01 2B 0E 01 00", "01 AB 01" },
        ExceptionRow { "RegisterZeroDoesNotExist", "01 03 00 00 00 01", "01 83 02" },
        ExceptionRow { "ControlWordIsWriteOnly", "01 03 10 01 00 01", "01 83 02" },
        ExceptionRow { "FrequencyIsWriteOnly", "01 03 10 02 00 01", "01 83 02" },
        ExceptionRow { "StatusWordIsReadOnly", "01 06 20 00 00 01", "01 86 02" },
        ExceptionRow { "FaultCodeIsReadOnly", "01 06 20 01 00 01", "01 86 02" },
        ExceptionRow { "MonitorIsReadOnly", "01 06 D0 00 00 01", "01 86 02" },
        ExceptionRow { "RegisterBeforeControl", "01 06 10 00 00 01", "01 86 02" },
        ExceptionRow { "RegisterBehindFrequency", "01 06 10 03 00 01", "01 86 02" },
        ExceptionRow { "RegisterBehindFault", "01 03 20 02 00 01", "01 83 02" },
        ExceptionRow { "ReadAcrossTheEndOfMonitors", "01 03 D0 25 00 02", "01 83 02" },
        ExceptionRow { "WriteAcrossTheEndOfAGroup", "01 10 F0 12 00 02 04 00 01 00 02",
                       "01 90 02" },
        ExceptionRow { "GroupAIsMissing", "01 03 FA 00 00 01", "01 83 02" },
        ExceptionRow { "GroupBIsMissing", "01 03 FB 00 00 01", "01 83 02" },
        ExceptionRow { "GroupDIsMissing", "01 03 FD 00 00 01", "01 83 02" },
        ExceptionRow { "NoRegisterAtAll", "01 03 F0 00 00 00", "01 83 03" },
        ExceptionRow { "TooManyRegisters", "01 03 F0 00 00 7E", "01 83 03" },
        ExceptionRow { "WriteOfNoRegister", "01 10 F0 00 00 00 00", "01 90 03" },
        ExceptionRow { "WriteBehindTheLastRegister", "01 10 FF FF 00 02 04 00 01 00 02",
                       "01 90 02" },
        ExceptionRow { "ValueAboveItsLimit", "01 06 F8 04 01 E1", "01 86 03" },
        ExceptionRow { "ValueBelowItsLimit", "01 06 F8 04 00 63", "01 86 03" },
        ExceptionRow { "FrequencyAboveItsLimit", "01 06 10 02 9C 41", "01 86 03" }),
    rowName<ExceptionRow>);

TEST_P(ParameterGroups, AreWrittenUpToTheirLastIndex)
{
    Inverter inverter;
    Slave slave(1, inverter);
    const std::string last = toHex({ static_cast<std::uint8_t>(GetParam().last) });

    const std::string reply =
        answerTo(slave, "01 06 " + std::string(GetParam().group) + ' ' + last + " 00 01");

    EXPECT_EQ(reply.substr(0, 5), GetParam().written);
}

TEST_P(ParameterGroups, EndAtTheirLastIndex)
{
    Inverter inverter;
    Slave slave(1, inverter);
    const int last = GetParam().last;

    const std::string first = answerTo(slave, readOf(GetParam().group, 0)).substr(0, 8);
    const std::string atEnd = answerTo(slave, readOf(GetParam().group, last)).substr(0, 8);
    const std::string behind = answerTo(slave, readOf(GetParam().group, last + 1)).substr(0, 8);

    EXPECT_EQ(first, "01 03 02");
    EXPECT_EQ(atEnd, "01 03 02");
    EXPECT_EQ(behind, "01 83 02");
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ParameterGroups,
    ::testing::Values(
        RangeRow { "Group0", "F0", 18, "01 06" }, RangeRow { "Group1", "F1", 18, "01 06" },
        RangeRow { "Group2", "F2", 18, "01 06" }, RangeRow { "Group3", "F3", 16, "01 06" },
        RangeRow { "Group4", "F4", 28, "01 06" }, RangeRow { "Group5", "F5", 26, "01 06" },
        RangeRow { "Group6", "F6", 19, "01 06" }, RangeRow { "Group7", "F7", 8, "01 06" },
        RangeRow { "Group8", "F8", 17, "01 06" }, RangeRow { "Group9", "F9", 11, "01 06" },
        RangeRow { "GroupC", "FC", 13, "01 06" }, RangeRow { "Monitors", "D0", 37, "01 86" }),
    rowName<RangeRow>);
