// SPDX-License-Identifier: MIT
// What a tool sees of a running line: values with their age, counters, plans and two lines at once.
#include "runtime_fixture.h"

#include <QJsonArray>

#include <chrono>
#include <stdexcept>
#include <thread>

using namespace dx4::host;
using std::chrono::milliseconds;
using std::chrono::seconds;

namespace {

class RuntimeTest : public ::testing::Test {
protected:
    RuntimeTest()
    {
        host.host.setPlan(planOf({ { 1, QStringLiteral("D 0-1") } }));
        host.stations.registers[{ 1, 0xD000 }] = 17;
    }

    Value shown() const { return host.host.value(1, QStringLiteral("D"), 0); }

    RuntimeUnderTest host;
};

} // namespace

TEST_F(RuntimeTest, AValueIsUnknownAndStaleBeforeItWasRead)
{
    EXPECT_FALSE(shown().known);
    EXPECT_TRUE(shown().stale);
}

TEST_F(RuntimeTest, AReadValueHasAnAgeAndGrowsStale)
{
    host.steps(1);
    const Value fresh = shown();
    host.stations.line.advance(seconds(5) + milliseconds(1));

    EXPECT_EQ(fresh.value, 17);
    EXPECT_TRUE(fresh.known);
    EXPECT_FALSE(fresh.stale);
    EXPECT_EQ(fresh.age, Duration { 0 });
    EXPECT_EQ(shown().age, milliseconds(5001));
    EXPECT_TRUE(shown().stale);
}

TEST_F(RuntimeTest, AValueIsAsOldAsTheLatestExchangeThatBroughtIt)
{
    host.write(1, "F", 2, { 5 });
    host.runFor(seconds(1));
    host.write(1, "F", 2, { 6, 7 });
    host.runFor(milliseconds(500));

    const Value value = host.host.value(1, QStringLiteral("F"), 2);

    EXPECT_EQ(value.value, 6);
    EXPECT_LT(value.age, milliseconds(500));
}

TEST_F(RuntimeTest, AValueIsAsOldAsTheLatestExchangeAlsoWhereThatBroughtFewer)
{
    host.write(1, "F", 2, { 6, 7 });
    host.runFor(seconds(1));
    host.write(1, "F", 2, { 8 });
    host.runFor(milliseconds(500));

    EXPECT_LT(host.host.value(1, QStringLiteral("F"), 2).age, milliseconds(500));
    EXPECT_GT(host.host.value(1, QStringLiteral("F"), 3).age, seconds(1));
}

TEST_F(RuntimeTest, AValueIsStaleBehindItsTimeNotAtIt)
{
    host.steps(1);
    host.stations.line.advance(seconds(5));

    EXPECT_EQ(shown().age, seconds(5));
    EXPECT_FALSE(shown().stale);
}

TEST_F(RuntimeTest, AWriteOfSomebodyElseOnTheLinkIsShownAsPendingToo)
{
    host.steps(1);
    host.host.link().write(1, QStringLiteral("FRE"), 0, { 5 }, 7);

    const Value waiting = host.host.value(1, QStringLiteral("FRE"), 0);
    host.steps(1);
    const Value done = host.host.value(1, QStringLiteral("FRE"), 0);

    EXPECT_TRUE(waiting.writePending);
    EXPECT_EQ(waiting.value, 5);
    EXPECT_FALSE(done.writePending);
    EXPECT_EQ(done.value, 5);
}

TEST_F(RuntimeTest, AGivenUpReadKeepsItsValueAndIsMarked)
{
    host.steps(1);
    host.stations.changes = { silence(), silence(), silence() };

    host.steps(3);

    EXPECT_EQ(shown().value, 17);
    EXPECT_TRUE(shown().failed);
}

TEST_F(RuntimeTest, AConfirmedCommandIsKnownAndAgesLikeAReadValue)
{
    host.steps(1);
    host.write(1, "CW", 0, { 3 });
    host.steps(1);
    const Value fresh = host.host.value(1, QStringLiteral("CW"), 0);

    host.stations.line.advance(seconds(5) + milliseconds(1));

    const Value old = host.host.value(1, QStringLiteral("CW"), 0);
    EXPECT_EQ(fresh.value, 3);
    EXPECT_TRUE(fresh.known);
    EXPECT_FALSE(fresh.stale);
    EXPECT_FALSE(fresh.writePending);
    EXPECT_EQ(fresh.age, Duration { 0 });
    EXPECT_EQ(old.value, 3);
    EXPECT_EQ(old.age, milliseconds(5001));
    EXPECT_TRUE(old.stale);
}

