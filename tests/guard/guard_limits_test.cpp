// SPDX-License-Identifier: MIT
// Where the guard's bounds lie, to the byte and to the microsecond.
#include "guarded_station.h"

using namespace dx4::host;
using std::chrono::milliseconds;

namespace {

/// A station that owes the reply to A, which was lost.
class GuardLimits : public GuardedStation {
protected:
    void oweA()
    {
        inverter.replies = { replacedBy({}) };
        guard.run(readA);
    }
};

/// Counts how often it is asked to wait for silence, and may break as it is listened to.
class WatchedLine : public MemoryLine {
public:
    using MemoryLine::MemoryLine;

    bool awaitSilence(Duration gap, Duration deadline) override
    {
        ++silences;
        return MemoryLine::awaitSilence(gap, deadline);
    }
    QByteArray receive(int count, Duration deadline) override
    {
        if (breaks && deadline > now())
            unplug();
        return MemoryLine::receive(count, deadline);
    }

    int silences = 0;
    bool breaks = false;
};

} // namespace

TEST_F(GuardLimits, ThreeBytesBeforeAReplyAreNoDamagedEcho)
{
    for (int i = 0; i < 3; ++i)
        inverter.replies.push_back(
            replacedBy(QByteArray::fromHex("FF FF FF") + framed("01 03 02 00 00")));

    const Reply reply = guard.run(run(1));

    EXPECT_EQ(reply.bytes, framed(runHex)) << "one copy is enough on a clean line";
    EXPECT_EQ(guard.report().echoProbes, 3);
}

TEST_F(GuardLimits, TheShortestFrameOfAnotherStationIsNoJunk)
{
    inverter.replies = { replacedBy(framed("02 83 02") + replyA) };

    const Reply reply = guard.run(readA);

    EXPECT_EQ(reply.bytes, replyA);
    EXPECT_EQ(guard.report().foreignFrames, 1);
    EXPECT_EQ(guard.report().foreignStation, 2);
    EXPECT_EQ(guard.report().junkBytes, 0);
}

TEST_F(GuardLimits, ARequestBehindReadsOfTheGuardsOwnGoesOutWhileThereIsTimeForIt)
{
    oweA();
    const Duration begin = inverter.line.now();

    // The read takes 15 ms, the gap 3.5 ms and the request 8 ms.
    guard.runWithin(readB, { milliseconds(100), begin + Duration(26500), false });

    EXPECT_EQ(inverter.line.sent().last(), framed("01 03 D0 08 00 02"));
    EXPECT_EQ(guard.report().clearingReads, 1);
    EXPECT_EQ(inverter.line.now(), begin + Duration(26500));
}

TEST_F(GuardLimits, ARequestBehindReadsThatTookItsTimeIsWithheld)
{
    oweA();
    const Duration begin = inverter.line.now();

    const Reply reply =
        guard.runWithin(readB, { milliseconds(100), begin + Duration(26499), false });

    EXPECT_EQ(reply.kind, Reply::Kind::Withheld);
    EXPECT_TRUE(reply.canRetry);
    EXPECT_EQ(reply.turnaround, milliseconds(15));
    EXPECT_EQ(guard.report().verdict.cause, ReplyCause::Silence) << "not that of the read";
    EXPECT_EQ(guard.report().clearingReads, 1);
    EXPECT_EQ(inverter.line.sent().last(), framed("01 03 20 00 00 01"));
}

TEST_F(GuardLimits, ARequestWithoutSuchReadsGoesOutHoweverLittleTimeThereIs)
{
    const Reply reply = guard.runWithin(readA, { milliseconds(100), milliseconds(1), false });

    EXPECT_EQ(reply.kind, Reply::Kind::Silence);
    EXPECT_EQ(inverter.line.sent().size(), 1);
}

TEST_F(GuardLimits, AWriteBehindReadsForTheAdapterIsWithheldToo)
{
    // Three reads take 15 ms each, with a gap between them.
    const Reply reply = guard.runWithin(run(1), { milliseconds(100), milliseconds(60), false });

    EXPECT_EQ(reply.kind, Reply::Kind::Withheld);
    EXPECT_EQ(guard.report().echoProbes, 3);
    EXPECT_EQ(inverter.line.sent().size(), 3);
}

