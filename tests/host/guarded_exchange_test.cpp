// SPDX-License-Identifier: MIT
// What the guard lets through to the driver, and under which cause it holds the rest back.
#include "host/exchange/cycle.h"
#include "host/exchange/guarded_exchange.h"
#include "scripted_line.h"

#include <gtest/gtest.h>

#include <string>

using namespace dx4::host;
using std::chrono::milliseconds;

namespace {

/// 10000 bit/s: a character takes 1 ms; 100 ms response timeout.
LineSettings slow()
{
    LineSettings settings;
    settings.speed = 10000;
    settings.responseTimeout = milliseconds(100);
    return settings;
}

LinkSettings threeTries()
{
    LinkSettings settings;
    settings.retryLimit = 3;
    return settings;
}

/// Polls D 0 and 1 of station 1, which hold 0x1234 and 0x5678.
class GuardedExchangeTest : public ::testing::Test {
protected:
    GuardedExchangeTest()
    {
        link.poll({ wanted(1, QStringLiteral("D"), 0, 2) });
        inverter.registers = { { { 1, 0xD000 }, 0x1234 }, { { 1, 0xD001 }, 0x5678 } };
    }

    /// One step; gives its cause and code, such as "bad crc" or "exception 2".
    std::string step()
    {
        lastStep = cycle.step();
        return causeName(guard.report().verdict);
    }

    /// Reads until the adapter is known not to echo.
    void learnTheAdapter()
    {
        for (int i = 0; i < 3; ++i)
            step();
    }

    static std::string causeName(const ReplyVerdict &verdict)
    {
        static const char *const names[] = { "good",       "silence", "truncated",
                                             "bad crc",    "foreign", "function",
                                             "byte count", "echo",    "exception " };
        const std::string name = names[static_cast<int>(verdict.cause)];
        return verdict.exceptionCode ? name + std::to_string(verdict.exceptionCode) : name;
    }

    void write(const char *type, int address, const QVector<quint16> &values)
    {
        link.write(1, QString::fromLatin1(type), address, values);
    }

    int value(const char *type, int address)
    {
        return link.registerState(1, QString::fromLatin1(type), address).value;
    }

    ScriptedLine inverter { slow() };
    Link link { Plugin::load(QStringLiteral(KORVANE_PLUGIN_FILE), Plugin::Instance::PrivateCopy),
                threeTries() };
    GuardedExchange guard { inverter.line };
    Cycle cycle { link, guard };
    Cycle::Step lastStep = Cycle::Step::Idle;
    const QByteArray trueReply = framed("01 03 04 12 34 56 78");
    const QByteArray runCommand = framed("01 06 10 01 00 01");
};

} // namespace

TEST_F(GuardedExchangeTest, TheRequestsOwnReplyReachesTheDriver)
{
    EXPECT_EQ(step(), "good");
    EXPECT_EQ(value("D", 0), 0x1234);
    EXPECT_EQ(value("D", 1), 0x5678);
}

TEST_F(GuardedExchangeTest, NoFlippedBitOfAReadReplyReachesTheCache)
{
    for (int bit = 0; bit < trueReply.size() * 8; ++bit) {
        SCOPED_TRACE("bit " + std::to_string(bit));
        QByteArray flipped = trueReply;
        flipped[bit / 8] = static_cast<char>(flipped.at(bit / 8) ^ (1 << (bit % 8)));
        inverter.changes.push_back(instead(flipped));

        const std::string bad = step();
        const int shown = value("D", 0);
        const std::string next = step();

        ASSERT_EQ(bad, "bad crc");
        ASSERT_EQ(shown, bit == 0 ? 0 : 0x1234);
        ASSERT_EQ(next, "good");
        ASSERT_EQ(value("D", 1), 0x5678);
    }
    EXPECT_EQ(cycle.counters().total().badCrc, 72U);
    EXPECT_EQ(cycle.counters().total().good, 72U);
}

