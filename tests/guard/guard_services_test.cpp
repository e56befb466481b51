// SPDX-License-Identifier: MIT
// What the guard does besides polling, and what it takes for the reply on a bad line.
#include "guarded_station.h"
#include "trial_requests.h"

using namespace dx4::host;
using std::chrono::milliseconds;

namespace {

class GuardServices : public GuardedStation { };

/// Breaks as it is listened to for so many times.
class BreakingLine : public MemoryLine {
public:
    using MemoryLine::MemoryLine;

    QByteArray receive(int count, Duration deadline) override
    {
        if (left > 0 && --left == 0)
            unplug();
        return MemoryLine::receive(count, deadline);
    }

    int left = 0;
};

/// A line that is said to echo or not, and gives these bytes for each request.
Reply runOn(EchoMode mode, const FRAME_PRO &request, const QByteArray &bytes)
{
    LineSettings settings = slowLine();
    settings.echo = mode;
    MemoryLine line(
        [&](const QByteArray &) {
            return MemoryLine::Answer { bytes, Duration {} };
        },
        settings);
    GuardedExchange guard(line);
    return guard.run(request);
}

} // namespace

TEST_F(GuardServices, AProbeReadsTheStatusWordOnce)
{
    const Reply reply = guard.probe(1, { milliseconds(100), std::nullopt, true });

    EXPECT_EQ(reply.bytes, framed("01 03 02 00 00"));
    EXPECT_EQ(inverter.line.sent(), QVector<QByteArray> { framed("01 03 20 00 00 01") });
}

TEST_F(GuardServices, ABroadcastIsConfirmedByNobodyAndEndsAfterItsTurnaround)
{
    inverter.isDead = true;
    inverter.line.advance(milliseconds(1000));

    const Reply reply = guard.broadcast(5, { milliseconds(50), std::nullopt, true });

    EXPECT_EQ(reply.kind, Reply::Kind::Complete);
    EXPECT_TRUE(reply.bytes.isEmpty());
    EXPECT_FALSE(reply.canRetry);
    EXPECT_EQ(reply.turnaround, milliseconds(8 + 50));
    EXPECT_EQ(inverter.line.sent(), QVector<QByteArray> { framed("00 06 10 01 00 05") });
}

TEST_F(GuardServices, ABroadcastHearsWhatIsLate)
{
    askForALate(130);

    guard.broadcast(5, { milliseconds(50), std::nullopt, true });

    EXPECT_EQ(guard.report().lateReplies, 1);
}

TEST_F(GuardServices, ABroadcastOnAClosedLineIsNone)
{
    inverter.line.close();

    EXPECT_EQ(guard.broadcast(5, { milliseconds(50), std::nullopt, true }).kind,
              Reply::Kind::LineDown);
}

TEST_F(GuardServices, TheEchoOfABroadcastIsNoReply)
{
    inverter.adapterEchoes = true;
    inverter.isDead = true;

    guard.broadcast(5, { milliseconds(50), std::nullopt, true });

    EXPECT_EQ(guard.report().foreignFrames, 0);
    EXPECT_EQ(guard.report().junkBytes, 0);
    EXPECT_FALSE(guard.report().echoStripped) << "from no reply";
}

TEST_F(GuardServices, AnExchangeEndsWithTheMomentThatItHas)
{
    inverter.isDead = true;

    const Reply reply = guard.runWithin(readA, { milliseconds(100), milliseconds(30), false });

    EXPECT_EQ(reply.kind, Reply::Kind::Silence);
    EXPECT_EQ(inverter.line.now(), milliseconds(30));
}

TEST_F(GuardServices, AStationsExtraGapIsKeptAfterWhatWasHeardLast)
{
    guard.run(readA);
    guard.setExtraGap(1, milliseconds(30));
    const Duration before = inverter.line.now();

    guard.run(readA);

    EXPECT_EQ(inverter.line.now() - before, Duration(33500) + milliseconds(8 + 9));
}

TEST_F(GuardServices, AWriteOnAnUnknownAdapterIsPrecededByThreeReads)
{
    const Reply reply = guard.run(run(1));

    EXPECT_EQ(reply.bytes, framed(runHex));
    EXPECT_EQ(guard.report().echoProbes, 3);
}

TEST_F(GuardServices, AReadThatIsRefusedTellsOfTheAdapterAsWell)
{
    for (int i = 0; i < 3; ++i)
        inverter.replies.push_back(replacedBy(framed("01 83 02")));

    const Reply reply = guard.run(run(1));

    EXPECT_EQ(reply.bytes, framed(runHex));
    EXPECT_EQ(guard.report().echoProbes, 3);
}

