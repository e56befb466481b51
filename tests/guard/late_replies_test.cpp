// SPDX-License-Identifier: MIT
// Late replies, one case each: what is believed, what is withheld, and what is told.
#include "guarded_station.h"
#include "host/exchange/cycle.h"

#include <QJsonObject>

using namespace dx4::host;
using std::chrono::milliseconds;

namespace {

class LateReplies : public GuardedStation { };

QByteArray flipped(QByteArray frame, int bit)
{
    frame[bit / 8] = static_cast<char>(frame.at(bit / 8) ^ (1 << (bit % 8)));
    return frame;
}

} // namespace

TEST_F(LateReplies, AreNotBelievedForAnotherReadOfTheirLength)
{
    const Reply silent = askForALate(150);

    const int tries = triesForB();

    EXPECT_EQ(silent.kind, Reply::Kind::Silence);
    EXPECT_EQ(tries, 1);
    EXPECT_EQ(heardLate, 1);
}

TEST_F(LateReplies, AreBelievedForTheSameReadOnceMore)
{
    askForALate(150);

    const Reply reply = guard.run(readA);

    EXPECT_EQ(reply.bytes, replyA);
    EXPECT_EQ(reply.turnaround, milliseconds(50)) << "the first one";
    EXPECT_EQ(guard.report().lateReplies, 0);
}

TEST_F(LateReplies, ThatBeginBeforeTheWaitEndsAreHeardToTheirEnd)
{
    const Reply cut = askForALate(105); // nine bytes, and the wait ends after 109 ms

    EXPECT_EQ(cut.kind, Reply::Kind::Incomplete);
    EXPECT_EQ(triesForB(), 1);
    EXPECT_EQ(heardLate, 1);
}

TEST_F(LateReplies, AreNotSettledByNoise)
{
    askForALate(180);
    inverter.line.inject(QByteArray::fromHex("01 03 04 55 55 55 55 00 00"), milliseconds(10));

    EXPECT_EQ(triesForB(), 1);
    EXPECT_EQ(heardLate, 1);
}

TEST_F(LateReplies, AreNotSettledByAForeignReplyOfEqualLength)
{
    askForALate(180);
    inverter.line.inject(framed("02 03 04 55 55 55 55"), milliseconds(10));

    EXPECT_EQ(triesForB(), 1);
    EXPECT_EQ(heardLate, 1);
}

TEST_F(LateReplies, AreNotSettledByTheBroadcastOfAnotherMaster)
{
    askForALate(180);
    inverter.line.inject(framed("00 06 10 01 00 05"), milliseconds(10));

    EXPECT_EQ(triesForB(), 1);
    EXPECT_EQ(heardLate, 1);
}

TEST_F(LateReplies, AreStillOwedWhereDamagedBytesBeganLikeThem)
{
    for (int bit = 16; bit < 72; ++bit) { // behind station and function
        SCOPED_TRACE("bit " + std::to_string(bit));
        inverter.replies = { replacedBy({}) };
        inverter.line.inject(flipped(replyA, bit), milliseconds(10));
        guard.run(readA);
        const ReplyCause cause = guard.report().verdict.cause;
        inverter.say(replyA, milliseconds(10));

        ASSERT_EQ(cause, ReplyCause::BadCrc);
        ASSERT_EQ(triesForB(), 1);
    }
    EXPECT_EQ(heardLate, 56);
}

TEST_F(LateReplies, AfterAFlippedBitInAnEchoAreNotBelievedForAnotherRead)
{
    inverter.adapterEchoes = true;
    for (int bit = 0; bit < 64; ++bit) {
        SCOPED_TRACE("bit " + std::to_string(bit));
        learnTheAdapter();
        inverter.echoes = { replacedBy(flipped(framed("01 03 D0 00 00 02"), bit)) };

        const Reply reply = askForALate(160);

        ASSERT_TRUE(reply.bytes.isEmpty());
        ASSERT_EQ(triesForB(), 1);
    }
    EXPECT_EQ(heardLate, 64);
}