TEST_F(GuardedExchangeTest, EveryTruncatedReplyIsCountedAsSuch)
{
    for (int length = 1; length < trueReply.size(); ++length) {
        SCOPED_TRACE(std::to_string(length) + " bytes");
        inverter.changes.push_back(instead(trueReply.left(length)));

        ASSERT_EQ(step(), "truncated");
        ASSERT_EQ(step(), "good");
        ASSERT_EQ(value("D", 0), 0x1234);
    }
    EXPECT_EQ(cycle.counters().total().truncated, 8U);
}

TEST_F(GuardedExchangeTest, NoFlippedBitConfirmsAWrite)
{
    learnTheAdapter();
    for (const std::string hex : { "01 06 FC 0D 01 90", "01 10 F0 00 00 02" }) {
        const QByteArray echo = framed(hex);
        for (int bit = 0; bit < echo.size() * 8; ++bit) {
            SCOPED_TRACE(hex + " bit " + std::to_string(bit));
            QByteArray flipped = echo;
            flipped[bit / 8] = static_cast<char>(flipped.at(bit / 8) ^ (1 << (bit % 8)));
            inverter.changes.push_back(instead(flipped));
            if (hex.at(4) == '6')
                write("F", 2573, { 400 });
            else
                write("F", 0, { 7, 8 });

            ASSERT_EQ(step(), "bad crc");
            ASSERT_EQ(lastStep, Cycle::Step::Retry);
            ASSERT_EQ(step(), "good");
            ASSERT_EQ(step(), "good"); // a read, so that the writes never use up their turns
        }
    }
}

namespace {

/// A request of the set with its right reply.
struct Golden {
    const char *name;
    const char *reply;
    void (*ask)(Link &link);
};

/// Every kind of reply: damaged in each bit and cut at each length it must stay without effect.
class GuardedSet : public GuardedExchangeTest, public ::testing::WithParamInterface<Golden> {
protected:
    GuardedSet()
    {
        link.poll({});
        link.poll({ wanted(2, QStringLiteral("SW"), 0) });
        learnTheAdapter();
        link.poll({});
    }

    /// One step that uses the line: the driver pauses after some requests in a row.
    std::string exchange()
    {
        std::string cause = step();
        while (lastStep == Cycle::Step::Idle)
            cause = step();
        return cause;
    }

    /// Asks, hears `damaged` and then the right reply.
    void play(const QByteArray &damaged, const std::string &cause)
    {
        GetParam().ask(link);
        inverter.changes = { instead(damaged), instead(framed(GetParam().reply)) };

        const std::string bad = exchange();
        EXPECT_EQ(lastStep, Cycle::Step::Retry);
        const std::string next = exchange();

        EXPECT_EQ(bad, cause);
        EXPECT_EQ(next, framed(GetParam().reply).size() == 5 ? "exception 2" : "good");
        EXPECT_EQ(link.waitingWrites() + link.waitingConditionReads(), 0);
    }
};

void askForRun(Link &link)
{
    link.addConditionRead(1, QStringLiteral("D"), 0, 2);
}

const Golden goldenSet[] = {
    { "ReadOfOne", "01 03 02 12 34",
      [](Link &link) { link.addConditionRead(1, QStringLiteral("D"), 0, 1); } },
    { "ReadOfARun", "01 03 04 12 34 56 78", askForRun },
    { "Exception", "01 83 02", askForRun },
    { "WriteOfOne", "01 06 10 01 00 01",
      [](Link &link) { link.write(1, QStringLiteral("CW"), 0, { 1 }); } },
    { "WriteOfARun", "01 10 F0 00 00 02",
      [](Link &link) {
          link.write(1, QStringLiteral("F"), 0, { 7, 8 });
      } },
};

} // namespace