TEST_F(GuardServices, OneReadIsEnoughToFindThatTheStationIsSilent)
{
    inverter.replies = { replacedBy({}) };

    const Reply reply = guard.run(run(1));

    EXPECT_EQ(reply.kind, Reply::Kind::Silence) << "its one copy may be an echo";
    EXPECT_EQ(guard.report().echoProbes, 1);
}

TEST_F(GuardServices, WithJunkBeforeEachReplyTheAdapterStaysUnknown)
{
    for (int i = 0; i < 3; ++i)
        inverter.replies.push_back(
            replacedBy(QByteArray::fromHex("FF FF FF FF") + framed("01 03 02 00 00")));

    const Reply reply = guard.run(run(1));

    EXPECT_EQ(reply.kind, Reply::Kind::Silence) << "the junk may be damaged echoes";
    EXPECT_EQ(guard.report().echoProbes, 3);
}

TEST_F(GuardServices, WhereEveryLengthIsOwedNothingIsLearntOfTheAdapter)
{
    inverter.isDead = true;
    for (int count = 1; count <= 16; ++count)
        guard.run(readOf(1, 0xF000, count));
    inverter.isDead = false;

    const Reply reply = guard.run(run(1));

    EXPECT_EQ(reply.kind, Reply::Kind::Silence);
    EXPECT_EQ(guard.report().echoProbes, 0);
}

TEST_F(GuardServices, AnUrgentWriteGoesOutAlone)
{
    const Reply reply = guard.runWithin(run(1), { milliseconds(100), std::nullopt, true });

    EXPECT_EQ(reply.kind, Reply::Kind::Silence) << "one copy may be the adapter's";
    EXPECT_EQ(inverter.line.sent(), QVector<QByteArray> { framed(runHex) });
}

TEST_F(GuardServices, AnEchoOnALineThatWasCleanMakesAWaitingWritesCopyAnEcho)
{
    learnTheAdapter();
    inverter.replies = { replacedBy({}) };
    guard.run(run(1));
    inverter.replies = { replacedBy(framed("01 03 D0 00 00 02") + framed(runHex)) };

    guard.run(readA);

    EXPECT_EQ(guard.report().lateReplies, 0);
    EXPECT_TRUE(guard.report().echoStripped);
}

TEST_F(GuardServices, ARefusedWriteOnACleanLineIsRefused)
{
    learnTheAdapter();
    inverter.replies = { replacedBy(framed("01 86 03")) };

    const Reply reply = guard.run(run(1));

    EXPECT_EQ(guard.report().verdict.cause, ReplyCause::Exception);
    EXPECT_EQ(guard.report().verdict.exceptionCode, 3);
    EXPECT_FALSE(reply.canRetry);
}

TEST(GuardOnAToldLine, ThatEchoesIsConfirmedByTheSecondCopyAlone)
{
    const QByteArray copy = framed(runHex);

    EXPECT_EQ(runOn(EchoMode::Yes, run(1), copy).kind, Reply::Kind::Silence);
    EXPECT_EQ(runOn(EchoMode::Yes, run(1), copy + copy).kind, Reply::Kind::Complete);
}

TEST(GuardOnAToldLine, ThatDoesNotEchoIsConfirmedByTheFirstCopy)
{
    EXPECT_EQ(runOn(EchoMode::No, run(1), framed(runHex)).kind, Reply::Kind::Complete);
}

TEST(GuardOnABrokenLine, TheWaitForAReplyEndsAsLineDown)
{
    BreakingLine line([](const QByteArray &) { return MemoryLine::Answer {}; }, slowLine());
    GuardedExchange guard(line);
    line.left = 2; // the first is that before the request

    EXPECT_EQ(guard.run(readA).kind, Reply::Kind::LineDown);
}

TEST(GuardOnABrokenLine, NoGapIsWaitedForAndNothingSent)
{
    BreakingLine line(
        [](const QByteArray &) {
            return MemoryLine::Answer { replyA, Duration {} };
        },
        slowLine());
    GuardedExchange guard(line);
    guard.run(readA);
    line.left = 2;
    const Duration before = line.now();

    const Reply reply = guard.run(readA);

    EXPECT_EQ(reply.kind, Reply::Kind::LineDown);
    EXPECT_EQ(line.now(), before);
    EXPECT_EQ(line.sent().size(), 1);
}

TEST(GuardOnABrokenLine, ABroadcastEndsWithIt)
{
    BreakingLine line([](const QByteArray &) { return MemoryLine::Answer {}; }, slowLine());
    GuardedExchange guard(line);
    line.left = 2;

    const Reply reply = guard.broadcast(5, { milliseconds(50), std::nullopt, true });

    EXPECT_EQ(reply.turnaround, milliseconds(8)) << "without its turnaround";
}