TEST_F(LateReplies, AfterAFlippedBitInTheEchoOfAWriteConfirmOnlyByASecondCopy)
{
    inverter.adapterEchoes = true;
    for (int bit = 0; bit < 64; ++bit) {
        SCOPED_TRACE("bit " + std::to_string(bit));
        learnTheAdapter();
        inverter.echoes = { replacedBy(flipped(framed(runHex), bit)) };
        inverter.delays = { milliseconds(160) };

        const Reply first = guard.run(run(bit + 1));
        const Reply second = guard.run(run(bit + 1));

        ASSERT_TRUE(first.bytes.isEmpty());
        ASSERT_EQ(second.bytes, framed(runHex)) << "two of three copies are no echo";
    }
}

TEST_F(LateReplies, ThatAreEchoesConfirmNoWriteOfADeadStation)
{
    inverter.adapterEchoes = true;
    learnTheAdapter();
    inverter.isDead = true;
    for (int tag = 1; tag <= 3; ++tag) {
        for (int tries = 0; tries < 3; ++tries) {
            inverter.adapterEchoes = false;
            inverter.line.inject(framed(runHex), milliseconds(120));

            const Reply reply = guard.run(run(tag));

            ASSERT_NE(reply.kind, Reply::Kind::Complete);
            ASSERT_TRUE(reply.bytes.isEmpty());
        }
    }
}

TEST_F(LateReplies, ThatRefuseDoNotFailAnotherRead)
{
    inverter.replies = { replacedBy(framed("01 83 02")) };
    askForALate(150);

    const Reply reply = guard.run(readOfThree);

    EXPECT_EQ(reply.bytes, replyToThree);
    EXPECT_EQ(guard.report().lateReplies, 1);
}

TEST_F(LateReplies, ThatRefuseDoNotRejectAWriteThatTheDriveTook)
{
    learnTheAdapter();
    inverter.replies = { replacedBy(framed("01 86 02")) };
    inverter.delays = { milliseconds(150) };
    guard.run(asked("01 06 F0 0F 00 07", 1));

    const Reply reply = guard.run(run(2));

    EXPECT_EQ(reply.bytes, framed(runHex));
    EXPECT_EQ(guard.report().verdict.cause, ReplyCause::Good);
    EXPECT_EQ(guard.report().lateReplies, 1);
}

TEST_F(LateReplies, FromBeforeTheLineWasOpenedAgainAreNotBelievedForAnotherRequest)
{
    inverter.replies = { replacedBy({}) };
    guard.run(readA);
    inverter.line.close();
    inverter.line.open(nullptr);
    guard.forgetLine();
    inverter.say(replyA, milliseconds(20));

    EXPECT_EQ(triesForB(), 1);
    EXPECT_EQ(heardLate, 1);
}

TEST_F(LateReplies, FromBeforeAnExchangeFoundTheLineClosedAreNotBelievedForAnotherRequest)
{
    inverter.replies = { replacedBy({}) };
    guard.run(readA);
    inverter.line.close();
    const Reply gone = guard.run(readB);
    inverter.line.open(nullptr);
    inverter.say(replyA, milliseconds(20));

    EXPECT_EQ(gone.kind, Reply::Kind::LineDown);
    EXPECT_EQ(triesForB(), 1);
    EXPECT_EQ(heardLate, 1);
}

TEST_F(LateReplies, OfARequestThatABrokenLineDidNotTakeAreOfNobodyInHand)
{
    askForALate(150);
    inverter.line.close();
    const Reply broken = guard.run(readA);
    inverter.line.open(nullptr);
    inverter.line.inject(replyA);
    inverter.line.advance(milliseconds(20));

    guard.listen();

    EXPECT_EQ(broken.kind, Reply::Kind::LineDown);
    EXPECT_EQ(guard.report().lateReplies, 1);
}