TEST_P(GuardedSet, NoFlippedBitGetsThrough)
{
    const QByteArray right = framed(GetParam().reply);
    quint64 crc = 0;
    quint64 truncated = 0;
    for (int bit = 0; bit < right.size() * 8; ++bit) {
        SCOPED_TRACE("bit " + std::to_string(bit));
        QByteArray flipped = right;
        flipped[bit / 8] = static_cast<char>(flipped.at(bit / 8) ^ (1 << (bit % 8)));
        // An exception whose function byte is hit is a reply that is too short.
        const bool isShort = right.size() == 5 && bit / 8 == 1;
        ++(isShort ? truncated : crc);

        play(flipped, isShort ? "truncated" : "bad crc");
    }

    EXPECT_EQ(cycle.counters().total().badCrc, crc);
    EXPECT_EQ(cycle.counters().total().truncated, truncated);
    EXPECT_EQ(cycle.counters().total().retries, crc + truncated);
    EXPECT_EQ(cycle.counters().station(1).requests, 2 * (crc + truncated));
}

TEST_P(GuardedSet, NoCutReplyGetsThrough)
{
    const QByteArray right = framed(GetParam().reply);
    for (int length = 0; length < right.size(); ++length) {
        SCOPED_TRACE(std::to_string(length) + " bytes");
        play(right.left(length), length == 0 ? "silence" : "truncated");
    }

    EXPECT_EQ(cycle.counters().total().timeouts, 1U);
    EXPECT_EQ(cycle.counters().total().truncated, static_cast<quint64>(right.size() - 1));
}

TEST_P(GuardedSet, NoForeignReplyGetsThrough)
{
    QByteArray foreign = framed(GetParam().reply);
    foreign[0] = 2;

    play(renewedCrc(foreign), "foreign");

    EXPECT_EQ(cycle.counters().station(1).foreign, 1U);
}

INSTANTIATE_TEST_SUITE_P(Replies, GuardedSet, ::testing::ValuesIn(goldenSet),
                         [](const auto &row) { return std::string(row.param.name); });

TEST_F(GuardedExchangeTest, SilenceEndsWithTheTimeoutAndTheWireTimeOfTheReply)
{
    inverter.changes.push_back(silence());

    EXPECT_EQ(step(), "silence");
    EXPECT_EQ(cycle.reply().turnaround, milliseconds(8 + 100 + 9));
}

TEST_F(GuardedExchangeTest, WhatCameBeforeTheRequestIsDropped)
{
    inverter.line.inject(framed("01 03 04 66 66 66 66"));
    inverter.line.advance(milliseconds(50));

    EXPECT_EQ(step(), "good");
    EXPECT_EQ(value("D", 0), 0x1234);
    EXPECT_EQ(guard.report().foreignFrames, 0);
}

TEST_F(GuardedExchangeTest, RepliesOfOthersEachHaveTheirCause)
{
    const std::pair<std::string, std::string> rows[] = {
        { "02 03 04 66 66 66 66", "foreign" }, { "01 04 04 66 66 66 66", "function" },
        { "01 03 02 66 66", "byte count" },    { "01 03 06 66 66 66 66 66 66", "byte count" },
        { "02 03 02 66 66", "foreign" },       { "02 83 02", "foreign" },
        { "01 06 D0 00 66 66", "function" },
    };
    for (const auto &[hex, cause] : rows) {
        SCOPED_TRACE(hex);
        inverter.changes.push_back(instead(framed(hex)));

        ASSERT_EQ(step(), cause);
        ASSERT_NE(value("D", 0), 0x6666);
        ASSERT_EQ(step(), "good");
        ASSERT_EQ(value("D", 0), 0x1234);
    }
    EXPECT_EQ(cycle.counters().total().foreign, 3U);
    EXPECT_EQ(cycle.counters().total().wrongReplies, 4U);
}

