// SPDX-License-Identifier: MIT
// Every write ends exactly once, and nothing that blocks the driver gets in.
#include "runtime_fixture.h"

using namespace dx4::host;
using std::chrono::milliseconds;
using std::chrono::seconds;

namespace {

/// Station 1 polled for D 0 and answered once; tests write to it.
class WriteDeskTest : public ::testing::Test {
protected:
    WriteDeskTest()
    {
        host.host.setPlan(planOf({ { 1, QStringLiteral("D 0") } }));
        host.steps(3); // the adapter is known not to echo
    }

    const WriteOutcome &last() const { return host.outcomeRecords.back(); }
    int reg(int modbusRegister) { return host.stations.registers[{ 1, modbusRegister }]; }

    RuntimeUnderTest host;
};

} // namespace

TEST_F(WriteDeskTest, ACommandIsConfirmedByItsEcho)
{
    host.write(1, "CW", 0, { 1 });

    host.steps(1);

    EXPECT_EQ(host.outcomes, Texts { "1000 confirmed" });
    EXPECT_EQ(reg(0x1001), 1);
    EXPECT_EQ(host.host.pendingWrites(), 0);
}

TEST_F(WriteDeskTest, AParameterThatDiffersIsReadThenWritten)
{
    host.stations.registers[{ 1, 0xFC0D }] = 7;
    host.write(1, "F", 2573, { 8 });

    host.steps(5);

    EXPECT_EQ(host.outcomes, Texts { "1000 confirmed" });
    EXPECT_EQ(reg(0xFC0D), 8);
    EXPECT_EQ(host.sent(1, 6), 1);
}

TEST_F(WriteDeskTest, AnOutcomeTellsWhatWasWantedAndWhatWasHeldBefore)
{
    host.stations.registers[{ 1, 0xF000 }] = 7;
    host.stations.registers[{ 1, 0xF001 }] = 8;
    host.write(1, "F", 0, { 7, 9 });

    host.steps(5);

    EXPECT_EQ(last().wish.station, 1);
    EXPECT_EQ(last().wish.regType, QStringLiteral("F"));
    EXPECT_EQ(last().wish.address, 0);
    EXPECT_EQ(last().wish.values, (QVector<quint16> { 7, 9 }));
    EXPECT_EQ(last().before, (QVector<quint16> { 7, 8 }));
    EXPECT_TRUE(last().sent);
}

TEST_F(WriteDeskTest, WhatIsReadBackIsNotWhatWasHeldBefore)
{
    host.host.write({ 1, QStringLiteral("F"), 0, { 9 }, true, true });

    host.steps(5);

    EXPECT_EQ(host.outcomes, Texts { "1000 confirmed" });
    EXPECT_TRUE(last().before.isEmpty());
}

TEST_F(WriteDeskTest, AParameterThatIsHeldAlreadyIsNotWritten)
{
    host.stations.registers[{ 1, 0xF000 }] = 7;
    host.stations.registers[{ 1, 0xF001 }] = 8;
    host.write(1, "F", 0, { 7, 8 });

    host.steps(5);

    EXPECT_EQ(host.outcomes, Texts { "1000 confirmed (held)" });
    EXPECT_EQ(host.sent(1, 16), 0);
}

TEST_F(WriteDeskTest, BothBytesOfEachRegisterAreCompared)
{
    host.stations.registers[{ 1, 0xF000 }] = 0x1234;
    host.stations.registers[{ 1, 0xF001 }] = 0xABCD;
    host.write(1, "F", 0, { 0x1234, 0xABCD });
    host.steps(2);
    host.write(1, "F", 0, { 0x1234, 0xABCC });

    host.steps(3);

    EXPECT_EQ(host.outcomes, (Texts { "1000 confirmed (held)", "1001 confirmed" }));
    EXPECT_EQ(reg(0xF001), 0xABCC);
}

TEST_F(WriteDeskTest, TheLastStationIsWrittenTo)
{
    host.write(247, "FRE", 0, { 5 });

    host.steps(2);

    EXPECT_EQ(host.outcomes, Texts { "1000 confirmed" });
}

