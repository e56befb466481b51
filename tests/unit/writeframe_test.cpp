// SPDX-License-Identifier: MIT
// The two encoders of writes, also for types that no selection brings to them.
#include "writeframe/writeframe.h"

#include "frame_recorder.h"

namespace {

class WriteEncoders : public FrameRecorder { };

TEST_F(WriteEncoders, OneWordEncoderPlacesEveryTypeAtItsBase)
{
    VARIABLE control = variable("CW", 0, 1);
    writeframe_oneword(control);
    EXPECT_EQ(lastFrame(), "01 06 10 01 12 34 D1 BD");

    VARIABLE frequency = variable("FRE", 2, 1);
    writeframe_oneword(frequency);
    EXPECT_EQ(lastFrame(), "01 06 10 04 12 34 C1 BC");

    VARIABLE status = variable("SW", 0, 1);
    writeframe_oneword(status);
    EXPECT_EQ(lastFrame(), "01 06 20 00 12 34 8F 7D");

    VARIABLE parameter = variable("F", 5, 1);
    writeframe_oneword(parameter);
    EXPECT_EQ(lastFrame(), "01 06 F0 05 12 34 A7 BC");
}

TEST_F(WriteEncoders, OneWordEncoderTakesAnUnknownTypeFromBase0)
{
    VARIABLE unknown = variable("XY", 0, 1);

    writeframe_oneword(unknown);

    EXPECT_EQ(lastFrame(), "01 06 00 00 12 34 84 BD");
}

TEST_F(WriteEncoders, OneWordEncoderAppendsNothingForAnyCountBut1)
{
    VARIABLE two = variable("CW", 0, 2);
    VARIABLE none = variable("CW", 0, 0);
    VARIABLE negative = variable("FRE", 0, -1);

    writeframe_oneword(two);
    writeframe_oneword(none);
    writeframe_oneword(negative);

    EXPECT_TRUE(driver.sendFrames.isEmpty());
}

TEST_F(WriteEncoders, WordEncoderAddressesAnyTypeButFToRegister0)
{
    VARIABLE monitor = variable("D", 5, 1);
    writeframe_word(monitor);
    EXPECT_EQ(lastFrame(), "01 06 00 00 12 34 84 BD");

    VARIABLE control = variable("CW", 3, 1);
    writeframe_word(control);
    EXPECT_EQ(lastFrame(), "01 06 00 00 12 34 84 BD");
}

TEST_F(WriteEncoders, WordEncoderUsesFunction6ForOneRegister)
{
    VARIABLE parameter = variable("F", 5, 1);

    writeframe_word(parameter);

    EXPECT_EQ(lastFrame(), "01 06 F0 05 12 34 A7 BC");
}

TEST_F(WriteEncoders, WordEncoderUsesFunction16ForSeveral)
{
    VARIABLE parameter = variable("F", 0x0102, 3);
    parameter.data[2] = 0xCD;
    parameter.data[3] = 0xAB;
    parameter.data[4] = 0x01;
    parameter.data[5] = 0x00;

    writeframe_word(parameter);

    EXPECT_EQ(lastFrame(), "01 10 F1 02 00 03 06 12 34 AB CD 00 01 82 18");
    EXPECT_EQ(driver.sendFrames.constLast().sendLength, 15);
}

TEST_F(WriteEncoders, WordEncoderAppendsNothingOutsideTheFrame)
{
    VARIABLE tooMany = variable("F", 0, 508);
    VARIABLE tooFew = variable("F", 0, -4);
    VARIABLE smallest = variable("F", 0, -2147483647 - 1);
    VARIABLE largest = variable("F", 0, 2147483647);

    writeframe_word(tooMany);
    writeframe_word(tooFew);
    writeframe_word(smallest);
    writeframe_word(largest);

    EXPECT_TRUE(driver.sendFrames.isEmpty());
}

TEST_F(WriteEncoders, WordEncoderKeepsWhatJustFits)
{
    VARIABLE most = variable("F", 0, 507);
    VARIABLE least = variable("F", 0, -3);

    writeframe_word(most);
    writeframe_word(least);

    ASSERT_EQ(driver.sendFrames.size(), 2);
    EXPECT_EQ(driver.sendFrames.at(0).sendLength, 1023);
    EXPECT_EQ(driver.sendFrames.at(1).sendLength, 3);
}

TEST_F(WriteEncoders, AppendAtTheTail)
{
    VARIABLE first = variable("F", 5, 1);
    VARIABLE second = variable("CW", 0, 1);

    writeframe_word(first);
    writeframe_oneword(second);

    ASSERT_EQ(driver.sendFrames.size(), 2);
    EXPECT_EQ(driver.sendFrames.at(0).var.regType.toStdString(), "F");
    EXPECT_EQ(driver.sendFrames.at(1).var.regType.toStdString(), "CW");
}

TEST_F(WriteEncoders, LeaveTheVariableAsItIs)
{
    VARIABLE parameter = variable("F", 5, 2);
    parameter.varKind = 42;

    writeframe_word(parameter);

    EXPECT_EQ(parameter.varKind, 42);
    EXPECT_EQ(parameter.count, 2);
    EXPECT_EQ(parameter.data[0], 0x34);
    EXPECT_EQ(driver.sendFrames.constLast().var.varKind, 42);
    EXPECT_EQ(driver.sendFrames.constLast().var.data[1023], 0x12);
}

} // namespace