TEST_F(GuardLimits, WhatIsNotAskedTakesNoTime)
{
    FRAME_PRO none = asked("01 03 D0 00 00 00");

    const Reply reply = guard.run(none);

    EXPECT_EQ(reply.kind, Reply::Kind::NotAsked);
    EXPECT_EQ(reply.turnaround.count(), 0);
}

TEST_F(GuardLimits, ALateReplyIsCountedWithOneExchangeAlone)
{
    oweA();
    inverter.say(replyA, milliseconds(5));
    guard.run(readOfThree);
    ASSERT_EQ(guard.report().lateReplies, 1);

    guard.listen();

    EXPECT_EQ(guard.report().lateReplies, 0);
    guard.run(readOfThree);
    EXPECT_EQ(guard.report().lateReplies, 0);
}

TEST_F(GuardLimits, AFrameThatIsHeardInTwoHalvesIsOne)
{
    oweA();
    inverter.line.inject(replyA.left(4));
    inverter.line.advance(milliseconds(4));
    guard.listen();
    inverter.line.inject(replyA.mid(4));
    inverter.line.advance(milliseconds(5));

    guard.listen();

    EXPECT_EQ(guard.report().lateReplies, 1);
}

TEST_F(GuardLimits, HalvesOfAFrameFromTwoLinesAreNone)
{
    oweA();
    inverter.line.inject(replyA.left(4));
    inverter.line.advance(milliseconds(4));
    guard.listen();

    guard.forgetLine();
    inverter.line.inject(replyA.mid(4));
    inverter.line.advance(milliseconds(5));
    guard.listen();

    EXPECT_EQ(guard.report().lateReplies, 0);
}

TEST_F(GuardLimits, WhatReadsOfTheGuardsOwnMetIsNotWhatTheRequestMet)
{
    oweA();
    inverter.replies = { replacedBy(QByteArray::fromHex("FF FF FF FF") + framed("02 83 02")
                                    + framed("01 03 02 00 00")) };

    const Reply reply = guard.run(readB);

    EXPECT_EQ(reply.bytes, replyB);
    EXPECT_EQ(guard.report().clearingReads, 1);
    EXPECT_EQ(guard.report().bytesHeard, 9);
    EXPECT_EQ(guard.report().junkBytes, 0);
    EXPECT_EQ(guard.report().foreignFrames, 0);
    EXPECT_FALSE(guard.report().echoStripped);
}

TEST_F(GuardLimits, AnAnswersDelayIsWithoutTheTimeOfItsBytesAndOfJunk)
{
    guard.run(readA);
    EXPECT_EQ(guard.report().answerDelay.count(), 0);
    EXPECT_EQ(guard.answerTime(1), Duration(0));
    inverter.delays = { milliseconds(30) };
    inverter.replies = { replacedBy(QByteArray::fromHex("FF FF FF FF") + replyA) };

    const Reply reply = guard.run(readA);

    EXPECT_EQ(reply.turnaround, milliseconds(8 + 30 + 4 + 9));
    EXPECT_EQ(guard.report().answerDelay, milliseconds(30));
    EXPECT_EQ(guard.answerTime(1), milliseconds(34)) << "end of the request to its reply";
}

TEST_F(GuardLimits, AFrameOfAnotherBeforeEachReplyLeavesTheAdapterUnknown)
{
    for (int i = 0; i < 3; ++i)
        inverter.replies.push_back(replacedBy(framed("02 83 02") + framed("01 03 02 00 00")));

    const Reply reply = guard.run(run(1));

    EXPECT_EQ(reply.kind, Reply::Kind::Silence) << "its one copy may be an echo";
}

TEST_F(GuardLimits, TheGapIsThatOfTheLineAndWhatTheStationNeedsBesides)
{
    guard.setExtraGap(2, milliseconds(30));

    EXPECT_EQ(guard.gapBefore(1).count(), 3500);
    EXPECT_EQ(guard.gapBefore(2).count(), 33500);
}

TEST_F(GuardLimits, ALineThatChattersIsWaitedForAsLongAsAReply)
{
    inverter.isDead = true;
    inverter.line.inject(QByteArray(400, 'x')); // for 400 ms
    inverter.line.advance(milliseconds(1));

    guard.runWithin(readA, { Duration(0), std::nullopt, false });

    EXPECT_EQ(inverter.line.sent().size(), 1);
    EXPECT_EQ(inverter.line.now(), milliseconds(1 + 100 + 8 + 9));
}