TEST_F(WriteDeskTest, AParameterIsWrittenAllTheSameWhenAskedTo)
{
    host.host.write({ 1, QStringLiteral("F"), 0, { 0 }, true, false });

    host.steps(3);

    EXPECT_EQ(host.outcomes, Texts { "1000 confirmed" });
    EXPECT_EQ(host.sent(1, 6), 1);
}

TEST_F(WriteDeskTest, ReadBackTellsAValueThatWasNotTaken)
{
    host.host.write({ 1, QStringLiteral("F"), 0, { 9 }, true, true });
    host.host.write({ 1, QStringLiteral("F"), 1, { 9 }, true, true });
    host.steps(1);
    host.stations.registers[{ 1, 0xF000 }] = 5;

    host.steps(8);

    EXPECT_EQ(host.outcomes, (Texts { "1000 not taken", "1001 confirmed" }));
}

TEST_F(WriteDeskTest, AnExceptionRejectsWithItsCodeAndWithoutRetry)
{
    host.stations.changes = { instead(framed("01 86 03")) };
    host.write(1, "FRE", 0, { 60000 });

    host.steps(2);

    EXPECT_EQ(host.outcomes, Texts { "1000 rejected (exception 3)" });
    EXPECT_EQ(host.sent(1, 6), 1);
}

TEST_F(WriteDeskTest, SilenceTimesOutAfterAllTries)
{
    host.stations.changes = { silence(), silence(), silence() };
    host.write(1, "FRE", 0, { 100 });

    host.steps(4);

    EXPECT_EQ(host.outcomes, Texts { "1000 timed out" });
    EXPECT_EQ(host.sent(1, 6), 3);
}

TEST_F(WriteDeskTest, ANewerValueReplacesOneThatWaits)
{
    host.write(1, "CW", 0, { 1 });
    host.write(1, "FRE", 0, { 100 });
    host.write(1, "FRE", 0, { 200 });

    host.steps(4);

    EXPECT_EQ(host.outcomes, (Texts { "1001 replaced", "1000 confirmed", "1002 confirmed" }));
    EXPECT_EQ(reg(0x1002), 200);
}

TEST_F(WriteDeskTest, ANewerParameterReplacesOneThatIsBeingCompared)
{
    host.write(1, "F", 0, { 1 });
    host.write(1, "F", 0, { 2 });

    host.steps(6);

    EXPECT_EQ(host.outcomes, (Texts { "1000 replaced", "1001 confirmed" }));
    EXPECT_EQ(reg(0xF000), 2);
}

TEST_F(WriteDeskTest, AComparisonIsNotBelievedWhileAnOlderWriteWaits)
{
    host.stations.registers[{ 1, 0xF000 }] = 5;
    host.host.write({ 1, QStringLiteral("F"), 0, { 6, 6 }, true, false });
    host.write(1, "F", 0, { 5 });

    host.steps(8);

    EXPECT_EQ(host.outcomes, (Texts { "1000 confirmed", "1001 confirmed" }));
    EXPECT_EQ(reg(0xF000), 5);
}

TEST_F(WriteDeskTest, AFailedReadTakesNoOtherWriteWithIt)
{
    host.write(1, "F", 0, { 1 });
    host.write(1, "F", 1, { 2 });
    host.stations.changes = { instead(framed("01 83 02")) };

    host.steps(8);

    EXPECT_EQ(host.outcomes, (Texts { "1000 rejected (exception 2)", "1001 confirmed" }));
    EXPECT_EQ(reg(0xF001), 2);
}

TEST_F(WriteDeskTest, AWriteThatWaitsWhenTheLineGoesDownIsNeverSent)
{
    host.write(1, "CW", 0, { 1 });
    host.stations.line.unplug();
    host.steps(3);
    host.stations.line.plugIn();

    host.runFor(seconds(5));

    EXPECT_EQ(host.outcomes, Texts { "1000 timed out" });
    EXPECT_FALSE(last().sent);
    EXPECT_EQ(last().text.toStdString(), "station 1, CW 0 (0x1001): not sent: the line broke");
    EXPECT_EQ(host.sent(1, 6), 0);
}