TEST_F(RuntimeTest, AConfirmedRunOfParametersIsKnownRegisterByRegister)
{
    host.steps(1);
    host.write(1, "F", 2, { 8, 9 });
    host.steps(3); // compared, written

    const Value second = host.host.value(1, QStringLiteral("F"), 3);
    EXPECT_EQ(second.value, 9);
    EXPECT_TRUE(second.known);
    EXPECT_FALSE(second.stale);
    EXPECT_FALSE(host.host.value(1, QStringLiteral("F"), 4).known);
}

TEST_F(RuntimeTest, AWriteThatWaitsShowsItsValueAndIsNotKnownByIt)
{
    host.steps(1);
    host.write(1, "FRE", 0, { 100 });
    host.write(1, "F", 2, { 8 });

    const Value frequency = host.host.value(1, QStringLiteral("FRE"), 0);
    const Value parameter = host.host.value(1, QStringLiteral("F"), 2);

    EXPECT_EQ(frequency.value, 100);
    EXPECT_TRUE(frequency.writePending);
    EXPECT_FALSE(frequency.known);
    EXPECT_EQ(parameter.value, 8);
    EXPECT_TRUE(parameter.writePending);
}

TEST_F(RuntimeTest, ACommandThatWasSentAndNotConfirmedMakesTheOneBeforeDoubtful)
{
    host.steps(1);
    host.write(1, "CW", 0, { 3 });
    host.steps(1);
    host.stations.changes = { silence(), silence(), silence() };
    host.write(1, "CW", 0, { 0 });

    host.steps(3);

    const Value command = host.host.value(1, QStringLiteral("CW"), 0);
    EXPECT_EQ(host.outcomes, (Texts { "1000 confirmed", "1001 timed out" }));
    EXPECT_EQ(command.value, 3);
    EXPECT_TRUE(command.stale) << "the station may hold 0";
}

TEST_F(RuntimeTest, ACommandOnTheLineAsItBreaksMakesTheOneBeforeDoubtfulAndIsNotSentAgain)
{
    host.steps(1);
    host.write(1, "CW", 0, { 3 });
    host.steps(1);
    host.stations.changes = { [this](const QByteArray &) {
        host.stations.line.unplug();
        return MemoryLine::Answer {};
    } };
    host.write(1, "CW", 0, { 1 });
    const Runtime::Step step = host.host.step();
    const auto before = host.stations.line.sent().size();
    host.stations.line.plugIn();

    host.runFor(milliseconds(500));

    const Value command = host.host.value(1, QStringLiteral("CW"), 0);
    EXPECT_EQ(step, Runtime::Step::LineDown);
    EXPECT_EQ(host.outcomes, (Texts { "1000 confirmed", "1001 timed out" }));
    EXPECT_GT(host.stations.line.sent().size(), before);
    EXPECT_FALSE(host.stations.line.sent().mid(before).contains(framed("01 06 10 01 00 01")));
    EXPECT_EQ(command.value, 3);
    EXPECT_TRUE(command.stale) << "the station may hold 1";
}

TEST(RuntimeWrites, ToAStationThatIsLeftAloneDoNotEndByTheRefusalOfAnother)
{
    RuntimeUnderTest under;
    under.stations.dead = { 1 };
    under.stations.refused = { { 2, 0xF000 } };
    under.write(1, "F", 0, { 5 });
    under.write(2, "F", 0, { 5 });
    under.write(1, "F", 1, { 5 });

    under.runFor(seconds(2));

    EXPECT_EQ(under.outcomes,
              (Texts { "1000 timed out", "1001 rejected (exception 2)", "1002 timed out" }));
}

TEST_F(RuntimeTest, AConfirmedCommandEndsTheDoubtOfTheOneBefore)
{
    host.steps(3);
    host.stations.changes = { silence(), silence(), silence() };
    host.write(1, "FRE", 0, { 100 });
    host.runFor(seconds(1));
    const bool isDoubtful = host.host.value(1, QStringLiteral("FRE"), 0).stale;

    host.write(1, "FRE", 0, { 200 });
    host.runFor(seconds(1));

    EXPECT_EQ(host.outcomes, (Texts { "1000 timed out", "1001 confirmed" }));
    EXPECT_TRUE(isDoubtful);
    EXPECT_FALSE(host.host.value(1, QStringLiteral("FRE"), 0).stale);
}