TEST_F(GuardedExchangeTest, TheEchoOfAnotherWriteConfirmsNothing)
{
    learnTheAdapter();
    write("CW", 0, { 1 });
    inverter.changes.push_back(instead(framed("01 06 10 01 00 00")));

    EXPECT_EQ(step(), "echo");
    EXPECT_EQ(lastStep, Cycle::Step::Retry);
}

TEST_F(GuardedExchangeTest, AForeignReplyBeforeTheTrueOneIsSkipped)
{
    inverter.changes.push_back(instead(framed("02 03 04 66 66 66 66") + trueReply));

    EXPECT_EQ(step(), "good");
    EXPECT_EQ(value("D", 0), 0x1234);
    EXPECT_EQ(guard.report().foreignStation, 2);
    EXPECT_EQ(guard.report().foreignFrames, 1);
}

TEST_F(GuardedExchangeTest, JunkBeforeAReplyIsSkipped)
{
    inverter.changes.push_back(instead(QByteArray("\x00\xFF\x01", 3) + trueReply));

    EXPECT_EQ(step(), "good");
    EXPECT_EQ(value("D", 1), 0x5678);
    EXPECT_EQ(cycle.counters().total().junkBytes, 3U);
}

TEST_F(GuardedExchangeTest, AnExceptionEndsTheWaitAtItsFifthByte)
{
    inverter.changes.push_back(instead(framed("01 83 04")));

    const std::string cause = step();

    EXPECT_EQ(cause, "exception 4");
    EXPECT_EQ(lastStep, Cycle::Step::Retry);
    EXPECT_EQ(cycle.reply().turnaround, milliseconds(8 + 5));
}

TEST_F(GuardedExchangeTest, ARefusalThatWillNotChangeIsNotRetried)
{
    for (const int code : { 1, 2, 3 }) {
        SCOPED_TRACE(code);
        inverter.changes.push_back(instead(framed("01 83 0" + std::to_string(code))));
        const auto before = inverter.line.sent().size();

        ASSERT_EQ(step(), "exception " + std::to_string(code));
        ASSERT_EQ(lastStep, Cycle::Step::GivenUp);
        ASSERT_EQ(inverter.line.sent().size(), before + 1);
        ASSERT_TRUE(link.registerState(1, QStringLiteral("D"), 0).failed);
        ASSERT_EQ(step(), "good");
    }
    EXPECT_EQ(cycle.counters().total().exceptions,
              (std::map<int, quint64> { { 1, 1 }, { 2, 1 }, { 3, 1 } }));
}

TEST_F(GuardedExchangeTest, AnAdaptersEchoIsStripped)
{
    inverter.echoes = true;
    write("CW", 0, { 1 });
    write("F", 0, { 7, 8 });

    EXPECT_EQ(step(), "good");
    EXPECT_EQ(step(), "good");
    EXPECT_EQ(step(), "good");
    EXPECT_EQ(value("D", 0), 0x1234);
    EXPECT_EQ(cycle.counters().total().echoes, 3U);
}

TEST_F(GuardedExchangeTest, AnEchoingAdapterDoesNotConfirmTheWriteOfADeadStation)
{
    inverter.echoes = true;
    step();
    inverter.dead = { 1 };
    write("CW", 0, { 1 });

    EXPECT_EQ(step(), "silence");
    EXPECT_EQ(lastStep, Cycle::Step::Retry);
}

TEST_F(GuardedExchangeTest, AnEchoAloneIsSilence)
{
    inverter.echoes = true;
    inverter.dead = { 1 };

    EXPECT_EQ(step(), "silence");
    EXPECT_TRUE(guard.report().echoStripped);
}

TEST_F(GuardedExchangeTest, AnEchoBehindJunkDoesNotConfirmTheWriteOfADeadStation)
{
    inverter.echoes = true;
    step();
    inverter.echoes = false;
    inverter.dead = { 1 };
    inverter.changes = { silence(), instead(QByteArray("\xFF\x01", 2) + runCommand) };
    write("CW", 0, { 1 });

    EXPECT_EQ(step(), "silence");
    EXPECT_EQ(lastStep, Cycle::Step::Retry);
}

