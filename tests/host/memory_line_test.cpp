// SPDX-License-Identifier: MIT
// The line in memory keeps the rules that every line keeps.
#include "host/line/memory_line.h"

#include <gtest/gtest.h>

#include <stdexcept>

using namespace dx4::host;
using std::chrono::milliseconds;

namespace {

/// 10000 bit/s: a character takes 1 ms, the gap is 3.5 ms.
LineSettings slow()
{
    LineSettings settings;
    settings.speed = 10000;
    return settings;
}

MemoryLine::Answer silence(const QByteArray &)
{
    return {};
}

MemoryLine::Answer hello(const QByteArray &)
{
    return { QByteArray("hello"), milliseconds(10) };
}

} // namespace

TEST(MemoryLine, SendingTakesTheTimeOfItsCharacters)
{
    MemoryLine line(silence, slow());

    const bool sent = line.send("12345678");

    EXPECT_TRUE(sent);
    EXPECT_EQ(line.now(), milliseconds(8));
    EXPECT_EQ(line.sent(), QVector<QByteArray> { "12345678" });
}

TEST(MemoryLine, ReceivingEndsWithTheLastByteAskedFor)
{
    MemoryLine line(hello, slow());
    line.send("?");

    const QByteArray received = line.receive(4, milliseconds(1000));

    EXPECT_EQ(received, QByteArray("hell"));
    EXPECT_EQ(line.now(), milliseconds(1 + 10 + 4));
}

TEST(MemoryLine, BytesBeyondStayInTheLine)
{
    MemoryLine line(hello, slow());
    line.send("?");
    line.receive(4, milliseconds(1000));

    const QByteArray received = line.receive(4, milliseconds(1000));

    EXPECT_EQ(received, QByteArray("o"));
    EXPECT_EQ(line.now(), milliseconds(1000));
}

TEST(MemoryLine, ADeadlineCutsAReplyShort)
{
    MemoryLine line(hello, slow());
    line.send("?");

    const QByteArray received = line.receive(5, milliseconds(13));

    EXPECT_EQ(received, QByteArray("he"));
    EXPECT_EQ(line.now(), milliseconds(13));
}

TEST(MemoryLine, DiscardingDropsWhatHasArrivedAndNoMore)
{
    MemoryLine line(silence, slow());
    line.inject("abcd");
    line.advance(milliseconds(2));

    const int dropped = line.discardInput();

    EXPECT_EQ(dropped, 2);
    EXPECT_EQ(line.receive(2, milliseconds(100)), QByteArray("cd"));
}

TEST(MemoryLine, SilenceCountsFromTheLastByte)
{
    MemoryLine line(hello, slow());
    line.send("?");
    line.receive(5, milliseconds(1000));

    const bool silent = line.awaitSilence(Duration(3500), milliseconds(1000));

    EXPECT_TRUE(silent);
    EXPECT_EQ(line.now(), Duration(16000 + 3500));
}

TEST(MemoryLine, ALineSilentForLongEnoughWaitsForNothing)
{
    MemoryLine line(silence, slow());
    line.advance(milliseconds(50));

    const bool silent = line.awaitSilence(Duration(3500), milliseconds(1000));

    EXPECT_TRUE(silent);
    EXPECT_EQ(line.now(), milliseconds(50));
}

TEST(MemoryLine, BytesThatArriveInTheGapStartItAfreshAndAreDropped)
{
    MemoryLine line(silence, slow());
    line.send("?");
    line.inject("ab", milliseconds(1));

    const bool silent = line.awaitSilence(Duration(3500), milliseconds(1000));

    EXPECT_TRUE(silent);
    EXPECT_EQ(line.now(), Duration(4000 + 3500));
    EXPECT_EQ(line.discardInput(), 0);
}

TEST(MemoryLine, SilenceCountsFromTheEndOfWhatWasSent)
{
    MemoryLine line(silence, slow());
    line.send("1234");

    const bool silent = line.awaitSilence(Duration(3500), milliseconds(1000));

    EXPECT_TRUE(silent);
    EXPECT_EQ(line.now(), Duration(4000 + 3500));
}

TEST(MemoryLine, SilenceCountsFromBytesThatCameBeforeAnybodyLooked)
{
    MemoryLine line(silence, slow());
    line.inject("ab", milliseconds(40)); // at 41 and 42 ms
    line.advance(milliseconds(43));

    const bool silent = line.awaitSilence(Duration(3500), milliseconds(1000));

    EXPECT_TRUE(silent);
    EXPECT_EQ(line.now(), Duration(42000 + 3500));
    EXPECT_EQ(line.discardInput(), 0);
}

TEST(MemoryLine, AByteAtTheEndOfTheGapComesAfterIt)
{
    MemoryLine line(silence, slow());
    line.send("?");
    line.inject("a", Duration(2500)); // at 4.5 ms

    const bool silent = line.awaitSilence(Duration(3500), milliseconds(1000));

    EXPECT_TRUE(silent);
    EXPECT_EQ(line.now(), Duration(4500));
}