TEST_F(RuntimeTest, ARefusedCommandLeavesTheOneBeforeAsItWas)
{
    host.steps(1);
    host.write(1, "CW", 0, { 3 });
    host.steps(1);
    host.stations.changes = { instead(framed("01 86 03")) };
    host.write(1, "CW", 0, { 9 });

    host.steps(1);

    const Value command = host.host.value(1, QStringLiteral("CW"), 0);
    EXPECT_EQ(command.value, 3);
    EXPECT_FALSE(command.stale);
}

TEST_F(RuntimeTest, APulledPlugMarksValuesStaleAndAReturningLineIsReopened)
{
    host.steps(1);
    host.stations.line.unplug();
    host.runFor(seconds(3));
    const Value during = shown();
    const QString error = host.host.lineError();
    host.stations.line.plugIn();

    host.runFor(seconds(3));

    EXPECT_EQ(during.value, 17);
    EXPECT_TRUE(during.stale);
    EXPECT_EQ(error, QStringLiteral("memory line: unplugged"));
    EXPECT_EQ(host.host.lineError(), QString());
    EXPECT_FALSE(shown().stale);
    EXPECT_EQ(host.host.counters().lineDowns(), 1U);
}

TEST_F(RuntimeTest, APlanChangesOnlyBetweenTwoRequests)
{
    host.stations.changes = { silence() };
    host.steps(1);
    host.host.setPlan(planOf({ { 1, QStringLiteral("D 8") } }));

    host.steps(2);

    EXPECT_EQ(host.stations.line.sent(),
              (QVector<QByteArray> { framed("01 03 D0 00 00 02"), framed("01 03 D0 00 00 02"),
                                     framed("01 03 D0 08 00 01") }));
}

TEST_F(RuntimeTest, CountersTellBlocksStationsAndTheLine)
{
    host.stations.changes = { silence(), instead(framed("01 83 04")) };

    host.steps(3);

    const QJsonObject json = host.host.countersJson();
    const QJsonObject station = json.value(QStringLiteral("stations")).toArray().at(0).toObject();
    const QJsonObject block = station.value(QStringLiteral("blocks")).toArray().at(0).toObject();
    EXPECT_EQ(block.value(QStringLiteral("address")).toString(), QStringLiteral("D 0"));
    EXPECT_EQ(block.value(QStringLiteral("requests")).toInt(), 3);
    EXPECT_EQ(block.value(QStringLiteral("good")).toInt(), 1);
    EXPECT_EQ(block.value(QStringLiteral("timeouts")).toInt(), 1);
    EXPECT_EQ(block.value(QStringLiteral("retries")).toInt(), 2);
    EXPECT_EQ(
        block.value(QStringLiteral("exceptions")).toObject().value(QStringLiteral("4")).toInt(), 1);
    EXPECT_EQ(
        json.value(QStringLiteral("total")).toObject().value(QStringLiteral("requests")).toInt(),
        3);
    EXPECT_GT(
        json.value(QStringLiteral("line")).toObject().value(QStringLiteral("load")).toDouble(),
        0.5);
}

TEST_F(RuntimeTest, TurnaroundsFallIntoTheirClass)
{
    host.stations.slow[1] = milliseconds(7);

    host.steps(4);

    const RequestCounts counts = host.host.counters().station(1);
    EXPECT_EQ(counts.turnaround.at(3), 4U); // above 5 ms, up to 10 ms
}

TEST_F(RuntimeTest, AGivenUpRequestIsCountedOnce)
{
    host.stations.changes = { silence(), silence(), silence() };

    host.steps(4);

    EXPECT_EQ(host.host.counters().total().giveUps, 1U);
    EXPECT_EQ(host.host.counters().total().retries, 2U);
    EXPECT_EQ(host.host.counters().total().timeouts, 3U);
}

TEST(Runtime, RefusesAPlugInThatIsNull)
{
    ScriptedLine stations;

    EXPECT_THROW(Runtime(nullptr, stations.line, RuntimeSettings()), std::invalid_argument);
}

namespace {

/// A line whose port is not there; notes when somebody tried it.
class AbsentLine : public MemoryLine {
public:
    AbsentLine()
        : MemoryLine([](const QByteArray &) { return Answer {}; })
    {
        unplug();
    }

    bool open(QString *error) override
    {
        attempts.push_back(now() / milliseconds(1));
        return MemoryLine::open(error);
    }

