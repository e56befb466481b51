// SPDX-License-Identifier: MIT
// Read requests as a host sends them: function 3, its address bytes, and the reply it expects.
#include "driver_fixture.h"

#include <climits>
#include <ostream>

namespace {

struct ReadRow {
    const char *name;
    int station;
    const char *type;
    int address;
    int count;
    const char *bytes;
};

// Without it a row is named by the bytes of its pointers, anew in every run.
void PrintTo(const ReadRow &row, std::ostream *out)
{
    *out << row.name;
}

class ReadFrame : public DriverFixture, public ::testing::WithParamInterface<ReadRow> { };

TEST_P(ReadFrame, HasTheseBytes)
{
    const ReadRow &row = GetParam();
    init("1#0#0#3#600");

    dx4.addConditionRead(keyAddress(row.station, row.type, row.address, row.count), 0);

    EXPECT_EQ(nextFrame(), row.bytes);
    EXPECT_EQ(frame.sendLength, 8);
    EXPECT_EQ(frame.replyDataOffset, 3);
    EXPECT_EQ(frame.var.address, row.address);
}

std::string rowName(const ::testing::TestParamInfo<ReadRow> &info)
{
    return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(
    OneWordTypes, ReadFrame,
    ::testing::Values(
        ReadRow { "FuStandsAt2001", 1, "FU", 0, 1, "01 03 20 01 00 01 DE 0A" },
        ReadRow { "SwStandsAt2000", 1, "SW", 0, 1, "01 03 20 00 00 01 8F CA" },
        ReadRow { "AddressIsAddedToTheBaseOfSw", 1, "SW", 5, 1, "01 03 20 05 00 01 9F CB" },
        ReadRow { "AddressIsAddedToTheBaseOfFu", 1, "FU", 3, 2, "01 03 20 04 00 02 8E 0A" },
        ReadRow { "NegativeAddressIsSubtracted", 1, "SW", -1, 1, "01 03 1F FF 00 01 B3 EE" },
        ReadRow { "NegativeSumKeepsItsBits", 1, "SW", -8193, 1, "01 03 FF FF 00 01 84 2E" },
        ReadRow { "SumWrapsAt32Bits", 1, "SW", INT_MAX, 1, "01 03 1F FF 00 01 B3 EE" }),
    rowName);

INSTANTIATE_TEST_SUITE_P(
    Parameters, ReadFrame,
    ::testing::Values(ReadRow { "Group0GoesOutAsF0", 1, "F", 0x0000, 1, "01 03 F0 00 00 01 B7 0A" },
                      ReadRow { "Group1GoesOutAsF1", 1, "F", 0x0100, 1, "01 03 F1 00 00 01 B6 F6" },
                      ReadRow { "Group2GoesOutAsF2", 1, "F", 0x0200, 1, "01 03 F2 00 00 01 B6 B2" },
                      ReadRow { "Group3GoesOutAsF3", 1, "F", 0x0300, 1, "01 03 F3 00 00 01 B7 4E" },
                      ReadRow { "Group4GoesOutAsF4", 1, "F", 0x0400, 1, "01 03 F4 00 00 01 B6 3A" },
                      ReadRow { "Group5GoesOutAsF5", 1, "F", 0x0500, 1, "01 03 F5 00 00 01 B7 C6" },
                      ReadRow { "Group6GoesOutAsF6", 1, "F", 0x0600, 1, "01 03 F6 00 00 01 B7 82" },
                      ReadRow { "Group7GoesOutAsF7", 1, "F", 0x0700, 1, "01 03 F7 00 00 01 B6 7E" },
                      ReadRow { "Group8GoesOutAsF8", 1, "F", 0x0800, 1, "01 03 F8 00 00 01 B5 6A" },
                      ReadRow { "Group9GoesOutAsF9", 1, "F", 0x090B, 1, "01 03 F9 0B 00 01 C5 54" },
                      ReadRow { "GroupCGoesOutAsFc", 1, "F", 0x0A0C, 1, "01 03 FC 0C 00 01 74 59" },
                      ReadRow { "StationAndCountAreSent", 2, "F", 0x0112, 2,
                                "02 03 F1 12 00 02 56 C1" }),
    rowName);

// A group outside the table takes the word at its position counted through both offset tables, and
// 0 outside both, so that a frame is built whatever the address.
INSTANTIATE_TEST_SUITE_P(
    GroupsOutsideTheTable, ReadFrame,
    ::testing::Values(
        ReadRow { "Group11HasHighByte0", 1, "F", 0x0B07, 1, "01 03 00 07 00 01 35 CB" },
        ReadRow { "Group255HasHighByte0", 1, "F", 0xFF07, 1, "01 03 00 07 00 01 35 CB" },
        ReadRow { "LargestGroupHasHighByte0", 1, "F", 0x7FFFFF07, 1, "01 03 00 07 00 01 35 CB" },
        ReadRow { "AddressJustBelow0IsStillGroup0", 1, "F", -1, 1, "01 03 F0 FF 00 01 87 3A" },
        ReadRow { "GroupMinus1TakesTheBaseOfFu", 1, "F", -256, 1, "01 03 01 00 00 01 85 F6" },
        ReadRow { "GroupMinus2TakesTheBaseOfSw", 1, "F", -512, 1, "01 03 00 00 00 01 84 0A" },
        ReadRow { "GroupMinus3TakesTheBaseOfFre", 1, "F", -768, 1, "01 03 02 00 00 01 85 B2" },
        ReadRow { "GroupMinus4TakesTheBaseOfCw", 1, "F", -1024, 1, "01 03 01 00 00 01 85 F6" },
        ReadRow { "GroupMinus5TakesTheBaseOfD", 1, "F", -1280, 1, "01 03 00 00 00 01 84 0A" },
        ReadRow { "GroupMinus6TakesTheBaseOfF", 1, "F", -1536, 1, "01 03 00 00 00 01 84 0A" },
        ReadRow { "GroupMinus7HasHighByte0", 1, "F", -1792, 1, "01 03 00 00 00 01 84 0A" },
        ReadRow { "SmallestGroupHasHighByte0", 1, "F", INT_MIN, 1, "01 03 00 00 00 01 84 0A" }),
    rowName);

INSTANTIATE_TEST_SUITE_P(
    MonitorValues, ReadFrame,
    ::testing::Values(ReadRow { "D5StandsAtD005", 1, "D", 5, 1, "01 03 D0 05 00 01 AC CB" },
                      ReadRow { "D3StandsAtD003", 1, "D", 3, 1, "01 03 D0 03 00 01 4C CA" },
                      ReadRow { "OnlyTheLowByteOfTheAddressIsSent", 1, "D", 0x1234, 1,
                                "01 03 D0 34 00 01 FD 04" }),
    rowName);

INSTANTIATE_TEST_SUITE_P(TypesWithoutAReadOfTheirOwn, ReadFrame,
                         ::testing::Values(ReadRow { "CwIsReadAmongTheMonitorValues", 1, "CW", 0, 1,
                                                     "01 03 D0 00 00 01 BC CA" },
                                           ReadRow { "FreIsReadAmongTheMonitorValues", 1, "FRE", 7,
                                                     1, "01 03 D0 07 00 01 0D 0B" },
                                           ReadRow { "LowerCaseFuIsReadAmongTheMonitorValues", 1,
                                                     "fu", 0, 1, "01 03 D0 00 00 01 BC CA" },
                                           ReadRow { "LowerCaseFIsReadAmongTheMonitorValues", 1,
                                                     "f", 0x0105, 1, "01 03 D0 05 00 01 AC CB" },
                                           ReadRow { "UnknownTypeIsReadAmongTheMonitorValues", 1,
                                                     "XY", 3, 1, "01 03 D0 03 00 01 4C CA" },
                                           ReadRow { "EmptyTypeIsReadAmongTheMonitorValues", 1, "",
                                                     3, 1, "01 03 D0 03 00 01 4C CA" }),
                         rowName);

INSTANTIATE_TEST_SUITE_P(
    HeaderBytes, ReadFrame,
    ::testing::Values(
        ReadRow { "CountHasTwoBytes", 1, "D", 0, 300, "01 03 D0 00 01 2C 7D 47" },
        ReadRow { "CountOf0IsSent", 1, "D", 0, 0, "01 03 D0 00 00 00 7D 0A" },
        ReadRow { "NegativeCountKeepsItsBits", 1, "D", 0, -1, "01 03 D0 00 FF FF 7C BA" },
        ReadRow { "StationKeepsItsLow8Bits", 0x101, "D", 0, 1, "01 03 D0 00 00 01 BC CA" },
        ReadRow { "NegativeStationKeepsItsLow8Bits", -1, "D", 0, 1, "FF 03 D0 00 00 01 A9 14" }),
    rowName);

class ReadReply : public DriverFixture {
protected:
    /// Takes the frame of a read of `count` registers.
    void request(const char *type, int count)
    {
        init("1#0#0#3#600");
        dx4.addConditionRead(keyAddress(1, type, 0, count), 0);
        ASSERT_EQ(dx4.getSendFrame(frame), 1);
    }
};

TEST_F(ReadReply, OfOneRegisterHasSevenBytes)
{
    request("FU", 1);

    EXPECT_EQ(frame.sendLength, 8);
    EXPECT_EQ(frame.replyLength, 7);
    EXPECT_EQ(frame.replyDataOffset, 3);
    EXPECT_EQ(frame.replyDataLength, 2);
}

TEST_F(ReadReply, HasTwoBytesPerRegisterAndFiveMore)
{
    request("D", 300);

    EXPECT_EQ(frame.replyLength, 605);
    EXPECT_EQ(frame.replyDataLength, 600);
}

TEST_F(ReadReply, OfNoRegisterHasFiveBytes)
{
    request("F", 0);

    EXPECT_EQ(frame.replyLength, 5);
    EXPECT_EQ(frame.replyDataLength, 0);
}

TEST_F(ReadReply, OfANegativeCountIsComputedAsItStands)
{
    request("SW", -1);

    EXPECT_EQ(frame.replyLength, 3);
    EXPECT_EQ(frame.replyDataLength, -2);
}

TEST_F(ReadReply, LengthWrapsAt32Bits)
{
    init("1#0#0#3#2147483647");
    dx4.addConditionRead(keyAddress(1, "D", 0, INT_MAX), 0);

    ASSERT_EQ(dx4.getSendFrame(frame), 1);

    EXPECT_EQ(frame.replyLength, 3);
    EXPECT_EQ(frame.replyDataLength, -2);
}

class ReadVariable : public DriverFixture { };

TEST_F(ReadVariable, TravelsWholeInTheFrame)
{
    init();
    VARIABLE variable;
    variable.varKind = 42;
    variable.station = 257;
    variable.regType = QStringLiteral("D");
    variable.address = 0x1234;
    variable.count = 3;
    variable.data[0] = 0x11;
    variable.data[1023] = 0x22;
    state.readList.append(variable);

    EXPECT_EQ(dx4.getSendFrame(frame), 1);

    EXPECT_EQ(frame.var.varKind, 42);
    EXPECT_EQ(frame.var.station, 257);
    EXPECT_EQ(frame.var.regType.toStdString(), "D");
    EXPECT_EQ(frame.var.address, 0x1234);
    EXPECT_EQ(frame.var.count, 3);
    EXPECT_EQ(frame.var.data[0], 0x11);
    EXPECT_EQ(frame.var.data[1023], 0x22);
}

TEST_F(ReadVariable, OfACyclicReadCarriesKind4)
{
    init();
    QList<KEY_ADDRESS> addresses { keyAddress(1, "D", 5, 1) };
    dx4.addrMerge(addresses);

    EXPECT_EQ(nextFrame(), "01 03 D0 05 00 01 AC CB");

    EXPECT_EQ(frame.var.varKind, 4);
}

TEST_F(ReadVariable, OfAConditionReadCarriesTheHostsKind)
{
    init();
    dx4.addConditionRead(keyAddress(1, "SW", 0, 1), 77);

    EXPECT_EQ(nextFrame(), "01 03 20 00 00 01 8F CA");

    EXPECT_EQ(frame.var.varKind, 77);
}

TEST_F(ReadVariable, GivesOneFrameHoweverManyRegisters)
{
    init("1#0#0#3#16");
    VARIABLE variable;
    variable.station = 1;
    variable.regType = QStringLiteral("D");
    variable.count = 300;
    state.readList.append(variable);

    EXPECT_EQ(nextFrame(), "01 03 D0 00 01 2C 7D 47");

    EXPECT_EQ(state.sendFrames.size(), 1);
}

} // namespace
