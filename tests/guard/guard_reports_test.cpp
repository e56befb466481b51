// SPDX-License-Identifier: MIT
// What the report of an exchange tells, and what it leaves to those before it.
#include "guarded_station.h"
#include "trial_requests.h"

#include <utility>

using namespace dx4::host;
using std::chrono::milliseconds;

namespace {

const QByteArray statusReply = framed("01 03 02 00 00");

class GuardReports : public GuardedStation {
protected:
    /// From so long after now on somebody is in a hurry.
    void hurryAfter(Duration span)
    {
        const Duration moment = inverter.line.now() + span;
        guard.setHurry([this, moment] { return inverter.line.now() >= moment; });
    }
};

} // namespace

TEST_F(GuardReports, OfABroadcastTellsNothingOfTheExchangeBefore)
{
    inverter.replies = { replacedBy(framed("02 83 02") + replyA) };
    guard.run(readA);

    guard.broadcast(5, { milliseconds(50), std::nullopt, true });

    EXPECT_EQ(guard.report().verdict.cause, ReplyCause::Silence);
    EXPECT_EQ(guard.report().foreignFrames, 0);
    EXPECT_EQ(guard.report().bytesHeard, 0);
    EXPECT_TRUE(guard.report().heardStations.isEmpty());
}

TEST_F(GuardReports, ABroadcastThatIsOverDoesNotComeBack)
{
    inverter.isDead = true;
    guard.broadcast(0, { Duration(0), std::nullopt, true });
    guard.broadcast(5, { Duration(0), std::nullopt, true });
    inverter.say(framed("00 06 10 01 00 00"), milliseconds(5));
    inverter.line.advance(milliseconds(20));

    guard.listen();

    EXPECT_EQ(guard.report().heardStations, QVector<int> { 0 }) << "another master's";
    EXPECT_EQ(guard.report().foreignFrames, 1);
}

TEST_F(GuardReports, AReadForTheAdapterThatIsWithheldIsNotCounted)
{
    guard.setHurry([] { return true; });

    const Reply reply = guard.run(run(1));

    EXPECT_EQ(reply.kind, Reply::Kind::Withheld);
    EXPECT_EQ(guard.report().echoProbes, 0);
    EXPECT_TRUE(inverter.line.sent().isEmpty());
}

TEST_F(GuardReports, AClearingReadThatIsWithheldIsNotCounted)
{
    inverter.replies = { replacedBy({}) };
    guard.run(readA);
    guard.setExtraGap(1, milliseconds(300));
    hurryAfter(milliseconds(20));

    const Reply reply = guard.run(readB);

    EXPECT_EQ(reply.kind, Reply::Kind::Withheld);
    EXPECT_EQ(guard.report().clearingReads, 0);
    EXPECT_EQ(inverter.line.sent().size(), 1);
}

TEST_F(GuardReports, AWriteThatIsWithheldHasNotTheVerdictOfTheReadBeforeIt)
{
    hurryAfter(milliseconds(1)); // while the first read is answered

    const Reply reply = guard.run(run(1));

    EXPECT_EQ(reply.kind, Reply::Kind::Withheld);
    EXPECT_EQ(guard.report().verdict.cause, ReplyCause::Silence);
    EXPECT_EQ(guard.report().echoProbes, 1);
}

TEST_F(GuardReports, AnEchoAndAForeignFrameAheadOfAClearingReadsAnswerAreNotTheRequests)
{
    inverter.replies = { replacedBy({}) };
    guard.run(readA);
    inverter.replies = { replacedBy(framed("02 83 02") + framed("01 03 20 00 00 01")
                                    + statusReply) };

    const Reply reply = guard.run(readB);

    EXPECT_EQ(reply.bytes, replyB);
    EXPECT_EQ(guard.report().clearingReads, 1);
    EXPECT_EQ(guard.report().foreignFrames, 0);
    EXPECT_FALSE(guard.report().echoStripped);
}

TEST_F(GuardReports, JunkIsCountedOnlyWhileAReplyIsAwaited)
{
    inverter.replies = { replacedBy({}) };
    guard.run(readA);
    inverter.say(QByteArray::fromHex("FF FF") + replyA, milliseconds(5));
    inverter.line.advance(milliseconds(20));

    guard.listen();

    EXPECT_EQ(guard.report().lateReplies, 1);
    EXPECT_EQ(guard.report().junkBytes, 0);
}

TEST_F(GuardReports, AnEchoAddsItsOwnTimeToTheWaitForTheReply)
{
    inverter.adapterEchoes = true;
    inverter.isDead = true;

    const Reply reply = guard.run(readA);

    EXPECT_EQ(reply.kind, Reply::Kind::Silence);
    EXPECT_EQ(reply.turnaround, milliseconds(8 + 100 + 9 + 8));
}

TEST_F(GuardReports, ACopyThatComesAfterItsEchoIsALateReplyThoughOthersAreEchoedMeanwhile)
{
    inverter.adapterEchoes = true;
    learnTheAdapter();
    inverter.isDead = true;
    guard.run(run(1));
    inverter.line.inject(framed(runHex), milliseconds(40)); // behind the echo of the read

    guard.run(readA);

    EXPECT_TRUE(guard.report().echoStripped);
    EXPECT_EQ(guard.report().lateReplies, 1);
}

TEST_F(GuardReports, ThreeWritesThatAreRefusedTellThatTheAdapterDoesNotEcho)
{
    for (int tag = 1; tag <= 3; ++tag) {
        inverter.replies = { replacedBy(framed("01 86 02")) };
        guard.runWithin(run(tag), { milliseconds(100), std::nullopt, true });
    }

    const Reply reply = guard.runWithin(run(4), { milliseconds(100), std::nullopt, true });

    EXPECT_EQ(reply.bytes, framed(runHex)) << "one copy is its reply";
}

TEST_F(GuardReports, LateRepliesThatAreOnlyListenedToRaiseTheTimeoutToo)
{
    inverter.isDead = true;
    guard.run(readA);
    guard.run(readOfThree);
    guard.run(readOf(1, 0xF000, 4));
    inverter.say(replyA + replyToThree + framed("01 03 08 00 00 00 00 00 00 00 00"),
                 milliseconds(5));
    inverter.line.advance(milliseconds(50));

    guard.listen();

    EXPECT_EQ(guard.report().lateReplies, 3);
    EXPECT_EQ(guard.timeoutOf(1), Duration(487500)) << "390 ms and a quarter";
}

TEST_F(GuardReports, AFrameThatBeginsBehindAKilobyteOfBabbleIsForgotten)
{
    for (const auto &[babble, heard] : { std::pair(1020, 1), std::pair(1021, 0) }) {
        GuardedExchange fresh { inverter.line };
        inverter.replies = { replacedBy({}) };
        fresh.run(readA);
        inverter.line.inject(QByteArray(babble, 'x') + replyA.left(4));
        inverter.line.advance(milliseconds(babble + 4));
        fresh.listen();
        fresh.listen(); // for what is more than a kilobyte
        inverter.line.inject(replyA.mid(4));
        inverter.line.advance(milliseconds(5));

        fresh.listen();

        EXPECT_EQ(fresh.report().lateReplies, heard) << babble << " bytes ahead of it";
    }
}