    std::vector<qint64> attempts; ///< in ms
};

} // namespace

TEST(RuntimeWrites, NeedNobodyWhoListens)
{
    ScriptedLine stations;
    Runtime runtime(privateCopy(), stations.line, RuntimeSettings());
    runtime.step();
    WriteWish wish;
    wish.station = 1;
    wish.regType = QStringLiteral("FRE");
    wish.values = { 5 };
    runtime.write(wish);

    EXPECT_NO_THROW(runtime.step());

    EXPECT_EQ(runtime.pendingWrites(), 0);
    EXPECT_EQ(stations.registers.at({ 1, 0x1002 }), 5);
}

TEST(RuntimeBreaker, AStrangerThatIsSilentIsTriedOnceBesideOneOtherStation)
{
    RuntimeUnderTest under;
    under.host.setPlan(planOf({ { 1, QStringLiteral("SW") }, { 2, QStringLiteral("SW") } }));
    under.stations.dead = { 2 };

    under.steps(3);

    EXPECT_EQ(under.stations.line.sent(),
              (QVector<QByteArray> { framed("01 03 20 00 00 01"), framed("02 03 20 00 00 01"),
                                     framed("01 03 20 00 00 01") }));
}

TEST(RuntimeValues, AreNotKnownByReadsOfOtherTypesOrStations)
{
    RuntimeUnderTest under;
    under.host.setPlan(
        planOf({ { 1, QStringLiteral("F 0.0-0.1") }, { 2, QStringLiteral("D 0-1") } }));

    under.steps(2);

    EXPECT_TRUE(under.host.value(1, QStringLiteral("F"), 1).known);
    EXPECT_TRUE(under.host.value(2, QStringLiteral("D"), 1).known);
    EXPECT_FALSE(under.host.value(1, QStringLiteral("D"), 1).known) << "station 2 was read";
    EXPECT_FALSE(under.host.value(1, QStringLiteral("CW"), 0).known) << "F was read";
    EXPECT_FALSE(under.host.value(1, QStringLiteral("F"), 2).known) << "behind the block";
}

TEST(RuntimeIdle, IsATenthOfASecondWhereNothingIsDue)
{
    RuntimeUnderTest under;

    EXPECT_EQ(under.host.step(), Runtime::Step::Idle);
    EXPECT_EQ(under.host.idleTime(), milliseconds(100));
}

TEST(RuntimeIdle, EndsWhenTheNextProbeIsDueAndIsAMillisecondAtLeast)
{
    RuntimeUnderTest under;
    under.host.setPlan(planOf({ { 1, QStringLiteral("D 0") } }));
    under.stations.dead = { 1 };
    while (!under.host.isLeftAlone(1))
        under.host.step();

    under.stations.line.advance(milliseconds(970));
    const Duration shortly = under.host.idleTime();
    under.stations.line.advance(milliseconds(30));

    EXPECT_EQ(shortly, milliseconds(30));
    EXPECT_EQ(under.host.idleTime(), milliseconds(1));
}

TEST(RuntimeIdle, EndsWhenTheLineIsTriedNext)
{
    AbsentLine line;
    Runtime runtime(privateCopy(), line, RuntimeSettings());

    EXPECT_EQ(runtime.step(), Runtime::Step::LineDown);
    EXPECT_EQ(runtime.idleTime(), milliseconds(50));
    line.advance(milliseconds(20));
    EXPECT_EQ(runtime.idleTime(), milliseconds(30));
}

TEST(RuntimeIdle, EndsWhenTheNextStopIsDue)
{
    RuntimeSettings settings;
    settings.stops = { { 1, 0 } };
    RuntimeUnderTest under(settings);
    under.host.setPlan(planOf({ { 1, QStringLiteral("D 0") } }));
    under.steps(2);
    under.stations.dead = { 1 };
    under.host.stop(Duration { 0 });
    EXPECT_FALSE(under.host.isLeftAlone(1));

    under.stations.line.advance(milliseconds(170));

    EXPECT_EQ(under.host.idleTime(), milliseconds(30));
}

TEST(RuntimeIdle, IsSleptWhereNobodyElsePauses)
{
    MemoryLine line([](const QByteArray &) { return MemoryLine::Answer {}; });
    Runtime runtime(privateCopy(), line, RuntimeSettings());
    const auto before = std::chrono::steady_clock::now();
    int asked = 0;

    runtime.run([&asked] { return ++asked > 1; });

    EXPECT_GE(std::chrono::steady_clock::now() - before, milliseconds(100));
}

