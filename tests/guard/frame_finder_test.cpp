// SPDX-License-Identifier: MIT
// Frames among junk, look-alikes and each other.
#include "host/frames/frame_finder.h"
#include "scripted_line.h"

#include <gtest/gtest.h>

using namespace dx4::host;

namespace {

QByteArray bytesOf(const char *hex)
{
    return QByteArray::fromHex(hex);
}

/// Expects of station 1 a read reply of two registers, a refusal, and what comes of a write of
/// three registers; `more` for further replies.
class FrameFinderTest : public ::testing::Test {
protected:
    QVector<int> lengthsOf(int station, int function)
    {
        ++asked;
        if (station == 1 && function == 3)
            return more + QVector<int> { 9 };
        if (station == 1 && function == 16)
            return { 8, 15 };
        return function == 0x83 ? QVector<int> { 5 } : QVector<int>();
    }

    /// What is found next as hex "skipped|frame", or "-".
    std::string next()
    {
        const auto found = finder.next();
        return found ? (found->skipped.toHex(' ') + '|' + found->frame.toHex(' ')).toStdString()
                     : "-";
    }

    QVector<int> more;
    int asked = 0;
    FrameFinder finder { [this](int station, int function) {
        return lengthsOf(station, function);
    } };
    const QByteArray reply = framed("01 03 04 12 34 56 78");
    const std::string replyHex = "01 03 04 12 34 56 78 81 07";
};

} // namespace

TEST(CrcOf, TheCheckStringIsThePublishedValue)
{
    EXPECT_EQ(crcOf("123456789??"), 0x4B37U);
}

TEST(CrcIsRight, OnlyWithBothBytesBehindAtLeastOne)
{
    EXPECT_TRUE(crcIsRight(bytesOf("01 83 02 C0 F1")));
    EXPECT_FALSE(crcIsRight(bytesOf("01 83 02 C1 F1")));
    EXPECT_FALSE(crcIsRight(bytesOf("01 83 02 C0 F0")));
    EXPECT_FALSE(crcIsRight(bytesOf("FF FF"))) << "the CRC of no byte";
    EXPECT_TRUE(crcIsRight(bytesOf("01 7E 80")));
}

TEST_F(FrameFinderTest, AFrameIsFoundAtItsLastByte)
{
    for (int i = 0; i < 8; ++i) {
        finder.add(reply.mid(i, 1));
        ASSERT_EQ(next(), "-") << "byte " << i;
    }
    finder.add(reply.mid(8));

    EXPECT_EQ(next(), '|' + replyHex);
    EXPECT_EQ(next(), "-");
    EXPECT_TRUE(finder.rest().isEmpty());
}

TEST_F(FrameFinderTest, JunkBeforeAFrameIsSkipped)
{
    finder.add(bytesOf("00 FF 01") + reply);

    EXPECT_EQ(next(), "00 ff 01|" + replyHex);
}

TEST_F(FrameFinderTest, AByteInsideAFrameSpoilsIt)
{
    finder.add(QByteArray(reply).insert(5, '\x55'));

    EXPECT_EQ(next(), "-");
    EXPECT_EQ(finder.rest(), bytesOf("01 03 04 12 34 55 56 78 81 07"));
}

TEST_F(FrameFinderTest, JunkBehindAFrameStays)
{
    finder.add(reply + bytesOf("00 FF"));

    EXPECT_EQ(next(), '|' + replyHex);
    EXPECT_EQ(next(), "-");
    EXPECT_EQ(finder.rest(), bytesOf("00 FF"));
}

TEST_F(FrameFinderTest, TwoFramesAtOnceComeOneByOne)
{
    finder.add(reply + bytesOf("AA") + framed("01 83 02"));

    EXPECT_EQ(next(), '|' + replyHex);
    EXPECT_EQ(next(), "aa|01 83 02 c0 f1");
    EXPECT_EQ(next(), "-");
}

