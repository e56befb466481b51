// SPDX-License-Identifier: MIT
// Requests that go onto no line, and those that the guard makes itself.
#include "asked.h"
#include "host/exchange/guard_requests.h"

#include <gtest/gtest.h>

using namespace dx4::host;

namespace {

std::string hexOf(const FRAME_PRO &request)
{
    return QByteArray(reinterpret_cast<const char *>(request.frame), request.sendLength)
        .toHex(' ')
        .toStdString();
}

FRAME_PRO readOfCount(const std::string &count, int registers)
{
    FRAME_PRO read = asked("01 03 D0 00 " + count);
    read.replyDataLength = 2 * registers;
    read.replyLength = 5 + 2 * registers;
    return read;
}

FRAME_PRO writeOfMany(int count)
{
    FRAME_PRO write = asked("01 10 F0 00 00 01 02 00 07");
    write.frame[5] = static_cast<unsigned char>(count);
    write.frame[6] = static_cast<unsigned char>(2 * count);
    write.sendLength = 9 + 2 * count;
    return write;
}

/// As it should be, but for one length.
FRAME_PRO changed(FRAME_PRO request, int FRAME_PRO::*length, int by)
{
    request.*length += by;
    return request;
}

struct Row {
    const char *name;
    FRAME_PRO request;
    bool isDegenerate;
};

class Degenerate : public ::testing::TestWithParam<Row> { };

const FRAME_PRO readOfTwo = asked("01 03 D0 00 00 02");
const FRAME_PRO writeOfOne = asked("01 06 10 01 00 01");

} // namespace

TEST_P(Degenerate, IsWhatNoStationCanAnswerAsItShould)
{
    EXPECT_EQ(isDegenerate(GetParam().request), GetParam().isDegenerate);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, Degenerate,
    ::testing::Values(
        Row { "AReadOfNoRegister", readOfCount("00 00", 0), true },
        Row { "AReadOfOneIsNone", readOfCount("00 01", 1), false },
        Row { "AReadOf125IsNone", readOfCount("00 7D", 125), false },
        Row { "AReadOf126", readOfCount("00 7E", 126), true },
        Row { "AReadOfMinus16", readOfCount("FF F0", -16), true },
        Row { "AReadThatIsLonger", changed(readOfTwo, &FRAME_PRO::sendLength, 1), true },
        Row { "AReadThatExpectsLessData", changed(readOfTwo, &FRAME_PRO::replyDataLength, -2),
              true },
        Row { "AReadThatExpectsMore", changed(readOfTwo, &FRAME_PRO::replyLength, 1), true },
        Row { "AWriteOfOneIsNone", writeOfOne, false },
        Row { "AWriteOfOneThatIsShorter", changed(writeOfOne, &FRAME_PRO::sendLength, -1), true },
        Row { "AWriteOfOneThatExpectsNothing", changed(writeOfOne, &FRAME_PRO::replyLength, -8),
              true },
        Row { "AWriteOfNoRegister", writeOfMany(0), true },
        Row { "AWriteOfSeveralThatIsOneIsNone", writeOfMany(1), false },
        Row { "AWriteOf123IsNone", writeOfMany(123), false },
        Row { "AWriteOf124", writeOfMany(124), true },
        Row { "AWriteWithAValueTooFew", changed(writeOfMany(3), &FRAME_PRO::sendLength, -2), true },
        Row { "AWriteOfSeveralThatExpectsMore", changed(writeOfMany(3), &FRAME_PRO::replyLength, 1),
              true },
        Row { "AnotherFunction", asked("01 04 D0 00 00 02"), true }),
    [](const auto &row) { return std::string(row.param.name); });

TEST(GuardRequests, TheStatusWordIsTheShortestRead)
{
    const FRAME_PRO read = statusWordRead(7);

    EXPECT_EQ(hexOf(read), "07 03 20 00 00 01 8f ac");
    EXPECT_EQ(read.replyLength, 7);
    EXPECT_EQ(read.replyDataLength, 2);
    EXPECT_EQ(read.replyDataOffset, 3);
    EXPECT_EQ(read.var.station, 7);
    EXPECT_FALSE(isDegenerate(read));
}

TEST(GuardRequests, NobodyAnswersTheBroadcastOfAControlWord)
{
    const FRAME_PRO stop = controlWordBroadcast(0x0102);

    EXPECT_EQ(hexOf(stop), "00 06 10 01 01 02 5d 4a");
    EXPECT_EQ(hexOf(controlWordBroadcast(0xFF01)), "00 06 10 01 ff 01 5d 2b");
    EXPECT_EQ(stop.replyLength, 0);
    EXPECT_EQ(stop.var.station, 0);
}

TEST(GuardRequests, ReadsOfManyLengthsBeginWithTheStatusWordAndTheRequestsOwnRegisters)
{
    const QVector<FRAME_PRO> reads = readsOfManyLengths(asked("05 03 F0 10 00 04"));

    ASSERT_EQ(reads.size(), 17);
    EXPECT_EQ(hexOf(reads.at(0)), "05 03 20 00 00 01 8e 4e");
    EXPECT_EQ(hexOf(reads.at(1)), "05 03 f0 10 00 03 36 8a");
    EXPECT_EQ(hexOf(reads.at(2)), "05 03 20 00 00 02 ce 4f");
    EXPECT_EQ(hexOf(reads.at(3)), "05 03 d0 00 00 03 3c 8f");
    EXPECT_EQ(hexOf(reads.at(16)), "05 03 d0 00 00 10 7d 42");
    for (const FRAME_PRO &read : reads)
        EXPECT_FALSE(isDegenerate(read)) << hexOf(read);
}

TEST(GuardRequests, ARequestOfOneRegisterHasNoneToLeaveOut)
{
    const QVector<FRAME_PRO> reads = readsOfManyLengths(asked("05 03 F0 10 00 01"));

    ASSERT_EQ(reads.size(), 16);
    EXPECT_EQ(hexOf(reads.at(1)), "05 03 20 00 00 02 ce 4f");
}

TEST(GuardRequests, AWriteReadsNoneOfItsRegisters)
{
    const QVector<FRAME_PRO> reads = readsOfManyLengths(asked("05 06 10 01 00 04"));

    ASSERT_EQ(reads.size(), 16);
    EXPECT_EQ(hexOf(reads.at(1)), "05 03 20 00 00 02 ce 4f");
}