TEST_F(WriteDeskTest, AWriteThatIsToBeRepeatedWhenTheLineGoesDownWasSent)
{
    host.stations.changes = { silence() };
    host.write(1, "CW", 0, { 1 });
    host.steps(1);

    host.stations.line.unplug();
    host.steps(1);

    EXPECT_EQ(host.outcomes, Texts { "1000 timed out" });
    EXPECT_TRUE(last().sent);
    EXPECT_EQ(last().text.toStdString(),
              "station 1, CW 0 (0x1001): sent, but not confirmed: the line broke");
}

TEST_F(WriteDeskTest, AWriteUnderWhichTheLineBreaksMayHaveBeenSent)
{
    host.stations.changes = { [this](const QByteArray &) {
        host.stations.line.unplug();
        return MemoryLine::Answer {};
    } };
    host.write(1, "CW", 0, { 1 });

    host.steps(1);

    EXPECT_EQ(host.outcomes, Texts { "1000 timed out" });
    EXPECT_TRUE(last().sent);
}

TEST_F(WriteDeskTest, AWriteToAStationThatIsLeftAloneMeanwhileIsNotSent)
{
    host.stations.dead = { 1 };
    host.write(1, "CW", 0, { 1 });
    host.write(1, "FRE", 0, { 100 });
    host.host.write({ 1, QStringLiteral("F"), 0, { 7 }, true, false });

    host.runFor(milliseconds(900)); // two requests with three tries each, and no probe yet

    ASSERT_EQ(host.outcomes, (Texts { "1000 timed out", "1001 timed out", "1002 timed out" }));
    EXPECT_TRUE(host.outcomeRecords.at(1).sent);
    EXPECT_FALSE(last().sent);
    EXPECT_EQ(last().text.toStdString(),
              "station 1, F 0.0 (0xF000): not asked, as the station is silent");
}

TEST_F(WriteDeskTest, AWriteThatWasSentIsNotRefusedByAStop)
{
    host.stations.changes = { silence() };
    host.write(1, "CW", 0, { 1 });
    host.steps(1);

    host.host.stop(seconds(1));

    EXPECT_EQ(host.outcomes, Texts { "1000 timed out" });
    EXPECT_EQ(last().refusal, Refusal::None);
    EXPECT_TRUE(last().sent);
    EXPECT_EQ(last().text.toStdString(),
              "station 1, CW 0 (0x1001): sent, but not confirmed: a stop goes first");
}

TEST_F(WriteDeskTest, AWriteThatIsBeingReadBackIsNotRefusedByAStop)
{
    host.host.write({ 1, QStringLiteral("F"), 0, { 9 }, true, true });
    host.steps(1);

    host.host.stop(seconds(1));

    EXPECT_EQ(host.outcomes, Texts { "1000 timed out" });
    EXPECT_TRUE(last().sent);
    EXPECT_EQ(last().text.toStdString(),
              "station 1, F 0.0 (0xF000): echoed, but could not be read back: a stop goes first");
}

TEST_F(WriteDeskTest, AValueThatCannotBeReadBackWasSentAllTheSame)
{
    host.host.write({ 1, QStringLiteral("F"), 0, { 9 }, true, true });
    host.steps(1);
    host.stations.changes = { instead(framed("01 83 02")) };

    host.steps(1);

    EXPECT_EQ(host.outcomes, Texts { "1000 rejected (exception 2)" });
    EXPECT_TRUE(last().sent);
    EXPECT_EQ(
        last().text.toStdString(),
        "station 1, F 0.0 (0xF000): echoed, but could not be read back: refused with exception 2, "
        "register not there");
}