TEST_F(FrameFinderTest, AFrameIsFoundBehindWhatLooksLikeItsBeginning)
{
    finder.add(bytesOf("01 03 04 12") + reply);

    EXPECT_EQ(next(), "01 03 04 12|" + replyHex);
}

TEST_F(FrameFinderTest, AFrameIsFoundBehindALookAlikeThatIsStillGrowing)
{
    more = { 13 };
    finder.add(bytesOf("01 03") + reply);

    EXPECT_EQ(next(), "01 03|" + replyHex) << "11 bytes, and the look-alike would have 13";
}

TEST_F(FrameFinderTest, AFrameMayBeginWithTheLastByteOfJunk)
{
    finder.add(bytesOf("01 01 03 04"));
    EXPECT_EQ(next(), "-");

    finder.add(bytesOf("12 34 56 78 81 07"));
    EXPECT_EQ(next(), "01|" + replyHex);
}

TEST_F(FrameFinderTest, OfTwoLengthsThatMayBeginAlikeTheOneWithTheRightCrcIsTaken)
{
    more = { 7 };
    finder.add(framed("01 03 02 12 34"));
    EXPECT_EQ(next(), "|01 03 02 12 34 b5 33");

    finder.add(reply);
    EXPECT_EQ(next(), '|' + replyHex);
}

TEST_F(FrameFinderTest, WhatAReadReplyHoldsIsNotTakenOutOfIt)
{
    more = { 13 };
    const QByteArray holder = framed("01 03 08 01 83 02 C0 F1 00 00 00"); // a refusal, for one

    for (int i = 0; i < 12; ++i) {
        finder.add(holder.mid(i, 1));
        ASSERT_EQ(next(), "-") << "byte " << i;
    }
    finder.add(holder.mid(12));

    EXPECT_EQ(next(), '|' + holder.toHex(' ').toStdString());
    EXPECT_EQ(next(), "-");
}

TEST_F(FrameFinderTest, WhatTheEchoOfAWriteHoldsIsNotTakenOutOfIt)
{
    const QByteArray holder = framed("01 10 F0 00 00 03 06 01 83 02 C0 F1 00");

    for (int i = 0; i < 14; ++i) {
        finder.add(holder.mid(i, 1));
        ASSERT_EQ(next(), "-") << "byte " << i;
    }
    finder.add(holder.mid(14));

    EXPECT_EQ(next(), '|' + holder.toHex(' ').toStdString());
    EXPECT_EQ(next(), "-");
}

TEST_F(FrameFinderTest, WhatAFrameBehindJunkHoldsIsNotTakenOutOfItEither)
{
    more = { 13 };
    const QByteArray holder = framed("01 03 08 01 83 02 C0 F1 00 00 00");
    finder.add(bytesOf("00 FF 00 FF") + holder.left(12));
    ASSERT_EQ(next(), "-");

    finder.add(holder.mid(12));

    EXPECT_EQ(next(), "00 ff 00 ff|" + holder.toHex(' ').toStdString());
}

TEST_F(FrameFinderTest, AReplyIsNotPutOffForAnEchoThatWouldBeginWithItsVeryBytes)
{
    finder.add(bytesOf("01 10 18 B8 00 03 06 8D"));

    EXPECT_EQ(next(), "|01 10 18 b8 00 03 06 8d") << "its CRC begins like a count of six bytes";
}

TEST_F(FrameFinderTest, NothingOfWhatAReadReplyHoldsIsTakenOutOfIt)
{
    more = { 15 };
    const QByteArray holder = framed("01 03 0A 01 83 02 C0 F1 01 83 02 C0 F1"); // two refusals
    finder.add(holder.left(14));
    ASSERT_EQ(next(), "-");

    finder.add(holder.mid(14));

    EXPECT_EQ(next(), '|' + holder.toHex(' ').toStdString());
}

