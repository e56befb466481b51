// SPDX-License-Identifier: MIT
// What the guard asks by itself before a request that a late reply could pass for.
#include "guarded_station.h"
#include "host/exchange/guard_requests.h"
#include "trial_requests.h"

using namespace dx4::host;
using std::chrono::milliseconds;

namespace {

const QByteArray statusRead = framed("01 03 20 00 00 01");
const QByteArray readOfB = framed("01 03 D0 08 00 02");

class ClearingReads : public GuardedStation {
protected:
    /// Asks for something that the station never answers.
    void askInVain(const FRAME_PRO &request)
    {
        inverter.replies = { replacedBy({}) };
        guard.run(request);
    }

    /// Frames sent since the last call.
    QVector<QByteArray> sent()
    {
        const QVector<QByteArray> all = inverter.line.sent();
        const QVector<QByteArray> since = all.mid(seen);
        seen = static_cast<int>(all.size());
        return since;
    }

    int seen = 0;
};

} // namespace

TEST_F(ClearingReads, BeginWithTheStatusWordAndTheRequestFollowsItsAnswer)
{
    askInVain(readA);
    sent();

    const Reply reply = guard.run(readB);

    EXPECT_EQ(reply.bytes, replyB);
    EXPECT_EQ(guard.report().clearingReads, 1);
    EXPECT_EQ(sent(), (QVector<QByteArray> { statusRead, readOfB }));
}

TEST_F(ClearingReads, AreNotNeededForOtherLengthsAndStations)
{
    askInVain(readA);
    sent();

    guard.run(readOfThree);
    guard.run(asked("02 03 D0 08 00 02"));

    EXPECT_EQ(sent(),
              (QVector<QByteArray> { framed("01 03 D0 00 00 03"), framed("02 03 D0 08 00 02") }));
}

TEST_F(ClearingReads, WithoutAnAnswerWithholdTheRequest)
{
    inverter.isDead = true;
    guard.run(readA);
    sent();

    const Reply reply = guard.run(readB);

    EXPECT_EQ(reply.kind, Reply::Kind::Withheld);
    EXPECT_TRUE(reply.canRetry);
    EXPECT_TRUE(reply.bytes.isEmpty());
    EXPECT_EQ(reply.turnaround, milliseconds(8 + 100 + 7));
    EXPECT_EQ(guard.report().verdict.cause, ReplyCause::Silence);
    EXPECT_EQ(sent(), QVector<QByteArray> { statusRead });
}

TEST_F(ClearingReads, OfADeadStationAreTheSameOnceMoreEachTime)
{
    inverter.isDead = true;
    guard.run(readA);
    sent();

    for (int i = 0; i < 4; ++i)
        guard.run(readB);

    EXPECT_EQ(sent(), (QVector<QByteArray> { statusRead, statusRead, statusRead, statusRead }));
}

TEST_F(ClearingReads, GoOnWithAnotherLengthWhereOneOfTheirOwnIsStillOwed)
{
    const FRAME_PRO faultCode = asked("01 03 20 01 00 01"); // as long as the status word
    askInVain(asked("01 03 D0 00 00 01"));
    askInVain(faultCode); // withheld: its clearing read, of two registers, has no answer
    sent();

    const Reply reply = guard.run(faultCode);

    EXPECT_EQ(reply.bytes, framed("01 03 02 00 00"));
    EXPECT_EQ(sent(),
              (QVector<QByteArray> { framed("01 03 20 00 00 02"), framed("01 03 20 01 00 01") }));
}

TEST_F(ClearingReads, ThatAreRefusedClearAsWell)
{
    askInVain(writeMany("00 07 00 08", 1));
    inverter.replies = { replacedBy(framed("01 83 02")) };

    const Reply reply = guard.run(writeMany("00 09 00 0A", 2));

    EXPECT_EQ(reply.bytes, framed("01 10 F0 00 00 02"));
    EXPECT_EQ(guard.report().clearingReads, 1);
}

TEST_F(ClearingReads, BeginWithAnotherOneAfterARefusalThatMayHaveBeenMeant)
{
    askInVain(readA);
    askInVain(readA);
    inverter.replies = { replacedBy(framed("01 83 02")) };
    const Reply refused = guard.run(readB); // by either
    askInVain(readA);
    sent();

    const Reply reply = guard.run(readB);

    EXPECT_EQ(refused.kind, Reply::Kind::Withheld);
    EXPECT_EQ(reply.bytes, replyB);
    EXPECT_EQ(sent(), (QVector<QByteArray> { framed("01 03 D0 00 00 03"), readOfB }));
}

TEST_F(ClearingReads, BeginWithAnotherOneAfterSuchARefusalAlsoWhereTheFirstIsOwedNoMore)
{
    askInVain(readA);
    askInVain(readA);
    inverter.replies = { replacedBy(framed("01 83 02")) };
    guard.run(readB);
    inverter.replies = { replacedBy(framed("01 03 02 00 01")) }; // the status word, late
    guard.run(readA);
    sent();

    guard.run(readB);

    EXPECT_EQ(sent(), (QVector<QByteArray> { framed("01 03 D0 08 00 01"), readOfB }));
}