TEST(WriteDesk, WritesThatStayLocalEndAtOnceAndUnsent)
{
    RuntimeSettings settings;
    settings.link.writesStayLocal = true;
    RuntimeUnderTest host(settings);
    host.write(1, "F", 0, { 9 });
    const int before = host.value(1, "F", 0);

    host.host.step();

    EXPECT_EQ(host.outcomes, Texts { "1000 confirmed (held)" });
    EXPECT_EQ(host.outcomeRecords.back().text.toStdString(),
              "station 1, F 0.0 (0xF000): kept here, nothing is sent");
    EXPECT_EQ(before, 9);
    EXPECT_EQ(host.value(1, "F", 0), 9);
    EXPECT_TRUE(host.stations.line.sent().isEmpty());
}

TEST(WriteDesk, ManyWritesThatWaitWhenTheLineGoesDownAreNeverSent)
{
    RuntimeUnderTest host; // polls nothing: the driver pauses between some writes
    host.write(1, "FRE", 0, { 1 });
    host.steps(1);
    for (int i = 0; i < 20; ++i)
        host.host.write({ 1, QStringLiteral("F"), i % 10 + i / 10 * 256, { 7 }, true, false });
    host.stations.line.unplug();
    host.steps(1);
    host.stations.line.plugIn();

    host.runFor(seconds(5));

    EXPECT_EQ(host.outcomes.size(), 1U + 20U);
    EXPECT_EQ(host.outcomes.back(), "1020 timed out");
    EXPECT_EQ(host.sent(1, 6), 1);
}

TEST_F(WriteDeskTest, AThousandWritesEndOnceEach)
{
    for (int i = 0; i < 1000; ++i) {
        host.stations.changes.push_back(i % 7 == 0 ? silence() : late(milliseconds(0)));
        host.write(1, i % 3 ? "F" : "CW", i % 3 ? i % 10 : 0, { static_cast<quint16>(i) });
        host.steps(i % 2);
    }

    host.runFor(seconds(60));

    std::set<int> ids;
    for (const WriteOutcome &outcome : host.outcomeRecords)
        ids.insert(outcome.id);
    EXPECT_EQ(host.outcomeRecords.size(), 1000U);
    EXPECT_EQ(ids.size(), 1000U);
    EXPECT_EQ(host.host.pendingWrites(), 0);
}

namespace {

struct RefusalCase {
    const char *name;
    WriteWish wish;
    Refusal refusal;
};

class WriteRefusal : public ::testing::TestWithParam<RefusalCase> { };

QVector<quint16> zeros(int count)
{
    return QVector<quint16>(count, 0);
}

} // namespace

TEST_P(WriteRefusal, IsReportedByTheNextStepAndNeverReachesTheDriver)
{
    RuntimeUnderTest host;
    host.host.setPlan(planOf({ { 1, QStringLiteral("D 0") } }));
    host.steps(1);
    host.host.write(GetParam().wish);
    const Texts early = host.outcomes;

    host.steps(1);

    EXPECT_EQ(early, Texts {});
    ASSERT_EQ(host.outcomes, Texts { "1000 refused" });
    EXPECT_EQ(host.outcomeRecords.front().refusal, GetParam().refusal);
    EXPECT_EQ(host.host.pendingWrites(), 0);
    EXPECT_EQ(host.sent(1, 3), 2) << "the polled block";
    EXPECT_EQ(host.stations.line.sent().size(), 2);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, WriteRefusal,
    ::testing::Values(
        RefusalCase { "MonitorValue", { 1, QStringLiteral("D"), 0, zeros(1) }, Refusal::Access },
        RefusalCase { "StatusWord", { 1, QStringLiteral("SW"), 0, zeros(1) }, Refusal::Access },
        RefusalCase { "UnknownType", { 1, QStringLiteral("X"), 0, zeros(1) }, Refusal::Access },
        RefusalCase { "TwoCommands", { 1, QStringLiteral("CW"), 0, zeros(2) }, Refusal::Count },
        RefusalCase { "NoValue", { 1, QStringLiteral("CW"), 0, {} }, Refusal::Count },
        RefusalCase { "MoreThanABlock", { 1, QStringLiteral("F"), 0, zeros(17) }, Refusal::Count },
        RefusalCase { "PastTheGroup", { 1, QStringLiteral("F"), 18, zeros(2) }, Refusal::Range },
        RefusalCase { "C14", { 1, QStringLiteral("F"), 2574, zeros(1) }, Refusal::Range },
        RefusalCase {
            "GroupThatIsNone", { 1, QStringLiteral("F"), 2816, zeros(1) }, Refusal::Range },
        RefusalCase {
            "GroupThatIsShownAsC", { 1, QStringLiteral("F"), 3072, zeros(1) }, Refusal::Range },
        RefusalCase { "NegativeAddress", { 1, QStringLiteral("F"), -1, zeros(1) }, Refusal::Range },
        RefusalCase {
            "SecondCommandWord", { 1, QStringLiteral("CW"), 1, zeros(1) }, Refusal::Range },
        RefusalCase { "Station0", { 0, QStringLiteral("CW"), 0, zeros(1) }, Refusal::Station },
        RefusalCase { "Station248", { 248, QStringLiteral("CW"), 0, zeros(1) }, Refusal::Station },
        RefusalCase { "CommandToASilentStation",
                      { 2, QStringLiteral("CW"), 0, { 1 } },
                      Refusal::NotAnswered }),
    [](const auto &tested) { return tested.param.name; });