TEST_F(FrameFinderTest, WhatHasNotAnnouncedItsLengthYetHidesNothing)
{
    finder.add(bytesOf("01") + framed("10 83 02"));

    EXPECT_EQ(next(), "01|10 83 02 90 f4") << "01 10 may begin an echo of 15 bytes";
}

TEST_F(FrameFinderTest, WhatAnnouncesAnotherLengthHidesNothing)
{
    finder.add(bytesOf("01 10 F0 00 00 02 04") + framed("01 83 02"));

    EXPECT_EQ(next(), "01 10 f0 00 00 02 04|01 83 02 c0 f1");
}

TEST_F(FrameFinderTest, WhatADamagedFrameHoldsIsTakenOutOfIt)
{
    more = { 13 };
    finder.add(bytesOf("01 03 08 AA 01 83 02 C0 F1 00"));
    EXPECT_EQ(next(), "-");

    finder.add(bytesOf("00 00 00"));

    EXPECT_EQ(next(), "01 03 08 aa|01 83 02 c0 f1") << "else a cut reply would hide what follows";
}

TEST_F(FrameFinderTest, WhatOnlyBeginsLikeAFrameHidesNothing)
{
    more = { 13 };
    finder.add(bytesOf("01 03") + framed("01 83 02"));

    EXPECT_EQ(next(), "01 03|01 83 02 c0 f1") << "one byte is no byte count of 8";
}

TEST_F(FrameFinderTest, AFrameThatHasBegunIsWaitedForAsAWhole)
{
    EXPECT_EQ(finder.missing(), 5) << "of the shortest frame";

    finder.add(bytesOf("01"));
    EXPECT_EQ(finder.missing(), 4) << "it may be a station";

    finder.add(bytesOf("03"));
    EXPECT_EQ(finder.missing(), 7);

    finder.add(bytesOf("04 12 34 56 78 81"));
    EXPECT_EQ(finder.missing(), 1);
}

TEST_F(FrameFinderTest, TheShorterOfTwoLengthsIsWaitedForFirst)
{
    more = { 7 };
    finder.add(bytesOf("01 03"));
    EXPECT_EQ(finder.missing(), 5);

    finder.add(bytesOf("04 12 34 56 78"));
    EXPECT_EQ(finder.missing(), 1) << "not looked at yet";

    EXPECT_EQ(next(), "-");
    EXPECT_EQ(finder.missing(), 2);
}

TEST_F(FrameFinderTest, BehindJunkTheShortestFrameIsWaitedFor)
{
    finder.add(bytesOf("00 FF 00"));

    EXPECT_EQ(finder.missing(), 4) << "the last byte may be a station";
}

TEST_F(FrameFinderTest, TheRestIsTakenOnce)
{
    finder.add(bytesOf("01 03 04"));

    EXPECT_EQ(finder.takeRest(), bytesOf("01 03 04"));
    EXPECT_TRUE(finder.takeRest().isEmpty());
    EXPECT_EQ(finder.missing(), 5);

    finder.add(reply.mid(3));
    EXPECT_EQ(next(), "-") << "its beginning was taken";
}

TEST_F(FrameFinderTest, TheRestIsLookedAtAnewWhereMoreIsExpected)
{
    finder.add(framed("01 03 02 12 34"));
    ASSERT_EQ(next(), "-");
    more = { 7 };
    EXPECT_EQ(next(), "-");

    finder.lookAgain();

    EXPECT_EQ(next(), "|01 03 02 12 34 b5 33");
}

TEST_F(FrameFinderTest, ABabblingKilobyteIsLookedAtOnce)
{
    const QByteArray babble = bytesOf("01 03").repeated(512);
    for (int i = 0; i < babble.size(); ++i) {
        finder.add(babble.mid(i, 1));
        ASSERT_EQ(next(), "-");
    }
    EXPECT_EQ(asked, 1023) << "once for each two bytes";
    EXPECT_EQ(finder.rest().size(), 1024);

    finder.add(reply);

    EXPECT_EQ(next(), babble.toHex(' ').toStdString() + '|' + replyHex);
}