TEST(RuntimeIdle, IsWhereSomebodyIsInAHurryAndNothingIsAsked)
{
    RuntimeSettings settings;
    settings.isHurried = [] { return true; };
    RuntimeUnderTest under(settings);
    under.host.setPlan(planOf({ { 1, QStringLiteral("D 0") } }));

    EXPECT_EQ(under.host.step(), Runtime::Step::Idle);
    EXPECT_TRUE(under.stations.line.sent().isEmpty());
}

TEST(RuntimeIdle, IsNotBetweenWritesThatWait)
{
    RuntimeUnderTest under;
    for (int i = 0; i < 12; ++i)
        under.write(1, "F", i, { 7 });

    int steps = 0;
    for (; under.outcomes.size() < 12; ++steps)
        ASSERT_EQ(under.host.step(), Runtime::Step::Served);

    // Each is compared and sent.
    EXPECT_EQ(steps, 24);
    EXPECT_EQ(under.host.step(), Runtime::Step::Idle);
}

TEST(RuntimeReopening, PausesDoubleFrom50MillisecondsTo2Seconds)
{
    AbsentLine line;
    RuntimeSettings settings;
    settings.pause = [&line](Duration span) { line.advance(span); };
    Runtime runtime(privateCopy(), line, settings);

    runtime.run([&line] { return line.now() >= seconds(8); });

    EXPECT_EQ(line.attempts,
              (std::vector<qint64> { 0, 50, 150, 350, 750, 1550, 3150, 5150, 7150 }));
}

TEST(RuntimeReopening, PausesAreShortAgainForAStop)
{
    AbsentLine line;
    RuntimeSettings settings;
    settings.pause = [&line](Duration span) { line.advance(span); };
    settings.stops = { { 1, 0 } };
    Runtime runtime(privateCopy(), line, settings);
    runtime.run([&line] { return line.now() >= seconds(4); });
    line.attempts.clear();
    const qint64 begin = line.now() / milliseconds(1);

    runtime.stop(seconds(1));

    for (qint64 &attempt : line.attempts)
        attempt -= begin;
    EXPECT_EQ(line.attempts, (std::vector<qint64> { 0, 50, 150, 350, 750 }));
}

TEST(RuntimeReopening, ALineThatOpensIsUsedInTheSameStep)
{
    RuntimeUnderTest under;
    under.host.setPlan(planOf({ { 1, QStringLiteral("D 0") } }));
    under.stations.line.close();

    const Runtime::Step step = under.host.step();

    EXPECT_EQ(step, Runtime::Step::Served);
    EXPECT_EQ(under.stations.line.sent().size(), 1);
}

TEST(RuntimeReopening, ALineThatBreaksInTheStepAfterItTakesTheWritesWithIt)
{
    RuntimeUnderTest under;
    under.stations.line.close();
    EXPECT_EQ(under.host.step(), Runtime::Step::Idle);
    under.write(1, "FRE", 0, { 5 });
    under.stations.line.unplug();

    EXPECT_EQ(under.host.step(), Runtime::Step::LineDown);

    EXPECT_EQ(under.outcomes, Texts { "1000 timed out" });
    EXPECT_EQ(under.host.pendingWrites(), 0);
}

namespace {

/// A line that opens and breaks at the first frame.
class BreakingLine : public AbsentLine {
public:
    BreakingLine() { plugIn(); }

    bool send(const QByteArray &) override
    {
        close();
        return false;
    }
};

} // namespace

TEST(RuntimeReopening, ALineThatBreaksAtOnceIsOpenedAfterThePausesToo)
{
    BreakingLine line;
    RuntimeSettings settings;
    settings.pause = [&line](Duration span) { line.advance(span); };
    Runtime runtime(privateCopy(), line, settings);
    runtime.setPlan(planOf({ { 1, QStringLiteral("D 0") } }));

    runtime.run([&line] { return line.now() >= seconds(3); });

    EXPECT_EQ(line.attempts.size(), 6U); // at 0, 50, 150, 350, 750 and 1550 ms
}