TEST_F(WriteDeskTest, AClosedLineRefuses)
{
    host.stations.line.unplug();

    host.write(1, "CW", 0, { 1 });
    host.steps(1);

    ASSERT_EQ(host.outcomes, Texts { "1000 refused" });
    EXPECT_EQ(host.outcomeRecords.front().refusal, Refusal::NotConnected);
}

TEST_F(WriteDeskTest, AStationThatIsLeftAloneRefuses)
{
    host.stations.dead = { 1 };
    host.runFor(seconds(3));

    host.write(1, "FRE", 0, { 1 });
    host.steps(1);

    ASSERT_EQ(host.outcomes, Texts { "1000 refused" });
    EXPECT_EQ(host.outcomeRecords.front().refusal, Refusal::NotConnected);
}

TEST_F(WriteDeskTest, AFullQueueRefuses)
{
    for (int i = 0; i < 513; ++i)
        host.host.write({ 1, QStringLiteral("F"), i % 2, { 1 }, true, false });
    host.host.step();

    ASSERT_EQ(host.outcomes, (Texts { "1512 refused", "1000 confirmed" }));
    EXPECT_EQ(host.outcomeRecords.front().refusal, Refusal::QueueFull);
    EXPECT_EQ(host.host.pendingWrites(), 511);
}

TEST_F(WriteDeskTest, AQueueFullOfOneStationsWritesTakesSixteenOfEachOther)
{
    for (int i = 0; i < 512; ++i)
        host.host.write({ 1, QStringLiteral("F"), i % 2, { 1 }, true, false });
    for (int i = 0; i < 17; ++i)
        host.host.write({ 2, QStringLiteral("F"), i % 2, { 1 }, true, false });
    host.host.step();

    ASSERT_GE(host.outcomes.size(), 1);
    EXPECT_EQ(host.outcomes.front(), "1528 refused");
    EXPECT_EQ(host.outcomeRecords.front().refusal, Refusal::QueueFull);
}

TEST_F(WriteDeskTest, AFullQueueTakesWhatReplacesItsLastWrite)
{
    for (int i = 0; i < 512; ++i)
        host.host.write({ 1, QStringLiteral("F"), i % 2, { 1 }, true, false });
    host.host.write({ 1, QStringLiteral("F"), 1, { 2 }, true, false });
    for (int i = 0; i < 16; ++i)
        host.host.write({ 2, QStringLiteral("F"), i % 2, { 1 }, true, false });
    host.host.write({ 2, QStringLiteral("F"), 1, { 2 }, true, false });

    host.host.step();

    ASSERT_EQ(host.outcomes.size(), 3U);
    EXPECT_EQ(host.outcomes.at(0), "1511 replaced");
    EXPECT_EQ(host.outcomes.at(1), "1528 replaced");
    EXPECT_EQ(host.outcomes.at(2), "1000 confirmed");
}
