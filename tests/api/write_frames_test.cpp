// SPDX-License-Identifier: MIT
// Write requests as a host sends them: functions 6 and 16, values high byte first.
#include "driver_fixture.h"

namespace {

class WriteFrame : public DriverFixture {
protected:
    WriteFrame() { init("1#0#0#3#600"); }

    /// Queues a write as it stands, without the checks and the splitting of intf_setData.
    void queue(const char *type, int address, int count)
    {
        VARIABLE variable;
        variable.station = 1;
        variable.regType = QString::fromLatin1(type);
        variable.address = address;
        variable.count = count;
        for (int i = 0; i < 1024; i += 2) {
            variable.data[i] = 0x34;
            variable.data[i + 1] = 0x12;
        }
        state.writeList.append(variable);
    }

    /// The bytes of the frame taken last, from `first` on.
    std::string bytes(int first, int length) const { return toHex(frame.frame + first, length); }
};

TEST_F(WriteFrame, OfCwGoesToRegister1001)
{
    set(1, "CW", 0, { 0x1234 });

    EXPECT_EQ(nextFrame(), "01 06 10 01 12 34 D1 BD");
}

TEST_F(WriteFrame, OfFreGoesToRegister1002)
{
    unsigned char data[] = { 0x88, 0x13 };
    dx4.setData(1, QStringLiteral("FRE"), 0, 1, data, 0);

    EXPECT_EQ(nextFrame(), "01 06 10 02 13 88 21 9C");
}

TEST_F(WriteFrame, OfAOneWordTypeAddsTheAddressToTheBase)
{
    set(1, "FRE", 2, { 0x1388 });

    EXPECT_EQ(nextFrame(), "01 06 10 04 13 88 C1 9D");
}

TEST_F(WriteFrame, OfOneParameterUsesFunction6)
{
    set(1, "F", 5, { 0x1234 });

    EXPECT_EQ(nextFrame(), "01 06 F0 05 12 34 A7 BC");
}

TEST_F(WriteFrame, OfOneParameterOfGroupCGoesToFc)
{
    set(1, "F", 0x0A0D, { 0x00FF });

    EXPECT_EQ(nextFrame(), "01 06 FC 0D 00 FF 68 19");
}

TEST_F(WriteFrame, StationKeepsItsLow8Bits)
{
    set(-2, "F", 5, { 0x1234 });

    EXPECT_EQ(nextFrame(), "FE 06 F0 05 12 34 B3 B3");
    EXPECT_EQ(frame.var.station, -2);
}

TEST_F(WriteFrame, OfSeveralParametersUsesFunction16)
{
    set(1, "F", 0x0102, { 0x1234, 0xABCD, 0x0001 });

    EXPECT_EQ(nextFrame(), "01 10 F1 02 00 03 06 12 34 AB CD 00 01 82 18");
    EXPECT_EQ(frame.sendLength, 15);
}

TEST_F(WriteFrame, OfOneRegisterExpectsAnEchoOfEightBytes)
{
    set(1, "F", 5, { 0x1234 });

    nextFrame();

    EXPECT_EQ(frame.sendLength, 8);
    EXPECT_EQ(frame.replyLength, 8);
    EXPECT_EQ(frame.replyDataOffset, 0);
    EXPECT_EQ(frame.replyDataLength, 0);
}

TEST_F(WriteFrame, OfAOneWordTypeExpectsAnEchoOfEightBytes)
{
    set(1, "CW", 0, { 0x1234 });

    nextFrame();

    EXPECT_EQ(frame.sendLength, 8);
    EXPECT_EQ(frame.replyLength, 8);
    EXPECT_EQ(frame.replyDataOffset, 0);
    EXPECT_EQ(frame.replyDataLength, 0);
}

TEST_F(WriteFrame, OfSeveralRegistersExpectsAnEchoOfEightBytes)
{
    set(1, "F", 0x0102, { 1, 2, 3 });

    nextFrame();

    EXPECT_EQ(frame.replyLength, 8);
    EXPECT_EQ(frame.replyDataOffset, 0);
    EXPECT_EQ(frame.replyDataLength, 0);
}

TEST_F(WriteFrame, CarriesTheWholeVariable)
{
    queue("F", 5, 1);
    state.writeList[0].varKind = 42;

    EXPECT_EQ(nextFrame(), "01 06 F0 05 12 34 A7 BC");

    EXPECT_EQ(frame.var.varKind, 42);
    EXPECT_EQ(frame.var.station, 1);
    EXPECT_EQ(frame.var.regType.toStdString(), "F");
    EXPECT_EQ(frame.var.address, 5);
    EXPECT_EQ(frame.var.count, 1);
    EXPECT_EQ(frame.var.data[0], 0x34);
    EXPECT_EQ(frame.var.data[1023], 0x12);
}

TEST_F(WriteFrame, OfTwoCwRegistersIsNotBuilt)
{
    set(1, "CW", 0, { 1, 2 });

    EXPECT_EQ(nextFrame(), "");
    EXPECT_TRUE(state.sendFrames.isEmpty());
}

TEST_F(WriteFrame, OfTwoFreRegistersIsNotBuilt)
{
    set(1, "FRE", 0, { 1, 2 });

    EXPECT_EQ(nextFrame(), "");
    EXPECT_TRUE(state.sendFrames.isEmpty());
}

TEST_F(WriteFrame, OfNoCwRegisterIsNotBuilt)
{
    queue("CW", 0, 0);

    EXPECT_EQ(nextFrame(), "");
    EXPECT_TRUE(state.sendFrames.isEmpty());
}

TEST_F(WriteFrame, OfANegativeCwCountIsNotBuilt)
{
    queue("CW", 0, -1);

    EXPECT_EQ(nextFrame(), "");
    EXPECT_TRUE(state.sendFrames.isEmpty());
}

TEST_F(WriteFrame, OfAMonitorValueGoesToRegister0)
{
    set(1, "D", 5, { 0x1234 });

    EXPECT_EQ(nextFrame(), "01 06 00 00 12 34 84 BD");
}

TEST_F(WriteFrame, OfTheStatusWordGoesToRegister0)
{
    set(1, "SW", 0, { 0x1234 });

    EXPECT_EQ(nextFrame(), "01 06 00 00 12 34 84 BD");
}

TEST_F(WriteFrame, OfSeveralFaultCodesGoesToRegister0)
{
    set(1, "FU", 3, { 0x1234, 0x5678 });

    EXPECT_EQ(nextFrame(), "01 10 00 00 00 02 04 12 34 56 78 88 9B");
}

TEST_F(WriteFrame, OfAnUnknownTypeGoesToRegister0)
{
    queue("cw", 7, 1);

    EXPECT_EQ(nextFrame(), "01 06 00 00 12 34 84 BD");
}

TEST_F(WriteFrame, OfAGroupOutsideTheTableHasHighByte0)
{
    queue("F", 0x0B00, 1);

    EXPECT_EQ(nextFrame(), "01 06 00 00 12 34 84 BD");
}

TEST_F(WriteFrame, Of127RegistersHasTheRightByteCount)
{
    queue("F", 0, 127);

    nextFrame();

    EXPECT_EQ(bytes(0, 9), "01 10 F0 00 00 7F FE 12 34");
    EXPECT_EQ(bytes(261, 2), "89 88");
    EXPECT_EQ(frame.sendLength, 263);
}

TEST_F(WriteFrame, Of128RegistersHasByteCount0AndAllItsData)
{
    queue("F", 0, 128);

    nextFrame();

    EXPECT_EQ(bytes(0, 9), "01 10 F0 00 00 80 00 12 34");
    EXPECT_EQ(bytes(261, 4), "12 34 26 CA");
    EXPECT_EQ(frame.sendLength, 265);
    EXPECT_EQ(frame.replyLength, 8);
}

TEST_F(WriteFrame, Of257RegistersCountsBytesFromTheLow8Bits)
{
    queue("F", 0, 257);

    nextFrame();

    EXPECT_EQ(bytes(0, 9), "01 10 F0 00 01 01 02 12 34");
    EXPECT_EQ(bytes(521, 2), "17 C6");
    EXPECT_EQ(frame.sendLength, 523);
}

TEST_F(WriteFrame, Of507RegistersJustFits)
{
    queue("F", 0, 507);

    nextFrame();

    EXPECT_EQ(bytes(0, 9), "01 10 F0 00 01 FB F6 12 34");
    EXPECT_EQ(bytes(1019, 4), "12 34 52 C5");
    EXPECT_EQ(frame.sendLength, 1023);
}

TEST_F(WriteFrame, Of508RegistersIsNotBuilt)
{
    queue("F", 0, 508);

    EXPECT_EQ(nextFrame(), "");
    EXPECT_TRUE(state.sendFrames.isEmpty());
    EXPECT_EQ(state.phase, 2);
}

TEST_F(WriteFrame, OfNoRegisterHasNineBytes)
{
    queue("F", 5, 0);

    EXPECT_EQ(nextFrame(), "01 10 F0 05 00 00 00 49 89");
    EXPECT_EQ(frame.sendLength, 9);
    EXPECT_EQ(frame.replyLength, 8);
}

// The CRC of a negative count stands where the layout puts it, over bytes written before.
TEST_F(WriteFrame, OfMinus1RegisterHasItsCrcOverBytes5And6)
{
    queue("F", 5, -1);

    EXPECT_EQ(nextFrame(), "01 10 F0 05 FF 5E 23");
    EXPECT_EQ(frame.sendLength, 7);
}

TEST_F(WriteFrame, OfMinus2RegistersHasItsCrcOverBytes3And4)
{
    queue("F", 5, -2);

    EXPECT_EQ(nextFrame(), "01 10 F0 2D 84");
    EXPECT_EQ(frame.sendLength, 5);
}

TEST_F(WriteFrame, OfMinus3RegistersHasItsCrcOverBytes1And2)
{
    queue("F", 5, -3);

    EXPECT_EQ(nextFrame(), "01 7E 80");
    EXPECT_EQ(frame.sendLength, 3);
    EXPECT_EQ(toHex(frame.frame, 5), "01 7E 80 05 FF");
}

TEST_F(WriteFrame, OfMinus4RegistersIsNotBuilt)
{
    queue("F", 5, -4);

    EXPECT_EQ(nextFrame(), "");
    EXPECT_TRUE(state.sendFrames.isEmpty());
}

TEST_F(WriteFrame, OfTheSmallestCountIsNotBuilt)
{
    queue("F", 5, -2147483647 - 1);

    EXPECT_EQ(nextFrame(), "");
    EXPECT_TRUE(state.sendFrames.isEmpty());
}

TEST_F(WriteFrame, OfTheLargestCountIsNotBuilt)
{
    queue("F", 5, 2147483647);

    EXPECT_EQ(nextFrame(), "");
    EXPECT_TRUE(state.sendFrames.isEmpty());
}

} // namespace