TEST_F(ClearingReads, BeginWithTheStatusWordAgainOnceTheStationHasAnswered)
{
    askInVain(readA);
    askInVain(readA);
    inverter.replies = { replacedBy(framed("01 83 02")) };
    guard.run(readB);
    inverter.replies = { replacedBy(framed("01 03 02 00 01")) }; // the status word, late
    guard.run(readA);
    guard.run(readB); // is answered
    askInVain(readA);
    sent();

    guard.run(readB);

    EXPECT_EQ(sent(), (QVector<QByteArray> { statusRead, readOfB }));
}

TEST_F(ClearingReads, BeginWithTheStatusWordWhereARefusalCameBeforeTheOneThatHadNoAnswer)
{
    askInVain(readA);
    inverter.replies = { replacedBy(framed("01 83 02")) };
    guard.run(readOfThree); // hears the refusal, which may be that of A
    askInVain(readA);
    askInVain(readB); // its clearing read has no answer
    inverter.replies = { replacedBy(framed("01 03 02 00 01")) }; // the status word, late
    guard.run(readA);
    sent();

    guard.run(readB);

    EXPECT_EQ(sent(), (QVector<QByteArray> { statusRead, readOfB }));
}

TEST_F(ClearingReads, ThatAreTheLastRequestAreNotRepeatedWhereTheyCouldBeMistaken)
{
    askInVain(asked("01 03 F0 00 00 01"));
    inverter.replies = { replacedBy({}) };
    guard.runWithin(statusWordRead(1), { milliseconds(100), std::nullopt, true });
    sent();

    guard.run(asked("01 03 D0 00 00 01"));

    EXPECT_EQ(sent(),
              (QVector<QByteArray> { framed("01 03 20 00 00 02"), framed("01 03 D0 00 00 01") }));
}

TEST_F(ClearingReads, AreLeftOutWhereEveryLengthIsOwed)
{
    inverter.isDead = true;
    for (int count = 1; count <= 16; ++count)
        guard.run(readOf(1, 0xF000, count));
    sent();

    const Reply reply = guard.run(readB);

    EXPECT_EQ(reply.kind, Reply::Kind::Withheld);
    EXPECT_EQ(reply.turnaround, milliseconds(100)) << "it was listened for";
    EXPECT_EQ(guard.report().clearingReads, 0);
    EXPECT_TRUE(sent().isEmpty());
}

TEST_F(ClearingReads, AreNotNeededOnceALateReplyIsHeardWhileListening)
{
    for (int count = 2; count <= 16; ++count) {
        inverter.replies.push_back(replacedBy({}));
        guard.run(readOf(1, 0xF000, count));
    }
    inverter.replies = { replacedBy({}) };
    guard.run(readOf(1, 0xF000, 1));
    inverter.say(framed("01 03 02 00 07"), milliseconds(30)); // to the last one
    sent();

    const Reply reply = guard.run(readB);

    EXPECT_EQ(reply.bytes, replyB);
    EXPECT_EQ(guard.report().lateReplies, 1);
    EXPECT_EQ(sent(), QVector<QByteArray> { readOfB });
}

TEST_F(ClearingReads, OfAStationThatWasLateArePutOffForTwiceAsLongEachTime)
{
    askForALate(150);
    inverter.isDead = true;
    guard.run(readOfThree); // hears A late
    guard.run(readA);
    sent();
    QVector<int> reads;

    for (int i = 0; i < 24; ++i) {
        guard.run(readB);
        reads.append(static_cast<int>(sent().size()));
    }

    EXPECT_EQ(reads, (QVector<int> { 1, 0, 1, 0, 0, 1, 0, 0, 0, 0, 1, 0,
                                     0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0 }));
}

TEST_F(ClearingReads, EndWithTheMomentThatTheRequestHas)
{
    inverter.isDead = true;
    guard.run(readA);
    const Duration until = inverter.line.now() + milliseconds(40);

    const Reply reply = guard.runWithin(readB, { milliseconds(100), until, false });

    EXPECT_EQ(reply.kind, Reply::Kind::Withheld);
    EXPECT_EQ(inverter.line.now(), until);
}

TEST_F(ClearingReads, AreNeededNoMoreAfterEightTimeoutsAndAtLeastThreeSeconds)
{
    inverter.isDead = true;
    guard.run(readA);
    const Duration asked = inverter.line.now() - milliseconds(109);
    inverter.line.advance(asked + milliseconds(3000) - inverter.line.now());
    sent();

    const Reply reply = guard.run(readB);

    EXPECT_EQ(reply.kind, Reply::Kind::Silence);
    EXPECT_EQ(sent(), QVector<QByteArray> { readOfB });
}