TEST_F(GuardedExchangeTest, AWriteBeforeAnyReadIsPrecededByThreeOfTheStatusWord)
{
    const QByteArray statusRead = framed("01 03 20 00 00 01");
    write("CW", 0, { 1 });

    EXPECT_EQ(step(), "good");
    EXPECT_EQ(guard.report().echoProbes, 3);
    EXPECT_EQ(inverter.line.sent(),
              (QVector<QByteArray> { statusRead, statusRead, statusRead, runCommand }));
    EXPECT_EQ(cycle.counters().total().requests, 1U);
    EXPECT_EQ(cycle.counters().total().echoProbes, 3U);
}

TEST_F(GuardedExchangeTest, ThreeReadsAreEnoughToKnowAnAdapterThatDoesNotEcho)
{
    learnTheAdapter();
    write("CW", 0, { 1 });

    EXPECT_EQ(step(), "good");
    EXPECT_EQ(guard.report().echoProbes, 0);
}

TEST_F(GuardedExchangeTest, ACopyOfAWriteBeforeAnyAnswerConfirmsNothing)
{
    inverter.dead = { 1 };
    inverter.changes = { silence(), instead(runCommand) };
    write("CW", 0, { 1 });

    EXPECT_EQ(step(), "silence");
    EXPECT_EQ(lastStep, Cycle::Step::Retry);
}

TEST_F(GuardedExchangeTest, AStrayCopyOfAReadFailsNoWriteAfterIt)
{
    inverter.changes = { instead(framed("01 03 D0 00 00 02") + trueReply) };
    step();
    write("CW", 0, { 1 });

    EXPECT_EQ(step(), "good");
    EXPECT_EQ(lastStep, Cycle::Step::Served);
    EXPECT_EQ(guard.report().echoProbes, 16);
}

TEST_F(GuardedExchangeTest, ThreeStrayCopiesCostAWriteOneMoreTry)
{
    for (int i = 0; i < 3; ++i) {
        inverter.changes = { instead(framed("01 03 D0 00 00 02") + trueReply) };
        step();
    }
    write("CW", 0, { 1 });

    EXPECT_EQ(step(), "silence");
    EXPECT_EQ(step(), "good");
    EXPECT_EQ(guard.report().echoProbes, 16);
}

TEST_F(GuardedExchangeTest, ALineThatWasGoneMayHaveAnotherAdapter)
{
    learnTheAdapter();
    write("CW", 0, { 1 });
    inverter.line.unplug();
    const Cycle::Step gone = cycle.step();
    inverter.line.plugIn();
    inverter.line.open(nullptr);

    EXPECT_EQ(gone, Cycle::Step::LineDown);
    EXPECT_EQ(step(), "good");
    EXPECT_EQ(cycle.request().var.regType, QStringLiteral("CW"));
    EXPECT_EQ(guard.report().echoProbes, 3);
}

TEST_F(GuardedExchangeTest, AnExceptionBehindACopyOfAWriteIsASignOfAnEcho)
{
    inverter.echoes = true;
    inverter.dead = { 1 };
    for (int i = 0; i < 2; ++i) {
        write("CW", 0, { 1 });
        inverter.changes = { silence(), instead(framed("01 86 02")) };
        ASSERT_EQ(step(), "exception 2");
        ASSERT_EQ(guard.report().echoProbes, 1);
    }

    write("CW", 0, { 1 });
    step();

    EXPECT_EQ(guard.report().echoProbes, 0);
}

TEST_F(GuardedExchangeTest, WhatIsUrgentGoesOutBeforeTheAdapterIsKnownAndNothingBehindIt)
{
    write("CW", 0, { 0 });
    FRAME_PRO stop;
    link.nextFrame(stop);

    const Reply reply = guard.runWithin(stop, { milliseconds(100), std::nullopt, true });

    EXPECT_EQ(reply.kind, Reply::Kind::Silence) << "one copy may be the adapter's";
    EXPECT_EQ(inverter.line.sent(), QVector<QByteArray> { framed("01 06 10 01 00 00") });
}