TEST(TwoRuntimes, EachOnItsOwnThreadDoWhatTheyDoAlone)
{
    constexpr int steps = 2000;
    RuntimeUnderTest first;
    RuntimeUnderTest second;
    RuntimeUnderTest alone;
    for (RuntimeUnderTest *host : { &first, &second, &alone }) {
        host->host.setPlan(planOf({ { 1, QStringLiteral("D 0") }, { 2, QStringLiteral("D 8") } }));
        host->stations.registers[{ 1, 0xD000 }] = 17;
        host->stations.dead = { 2 };
        host->write(1, "FRE", 0, { 500 });
    }

    std::thread other([&second] { second.steps(steps); });
    first.steps(steps);
    other.join();
    alone.steps(steps);

    for (const RuntimeUnderTest *host : { &first, &second }) {
        EXPECT_EQ(host->outcomes, Texts { "1000 confirmed" });
        EXPECT_EQ(host->stations.line.sent(), alone.stations.line.sent());
        EXPECT_EQ(host->host.countersJson(), alone.host.countersJson());
    }
}

TEST(TwoRuntimes, ADeadLineDoesNotDisturbTheOther)
{
    RuntimeUnderTest dead;
    RuntimeUnderTest live;
    RuntimeUnderTest alone;
    for (RuntimeUnderTest *host : { &dead, &live, &alone }) {
        host->host.setPlan(planOf({ { 1, QStringLiteral("D 0") } }));
        host->stations.registers[{ 1, 0xD000 }] = 17;
    }
    dead.stations.dead = { 1 };
    const int id = live.write(1, "FRE", 0, { 500 });
    alone.write(1, "FRE", 0, { 500 });

    for (int i = 0; i < 200; ++i) {
        dead.steps(1);
        live.steps(1);
    }
    alone.steps(200);

    EXPECT_EQ(id, 1000);
    EXPECT_EQ(live.outcomes, Texts { "1000 confirmed" });
    EXPECT_EQ(dead.outcomes, Texts {});
    EXPECT_EQ(live.value(1, "D", 0), 17);
    EXPECT_TRUE(dead.host.value(1, QStringLiteral("D"), 0).failed);
    EXPECT_EQ(live.stations.line.sent(), alone.stations.line.sent());
    EXPECT_EQ(live.stations.line.now(), alone.stations.line.now());
}

TEST(RuntimeNotice, TellsOnceThatAStationNeedsALongerTimeout)
{
    RuntimeUnderTest host;
    Texts notices;
    host.host.onNotice([&](const QString &text) { notices.push_back(text.toStdString()); });
    host.host.setPlan(planOf({ { 1, QStringLiteral("D 0") }, { 1, QStringLiteral("F 0.0") } }));
    host.stations.slow[1] = milliseconds(160);

    host.runFor(seconds(20));

    ASSERT_EQ(notices.size(), 1U);
    EXPECT_EQ(
        notices.front().rfind("station 1 answers later than the response timeout of 100 ms;", 0),
        0U);
}

namespace {

/// A block as no Planner makes it, before others.
Plan impossible(const QList<KEY_ADDRESS> &others)
{
    Plan plan;
    plan.blocks = QList<KEY_ADDRESS> { wanted(1, QStringLiteral("D"), 20, -16) } + others;
    return plan;
}

} // namespace

TEST(Runtime, BlockThatNoStationCouldAnswerIsLeftOutAndTheRestIsPolled)
{
    RuntimeUnderTest under;
    Texts notices;
    under.host.onNotice([&](const QString &text) { notices.push_back(text.toStdString()); });
    under.stations.registers[{ 3, 0x2000 }] = 0x21;

    under.host.setPlan(impossible({ wanted(3, QStringLiteral("SW"), 0) }));
    under.steps(4);

    EXPECT_EQ(notices,
              Texts { "station 1, D 20 (0xD014): not polled, as it is a block of -16 registers; "
                      "a request asks for 1 to 123" });
    EXPECT_EQ(under.sent(3, 3), 4);
    EXPECT_EQ(under.value(3, "SW", 0), 0x21);
    EXPECT_EQ(under.sent(1, 3), 0);
    EXPECT_FALSE(under.host.value(1, QStringLiteral("D"), 20).known);
}

TEST(Runtime, PlanOfNothingButSuchABlockLeavesTheLineToWrites)
{
    RuntimeUnderTest under;
    under.host.setPlan(impossible({}));
    under.stations.line.open(nullptr);

    const Runtime::Step idle = under.host.step();
    under.write(1, "FRE", 0, { 5 });
    under.runFor(std::chrono::seconds(2));

    EXPECT_EQ(idle, Runtime::Step::Idle);
    EXPECT_EQ(under.outcomes, Texts { "1000 confirmed" });
}
