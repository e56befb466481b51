// SPDX-License-Identifier: MIT
// The two encoders of reads, also for types that no selection brings to them.
#include "readframe/readframe.h"

#include "frame_recorder.h"

namespace {

class ReadEncoders : public FrameRecorder { };

TEST_F(ReadEncoders, OneWordEncoderPlacesEveryTypeAtItsBase)
{
    VARIABLE parameter = variable("F", 0, 1);
    readframe_oneword(parameter);
    EXPECT_EQ(lastFrame(), "01 03 F0 00 00 01 B7 0A");

    VARIABLE monitor = variable("D", 5, 1);
    readframe_oneword(monitor);
    EXPECT_EQ(lastFrame(), "01 03 D0 05 00 01 AC CB");

    VARIABLE control = variable("CW", 0, 1);
    readframe_oneword(control);
    EXPECT_EQ(lastFrame(), "01 03 10 01 00 01 D1 0A");

    VARIABLE frequency = variable("FRE", 0, 1);
    readframe_oneword(frequency);
    EXPECT_EQ(lastFrame(), "01 03 10 02 00 01 21 0A");

    VARIABLE status = variable("SW", 0, 1);
    readframe_oneword(status);
    EXPECT_EQ(lastFrame(), "01 03 20 00 00 01 8F CA");

    VARIABLE fault = variable("FU", 0, 1);
    readframe_oneword(fault);
    EXPECT_EQ(lastFrame(), "01 03 20 01 00 01 DE 0A");
}

TEST_F(ReadEncoders, OneWordEncoderTakesAnUnknownTypeFromBase0)
{
    VARIABLE unknown = variable("XY", 7, 1);

    readframe_oneword(unknown);

    EXPECT_EQ(lastFrame(), "01 03 00 07 00 01 35 CB");
}

TEST_F(ReadEncoders, OneWordEncoderSendsAnyCount)
{
    VARIABLE status = variable("SW", 4, 2);

    readframe_oneword(status);

    EXPECT_EQ(lastFrame(), "01 03 20 04 00 02 8E 0A");
    EXPECT_EQ(driver.sendFrames.constLast().replyLength, 9);
    EXPECT_EQ(driver.sendFrames.constLast().replyDataLength, 4);
    EXPECT_EQ(driver.sendFrames.constLast().replyDataOffset, 3);
}

TEST_F(ReadEncoders, WordEncoderTakesFByGroupAndIndex)
{
    VARIABLE parameter = variable("F", 0x0A0C, 1);

    readframe_word(parameter);

    EXPECT_EQ(lastFrame(), "01 03 FC 0C 00 01 74 59");
    EXPECT_EQ(driver.sendFrames.constLast().replyLength, 7);
    EXPECT_EQ(driver.sendFrames.constLast().replyDataLength, 2);
    EXPECT_EQ(driver.sendFrames.constLast().replyDataOffset, 3);
}

TEST_F(ReadEncoders, WordEncoderTakesAnyOtherTypeAmongTheMonitorValues)
{
    VARIABLE status = variable("SW", 0x1205, 1);

    readframe_word(status);

    EXPECT_EQ(lastFrame(), "01 03 D0 05 00 01 AC CB");
}

TEST_F(ReadEncoders, AppendAtTheTail)
{
    VARIABLE first = variable("D", 5, 1);
    VARIABLE second = variable("FU", 0, 1);

    readframe_word(first);
    readframe_oneword(second);

    ASSERT_EQ(driver.sendFrames.size(), 2);
    EXPECT_EQ(driver.sendFrames.at(0).var.regType.toStdString(), "D");
    EXPECT_EQ(driver.sendFrames.at(1).var.regType.toStdString(), "FU");
}

TEST_F(ReadEncoders, CopyTheVariableWholeAndLeaveItAsItIs)
{
    VARIABLE monitor = variable("D", 5, 1);
    monitor.varKind = 42;

    readframe_word(monitor);

    const VARIABLE &copy = driver.sendFrames.constLast().var;
    EXPECT_EQ(copy.varKind, 42);
    EXPECT_EQ(copy.station, 1);
    EXPECT_EQ(copy.regType.toStdString(), "D");
    EXPECT_EQ(copy.address, 5);
    EXPECT_EQ(copy.count, 1);
    EXPECT_EQ(copy.data[1022], 0x34);
    EXPECT_EQ(copy.data[1023], 0x12);
    EXPECT_EQ(monitor.varKind, 42);
    EXPECT_EQ(monitor.address, 5);
    EXPECT_EQ(monitor.count, 1);
    EXPECT_EQ(monitor.data[1023], 0x12);
}

} // namespace