TEST_F(GuardedExchangeTest, ALineThatIsSaidToEchoConfirmsByTheSecondCopyAlone)
{
    LineSettings settings = slow();
    settings.echo = EchoMode::Yes;
    ScriptedLine echoing(settings);
    GuardedExchange told(echoing.line);
    Cycle onIt(link, told);
    link.poll({});
    write("CW", 0, { 1 });

    EXPECT_EQ(onIt.step(), Cycle::Step::Retry);
    echoing.echoes = true;
    EXPECT_EQ(onIt.step(), Cycle::Step::Served);
    EXPECT_EQ(echoing.line.sent(), (QVector<QByteArray> { runCommand, runCommand }));
}

TEST_F(GuardedExchangeTest, ALineThatIsSaidNotToEchoConfirmsByTheFirstCopy)
{
    LineSettings settings = slow();
    settings.echo = EchoMode::No;
    ScriptedLine silent(settings);
    GuardedExchange told(silent.line);
    Cycle onIt(link, told);
    write("CW", 0, { 1 });

    EXPECT_EQ(onIt.step(), Cycle::Step::Served);
    EXPECT_EQ(silent.line.sent(), QVector<QByteArray> { runCommand });
}

TEST_F(GuardedExchangeTest, ALateReplyIsNeverTakenForTheNextReadOfTheSameLength)
{
    link.poll({ wanted(1, QStringLiteral("D"), 0, 2), wanted(1, QStringLiteral("D"), 8, 2) });
    for (int delay = 96; delay <= 190; ++delay) {
        SCOPED_TRACE(std::to_string(delay) + " ms late");
        inverter.registers[{ 1, 0xD000 }] = delay;
        inverter.registers[{ 1, 0xD008 }] = 1000 + delay;
        for (int i = 0; i < 3; ++i)
            inverter.changes.push_back(late(milliseconds(delay)));

        for (int i = 0; i < 12; ++i) {
            step();
            ASSERT_LT(value("D", 0), 1000);
            ASSERT_TRUE(value("D", 8) == 0 || value("D", 8) >= 1000);
        }

        ASSERT_EQ(value("D", 0), delay);
        ASSERT_EQ(value("D", 8), 1000 + delay);
    }
    EXPECT_GT(cycle.counters().total().lateReplies, 0U);
}

TEST_F(GuardedExchangeTest, ALateReplyOfAnotherStationIsToldFromTheRightOne)
{
    link.poll({ wanted(1, QStringLiteral("D"), 0, 2), wanted(2, QStringLiteral("D"), 8, 2) });
    inverter.registers[{ 2, 0xD008 }] = 0x2222;
    inverter.changes = { silence(), silence(), late(milliseconds(120)), late(milliseconds(50)) };
    step();
    step();
    step();

    const std::string next = step();

    EXPECT_EQ(next, "good");
    EXPECT_EQ(link.registerState(2, QStringLiteral("D"), 8).value, 0x2222);
    EXPECT_EQ(guard.report().lateReplies, 1);
}

TEST_F(GuardedExchangeTest, AStationsExtraGapIsKept)
{
    guard.setExtraGap(1, milliseconds(30));
    step();
    const Duration before = inverter.line.now();

    step();

    EXPECT_EQ(inverter.line.now() - before, Duration(33500) + milliseconds(8 + 9));
}

TEST_F(GuardedExchangeTest, AClosedLineIsNoFaultOfTheStation)
{
    inverter.line.unplug();

    const Cycle::Step down = cycle.step();

    EXPECT_EQ(down, Cycle::Step::LineDown);
    EXPECT_FALSE(link.registerState(1, QStringLiteral("D"), 0).failed);
}