TEST_F(LateReplies, WhoseRegistersHoldTheBytesOfARefusalRefuseNothing)
{
    inverter.station.registers = { { { 1, 0xD000 }, 0x0183 },
                                   { { 1, 0xD001 }, 0x02C0 },
                                   { { 1, 0xD002 }, 0xF100 } };

    const Reply reply = guard.run(asked("01 03 D0 00 00 04"));

    EXPECT_EQ(reply.bytes, framed("01 03 08 01 83 02 C0 F1 00 00 00"));
}

TEST_F(LateReplies, ThatCameMeanwhileAreCountedWithTheNextExchange)
{
    askForALate(150);
    inverter.line.advance(milliseconds(100));
    guard.listen();
    const int heard = guard.report().lateReplies;

    const Reply reply = guard.run(readB);

    EXPECT_EQ(heard, 1);
    EXPECT_EQ(reply.bytes, replyB);
    EXPECT_EQ(guard.report().lateReplies, 1);
    EXPECT_EQ(guard.report().clearingReads, 0);
}

TEST_F(LateReplies, WithheldRequestsAreCountedAsSuchAndTheGuardsReadsBesides)
{
    Link link(Plugin::load(QStringLiteral(KORVANE_PLUGIN_FILE), Plugin::Instance::PrivateCopy), {});
    Cycle cycle(link, guard);
    link.poll({ wanted(1, QStringLiteral("D"), 0, 2), wanted(1, QStringLiteral("D"), 8, 2) });
    inverter.isDead = true;
    for (int i = 0; i < 3; ++i)
        cycle.step();

    cycle.step();

    const QJsonObject counts = cycle.counters().total().toJson();
    EXPECT_EQ(cycle.reply().kind, Reply::Kind::Withheld);
    EXPECT_EQ(counts.value(QStringLiteral("requests")).toInt(), 3);
    EXPECT_EQ(counts.value(QStringLiteral("timeouts")).toInt(), 3);
    EXPECT_EQ(counts.value(QStringLiteral("withheld")).toInt(), 1);
    EXPECT_EQ(counts.value(QStringLiteral("clearing_reads")).toInt(), 1);
    EXPECT_EQ(inverter.line.sent().last(), framed("01 03 20 00 00 01"));
}

TEST_F(LateReplies, ARequestOfNoRegisterUsesNoLineAndEndsAtOnce)
{
    for (const int count : { 0, -16 }) {
        FRAME_PRO degenerate = asked(count == 0 ? "01 03 D0 00 00 00" : "01 03 D0 00 FF F0");
        degenerate.replyDataLength = 2 * count;
        degenerate.replyLength = 5 + 2 * count;

        const Reply reply = guard.run(degenerate);

        EXPECT_EQ(reply.kind, Reply::Kind::NotAsked);
        EXPECT_FALSE(reply.canRetry);
        EXPECT_EQ(inverter.line.now(), Duration(0));
        EXPECT_TRUE(inverter.line.sent().isEmpty());
    }
}

TEST(LateRepliesInARow, AreWaitedForFromThenOnAndThatIsSaid)
{
    ScriptedLine inverter { slowLine() };
    GuardedExchange guard { inverter.line };
    inverter.slow = { { 1, milliseconds(160) } };
    while (guard.timeoutOf(1) == milliseconds(100))
        guard.run(readA);

    const Reply reply = guard.run(readOfThree);

    EXPECT_EQ(guard.timeoutOf(1), milliseconds(200));
    EXPECT_EQ(guard.timeoutOf(2), milliseconds(100));
    EXPECT_EQ(guard.takeNotice().toStdString(),
              "station 1 answers later than the response timeout of 100 ms; it is waited for 200 "
              "ms from now on, and timeout_ms had better be that");
    EXPECT_EQ(guard.takeNotice(), QString());
    EXPECT_EQ(reply.kind, Reply::Kind::Complete);
    EXPECT_EQ(reply.turnaround, milliseconds(8 + 160 + 11));
}