TEST(MemoryLine, AByteAtTheDeadlineStillCounts)
{
    MemoryLine line(silence, slow());
    line.send("?");
    line.inject("a", milliseconds(1)); // at 3 ms

    const bool silent = line.awaitSilence(Duration(3500), milliseconds(3));

    EXPECT_FALSE(silent);
    EXPECT_EQ(line.now(), milliseconds(3));
    EXPECT_EQ(line.discardInput(), 0);
}

TEST(MemoryLine, TheDeadlineItselfIsInTimeForSilence)
{
    MemoryLine line(silence, slow());
    line.send("?");

    EXPECT_TRUE(line.awaitSilence(Duration(3500), Duration(4500)));
    EXPECT_FALSE(line.awaitSilence(Duration(3501), Duration(4500)));
}

TEST(MemoryLine, BytesThatArriveAtOneTimeKeepTheirOrder)
{
    MemoryLine line(silence, slow());
    line.inject("ab");
    line.inject("cd");

    EXPECT_EQ(line.receive(4, milliseconds(100)), QByteArray("acbd"));
}

TEST(MemoryLine, AClosedLineHasNothingAndTakesNoTime)
{
    MemoryLine line(silence, slow());
    line.inject("ab");
    line.close();

    const QByteArray whileClosed = line.receive(2, milliseconds(100));
    const Duration waited = line.now();
    line.open(nullptr);

    EXPECT_EQ(whileClosed, QByteArray());
    EXPECT_EQ(waited, milliseconds(0));
    EXPECT_EQ(line.receive(2, milliseconds(100)), QByteArray()) << "they went with the line";
}

TEST(MemoryLine, AChatteringLineIsNotSilentByTheDeadline)
{
    MemoryLine line(silence, slow());
    line.send("?");
    line.inject(QByteArray(100, 'x'));

    const bool silent = line.awaitSilence(Duration(3500), milliseconds(20));

    EXPECT_FALSE(silent);
    EXPECT_EQ(line.now(), milliseconds(20));
}

TEST(MemoryLine, AnUnpluggedLineRefusesUntilItIsPluggedInAndOpened)
{
    MemoryLine line(hello, slow());
    line.unplug();
    QString error;

    const bool sentWhileOut = line.send("?");
    const bool openedWhileOut = line.open(&error);
    line.plugIn();
    const bool openedAgain = line.open(nullptr);

    EXPECT_FALSE(sentWhileOut);
    EXPECT_FALSE(openedWhileOut);
    EXPECT_EQ(error, QStringLiteral("memory line: unplugged"));
    EXPECT_TRUE(openedAgain);
    EXPECT_TRUE(line.send("?"));
    EXPECT_EQ(line.sent().size(), 1) << "the first was not sent";
}

TEST(MemoryLine, NobodyNeedsToAskWhyItIsClosed)
{
    MemoryLine line(silence, slow());
    QString error;

    const bool openedFirst = line.open(&error);
    line.unplug();

    EXPECT_TRUE(openedFirst);
    EXPECT_EQ(error, QString());
    EXPECT_FALSE(line.open(nullptr));
}

TEST(MemoryLine, RefusesToBeWithoutAResponder)
{
    EXPECT_THROW(MemoryLine(nullptr), std::invalid_argument);
}

TEST(MemoryLine, AFrameThatMeetsArrivingBytesIsLostWithThem)
{
    int heard = 0;
    MemoryLine line(
        [&heard](const QByteArray &) {
            ++heard;
            return MemoryLine::Answer {};
        },
        slow());
    line.letFramesCollide();
    line.inject("abcdefghij", milliseconds(0)); // at 1 to 10 ms
    line.receive(4, milliseconds(4));

    const bool sent = line.send("1234");

    EXPECT_TRUE(sent) << "its sender does not notice";
    EXPECT_EQ(heard, 0);
    EXPECT_EQ(line.now(), milliseconds(8));
    EXPECT_EQ(line.receive(10, milliseconds(50)), QByteArray("ij"));
}

TEST(MemoryLine, AByteThatCameAsAFrameBeginsIsNotHit)
{
    MemoryLine line(hello, slow());
    line.letFramesCollide();
    line.inject("a");
    line.advance(milliseconds(1));

    line.send("?");

    EXPECT_EQ(line.receive(6, milliseconds(100)), QByteArray("ahello"));
}

TEST(MemoryLine, FramesDoNotCollideUntilTheyMay)
{
    MemoryLine line(hello, slow());
    line.inject("ab");

    line.send("??");

    EXPECT_EQ(line.receive(7, milliseconds(100)), QByteArray("abhello"));
}

TEST(MemoryLine, AFrameBetweenTwoOthersIsHeard)
{
    int heard = 0;
    MemoryLine line(
        [&heard](const QByteArray &) {
            ++heard;
            return MemoryLine::Answer {};
        },
        slow());
    line.letFramesCollide();
    line.inject("abcd", milliseconds(4)); // at 5 to 8 ms

    line.send("1234");

    EXPECT_EQ(heard, 1);
    EXPECT_EQ(line.receive(10, milliseconds(50)), QByteArray("abcd"));
}