TEST(GuardOnABrokenLine, AWithheldRequestEndsAsLineDown)
{
    BreakingLine line([](const QByteArray &) { return MemoryLine::Answer {}; }, slowLine());
    GuardedExchange guard(line);
    for (int count = 1; count <= 16; ++count)
        guard.run(readOf(1, 0xF000, count));
    line.left = 1;

    EXPECT_EQ(guard.run(readB).kind, Reply::Kind::LineDown);
}

TEST(GuardOnABabblingLine, AKilobyteEndsTheWait)
{
    LineSettings settings;
    settings.speed = 115200;
    MemoryLine line(
        [](const QByteArray &) {
            return MemoryLine::Answer { QByteArray("\xAA\x55").repeated(2000), Duration {} };
        },
        settings);
    GuardedExchange guard(line);

    const Reply reply = guard.run(readA);

    EXPECT_EQ(reply.kind, Reply::Kind::Incomplete);
    EXPECT_EQ(guard.report().verdict.cause, ReplyCause::BadCrc);
    EXPECT_EQ(guard.report().bytesHeard, 1025);
    EXPECT_EQ(guard.report().junkBytes, 1025);
}

TEST(GuardOnABabblingLine, AKilobyteToTheByteEndsTheWait)
{
    LineSettings settings;
    settings.speed = 115200;
    // What looks like the beginning of the reply makes up for the odd byte.
    const QByteArray babble = QByteArray::fromHex("AA AA AA 01 03") + QByteArray(1019, '\xAA');
    MemoryLine line(
        [&](const QByteArray &) {
            return MemoryLine::Answer { babble, Duration {} };
        },
        settings);
    GuardedExchange guard(line);

    const Reply reply = guard.run(readA);

    EXPECT_EQ(guard.report().bytesHeard, 1024);
    EXPECT_EQ(reply.turnaround, settings.wireTime(8) + settings.wireTime(1024));
}

TEST_F(GuardServices, BytesThatLookLikeTheWholeReplyButForTheirCrcEndTheWait)
{
    learnTheAdapter();
    inverter.replies = { replacedBy(QByteArray::fromHex("01 03 04 AA AA AA AA 00 00")) };

    const Reply reply = guard.run(readA);

    EXPECT_EQ(guard.report().verdict.cause, ReplyCause::BadCrc);
    EXPECT_EQ(reply.turnaround, milliseconds(8 + 9 + 20)) << "and a pause of 20 ms";
}

TEST_F(GuardServices, BytesThatBeginOtherwiseDoNotEndTheWait)
{
    learnTheAdapter();
    for (const char *hex : { "02 03 04 AA AA AA AA 00 00", "01 04 04 AA AA AA AA 00 00" }) {
        inverter.replies = { replacedBy(QByteArray::fromHex(hex)) };

        EXPECT_EQ(guard.run(readA).turnaround, milliseconds(8 + 100 + 9)) << hex;
    }
}

TEST_F(GuardServices, AFrameWithTheRightCrcThatAnswersNothingIsForeign)
{
    inverter.replies = { replacedBy(framed("01 03 05 AA AA AA AA")) };

    const Reply reply = guard.run(readA);

    EXPECT_EQ(guard.report().verdict.cause, ReplyCause::WrongByteCount);
    EXPECT_EQ(guard.report().foreignFrames, 1);
    EXPECT_EQ(guard.report().heardStations, QVector<int> { 1 });
    EXPECT_TRUE(reply.bytes.isEmpty());
}

TEST_F(GuardServices, ManyRepliesToEqualReadsAreTakenWithoutTheirTimes)
{
    inverter.isDead = true;
    for (int i = 0; i < 18; ++i)
        guard.run(readA);
    for (int i = 0; i < 18; ++i)
        inverter.say(replyA, milliseconds(5));
    inverter.line.advance(milliseconds(400));

    guard.listen();

    EXPECT_EQ(guard.report().lateReplies, 18);
    EXPECT_EQ(guard.answerTime(1), std::nullopt) << "nor is it known when the last was asked for";
    EXPECT_EQ(guard.run(readB).kind, Reply::Kind::Silence) << "nothing is owed any more";
}

TEST_F(GuardServices, TwoLateRefusalsAreCountedEach)
{
    inverter.isDead = true;
    guard.run(readA);
    guard.run(readOfThree);
    guard.run(readOf(1, 0xF000, 4));
    inverter.say(framed("01 83 02") + framed("01 83 02"), milliseconds(5));

    guard.run(readB);

    EXPECT_EQ(guard.report().lateReplies, 2);
}