TEST_F(GuardLimits, ALineThatChattersIsWaitedForAsLongAsTwoGapsWhereTheyAreLonger)
{
    inverter.isDead = true;
    guard.setExtraGap(1, Duration(76500)); // 80 ms with that of the line
    inverter.line.inject(QByteArray(400, 'x'));

    guard.runWithin(readA, { Duration(0), std::nullopt, false });

    EXPECT_EQ(inverter.line.now(), milliseconds(160 + 8 + 9));
}

TEST_F(GuardLimits, ALineThatChattersTakesNoTimeFromTheRequestItself)
{
    inverter.isDead = true;
    inverter.line.inject(QByteArray(400, 'x'));
    inverter.line.advance(milliseconds(1));

    guard.runWithin(readA, { milliseconds(100), milliseconds(50), false });

    EXPECT_EQ(inverter.line.sent().size(), 1);
    EXPECT_EQ(inverter.line.now(), milliseconds(50)) << "sent at 42 ms";
}

TEST_F(GuardLimits, WhoeverIsInAHurryEndsTheFirstSilenceWithinAGap)
{
    guard.setExtraGap(1, milliseconds(30));
    inverter.line.inject(QByteArray(400, 'x'));
    guard.setHurry([this] { return inverter.line.now() >= milliseconds(20); });

    const Reply reply = guard.run(readA);

    EXPECT_EQ(reply.kind, Reply::Kind::Withheld);
    EXPECT_TRUE(reply.canRetry);
    EXPECT_EQ(reply.turnaround, milliseconds(21));
    EXPECT_TRUE(inverter.line.sent().isEmpty());
}

TEST_F(GuardLimits, WhoeverIsInAHurryEndsAStationsGapWithinOneOfTheLine)
{
    guard.run(readA);
    guard.setExtraGap(1, milliseconds(300));
    const Duration begin = inverter.line.now();
    guard.setHurry([this, begin] { return inverter.line.now() >= begin + milliseconds(20); });

    const Reply reply = guard.run(readA);

    EXPECT_EQ(reply.kind, Reply::Kind::Withheld);
    EXPECT_EQ(reply.turnaround, milliseconds(21));
    EXPECT_EQ(inverter.line.sent().size(), 1);
}

TEST_F(GuardLimits, NobodysHurryKeepsWhatIsUrgent)
{
    guard.setHurry([] { return true; });

    const Reply held = guard.run(readA);
    const Reply urgent = guard.runWithin(readA, { milliseconds(100), std::nullopt, true });

    EXPECT_EQ(held.kind, Reply::Kind::Withheld);
    EXPECT_EQ(urgent.bytes, replyA);
}

TEST_F(GuardLimits, ReadsForTheAdapterAreToldFromWhatIsOwed)
{
    inverter.replies = { replacedBy({}) };
    guard.probe(1, { milliseconds(100), std::nullopt, false });

    const Reply reply = guard.run(run(1));

    EXPECT_EQ(reply.bytes, framed(runHex));
    EXPECT_EQ(inverter.line.sent().at(1), framed("01 03 20 00 00 02")) << "not the same again";
}

TEST(GuardOnALineThatBreaks, TheTimeOfTheRequestIsTold)
{
    WatchedLine line([](const QByteArray &) { return MemoryLine::Answer {}; }, slowLine());
    GuardedExchange guard(line);
    line.advance(milliseconds(1000));
    line.breaks = true;

    const Reply reply = guard.run(readA);

    EXPECT_EQ(reply.kind, Reply::Kind::LineDown);
    EXPECT_EQ(reply.turnaround, milliseconds(8));
    EXPECT_TRUE(reply.canRetry);
}

TEST(GuardOnALineThatBreaks, TheNextOneIsAskedWhetherItWasSilent)
{
    WatchedLine line(
        [](const QByteArray &) {
            return MemoryLine::Answer { replyA, Duration {} };
        },
        slowLine());
    GuardedExchange guard(line);
    guard.run(readA);
    guard.run(readA);
    EXPECT_EQ(line.silences, 1);

    guard.forgetLine();
    guard.run(readA);

    EXPECT_EQ(line.silences, 2);
}
