// SPDX-License-Identifier: MIT
// Writes to one station take effect in the order of submission, and stations do not wait for each
// other.
#include "runtime_fixture.h"

using namespace dx4::host;
using std::chrono::milliseconds;
using std::chrono::seconds;

namespace {

RuntimeSettings stoppedBy0()
{
    RuntimeSettings settings;
    settings.stops = { { 1, 0 }, { 2, 0 } };
    return settings;
}

WriteWish parameter(int station, int address, const QVector<quint16> &values)
{
    return { station, QStringLiteral("F"), address, values, true, false };
}

/// Stations 1 and 2, polled and answered once.
class WriteOrder : public ::testing::Test {
protected:
    WriteOrder()
    {
        host.host.setPlan(planOf({ { 1, QStringLiteral("D 0") }, { 2, QStringLiteral("D 8") } }));
        host.steps(3); // the adapter is known not to echo
    }

    /// Frames of function 6 and 16 sent to the station, in order.
    QVector<QByteArray> written(int station) const
    {
        QVector<QByteArray> frames;
        for (const QByteArray &frame : host.stations.line.sent()) {
            if (frame.at(0) == static_cast<char>(station) && frame.at(1) != 3)
                frames.append(frame);
        }
        return frames;
    }

    int reg(int modbusRegister) { return host.stations.registers[{ 1, modbusRegister }]; }

    RuntimeUnderTest host { stoppedBy0() };
};

} // namespace

TEST_F(WriteOrder, AParameterThatIsComparedFirstIsNotOvertakenByCommands)
{
    host.write(1, "F", 0x0500, { 7 });
    host.write(1, "FRE", 0, { 3000 });
    host.write(1, "CW", 0, { 1 });

    host.steps(8);

    EXPECT_EQ(written(1),
              (QVector<QByteArray> { framed("01 06 F5 00 00 07"), framed("01 06 10 02 0B B8"),
                                     framed("01 06 10 01 00 01") }));
    EXPECT_EQ(host.outcomes, (Texts { "1000 confirmed", "1001 confirmed", "1002 confirmed" }));
}

TEST_F(WriteOrder, OfOverlappingWritesTheNewerOneStays)
{
    host.stations.registers[{ 1, 0xF001 }] = 4;
    host.write(1, "F", 0, { 1, 1 });
    host.write(1, "F", 1, { 4, 4 }); // held in part before the write ahead of it
    host.write(1, "F", 0, { 5 });

    host.steps(10);

    EXPECT_EQ(host.outcomes, (Texts { "1000 confirmed", "1001 confirmed", "1002 confirmed" }));
    EXPECT_EQ(reg(0xF000), 5);
    EXPECT_EQ(reg(0xF001), 4);
    EXPECT_EQ(reg(0xF002), 4);
}

TEST_F(WriteOrder, AReadBackEndsBeforeANewerValueIsSent)
{
    host.host.write({ 1, QStringLiteral("F"), 0, { 8, 8 }, true, true });
    host.write(1, "F", 1, { 9 });

    host.steps(8);

    EXPECT_EQ(host.outcomes, (Texts { "1000 confirmed", "1001 confirmed" }));
    EXPECT_EQ(reg(0xF001), 9);
}

TEST_F(WriteOrder, AnUnsentValueIsReplacedWhereNothingWasWrittenInBetween)
{
    host.write(1, "CW", 0, { 1 });
    host.write(1, "FRE", 0, { 100 });
    host.write(2, "FRE", 0, { 900 });
    host.write(1, "FRE", 0, { 200 });

    host.steps(6);

    EXPECT_EQ(host.outcomes.front(), "1001 replaced");
    EXPECT_EQ(written(1),
              (QVector<QByteArray> { framed("01 06 10 01 00 01"), framed("01 06 10 02 00 C8") }));
}

TEST_F(WriteOrder, AnUnsentValueIsSentWhereAnotherWriteFollowedIt)
{
    host.write(1, "FRE", 0, { 100 });
    host.write(1, "CW", 0, { 1 });
    host.write(1, "FRE", 0, { 200 });

    host.steps(6);

    EXPECT_EQ(written(1),
              (QVector<QByteArray> { framed("01 06 10 02 00 64"), framed("01 06 10 01 00 01"),
                                     framed("01 06 10 02 00 C8") }));
    EXPECT_EQ(host.outcomes, (Texts { "1000 confirmed", "1001 confirmed", "1002 confirmed" }));
}

TEST_F(WriteOrder, AValueThatWasSentIsNotReplaced)
{
    host.stations.changes = { silence() };
    host.write(1, "FRE", 0, { 100 });
    host.steps(1);
    host.write(1, "FRE", 0, { 200 });

    host.steps(3);

    EXPECT_EQ(host.outcomes, (Texts { "1000 confirmed", "1001 confirmed" }));
    EXPECT_EQ(reg(0x1002), 200);
}

TEST_F(WriteOrder, AStopTakesThePlaceOfEveryUnsentCommand)
{
    host.write(1, "CW", 0, { 1 });
    host.write(1, "FRE", 0, { 100 });
    host.write(1, "CW", 0, { 3 });
    host.write(1, "F", 0, { 7 });
    host.write(1, "CW", 0, { 0 });

    host.steps(8);

    EXPECT_EQ(host.outcomes,
              (Texts { "1000 replaced", "1002 replaced", "1001 confirmed", "1003 confirmed",
                       "1004 confirmed" }));
    EXPECT_EQ(host.outcomeRecords.front().text.toStdString(),
              "station 1, CW 0 (0x1001): not sent: a stop was written after it");
    EXPECT_EQ(written(1),
              (QVector<QByteArray> { framed("01 06 10 02 00 64"), framed("01 06 F0 00 00 07"),
                                     framed("01 06 10 01 00 00") }));
}

TEST_F(WriteOrder, AStopTakesThePlaceOfACommandThatWaitsForAPolledBlock)
{
    for (int i = 0; i < 5; ++i)
        host.host.write(parameter(1, i, { 7 }));
    host.write(1, "CW", 0, { 1 });
    host.steps(6); // five writes in a row, then a block
    const int blocks = host.sent(1, 3) + host.sent(2, 3);

    host.write(1, "CW", 0, { 0 });
    host.steps(3);

    EXPECT_EQ(blocks, 4);
    EXPECT_EQ(host.sent(1, 6), 6);
    EXPECT_EQ(written(1).last(), framed("01 06 10 01 00 00"));
}

TEST_F(WriteOrder, AStopLeavesTheCommandsOfOtherStationsAndLaterOnes)
{
    host.write(2, "CW", 0, { 1 });
    host.write(1, "CW", 0, { 0 });
    host.write(1, "FRE", 0, { 100 });
    host.write(1, "CW", 0, { 1 });

    host.steps(8);

    EXPECT_EQ(written(1),
              (QVector<QByteArray> { framed("01 06 10 01 00 00"), framed("01 06 10 02 00 64"),
                                     framed("01 06 10 01 00 01") }));
    EXPECT_EQ(written(2), QVector<QByteArray> { framed("02 06 10 01 00 01") });
}

TEST_F(WriteOrder, ACommandThatIsNoStopReplacesOnlyTheOneRightBeforeIt)
{
    host.write(1, "CW", 0, { 1 });
    host.write(1, "FRE", 0, { 100 });
    host.write(1, "CW", 0, { 3 });

    host.steps(6);

    EXPECT_EQ(host.outcomes, (Texts { "1000 confirmed", "1001 confirmed", "1002 confirmed" }));
    EXPECT_EQ(written(1).size(), 3);
}

TEST_F(WriteOrder, AStopThatIsRefusedKeepsTheStartBeforeItFromBeingSent)
{
    host.write(1, "CW", 0, { 1 });
    host.stations.line.unplug();
    host.write(1, "CW", 0, { 0 });
    host.stations.line.plugIn();

    host.runFor(seconds(5));

    EXPECT_EQ(host.outcomes, (Texts { "1000 replaced", "1001 refused" }));
    EXPECT_EQ(written(1), QVector<QByteArray> {});
}

TEST_F(WriteOrder, AStopIsTakenByAFullQueue)
{
    for (int i = 0; i < 512; ++i)
        host.host.write(parameter(1, i % 2, { static_cast<quint16>(i) }));
    host.write(1, "FRE", 0, { 1 });
    host.write(1, "CW", 0, { 0 });

    host.host.step();

    EXPECT_EQ(host.outcomes.front(), "1512 refused");
    EXPECT_EQ(host.host.pendingWrites(), 512) << "those of the queue but one, and the stop";
}

TEST_F(WriteOrder, AStationThatIsSilentHoldsUpNobodyElse)
{
    host.stations.dead = { 1 };
    for (int i = 0; i < 20; ++i)
        host.host.write(parameter(1, i % 10 + i / 10 * 256, { 7 }));
    host.write(2, "FRE", 0, { 100 });

    host.steps(4); // three tries for the silent one

    EXPECT_EQ(host.outcomes, (Texts { "1000 timed out", "1020 confirmed" }));
}

TEST_F(WriteOrder, AStationWithManyWritesLeavesOthersTheirTurn)
{
    for (int i = 0; i < 20; ++i)
        host.write(1, "F", i % 10 + i / 10 * 256, { 7 });
    host.write(2, "CW", 0, { 1 });

    host.steps(2);

    EXPECT_EQ(written(2), QVector<QByteArray> { framed("02 06 10 01 00 01") });
}

TEST_F(WriteOrder, AWriteThatSomebodyElseHadGivenUpHasTimedOut)
{
    host.stations.changes = { silence() };
    host.write(1, "FRE", 0, { 100 });
    host.steps(1);
    host.host.link().failWrites();

    host.steps(1);

    EXPECT_EQ(host.outcomes, Texts { "1000 timed out" });
    EXPECT_EQ(host.outcomeRecords.front().text.toStdString(),
              "station 1, FRE 0 (0x1002): sent, but not confirmed: another request went first");
}

TEST(WriteOrderWithoutAPlan, AWriteThatSomebodyElseHadGivenUpHoldsNoOtherUp)
{
    RuntimeUnderTest host;
    host.stations.changes = { silence() };
    host.write(1, "FRE", 0, { 100 });
    host.steps(1);
    host.write(1, "FRE", 0, { 200 });
    host.host.link().failWrites();

    for (int i = 0; i < 10; ++i)
        host.host.step();

    EXPECT_EQ(host.outcomes, (Texts { "1000 timed out", "1001 confirmed" }));
}

TEST_F(WriteOrder, WritesToAStationThatIsLeftAloneCostOthersNoStep)
{
    host.stations.dead = { 1 };
    for (int i = 0; i < 40; ++i)
        host.host.write(parameter(1, i % 10 + i / 10 * 256, { 7 }));
    host.runFor(milliseconds(900)); // left alone, and no probe yet
    const int before = host.sent(2, 3);

    host.host.step();

    EXPECT_EQ(host.host.pendingWrites(), 0);
    EXPECT_GT(host.sent(2, 3), before);
}

TEST(WriteDeskWithoutARuntime, SendsWhatItIsGivenBeforeEachStep)
{
    ScriptedLine stations(slowLine());
    GuardedExchange guard(stations.line);
    Link link(privateCopy(), LinkSettings());
    Cycle cycle(link, guard);
    WriteDesk desk(link);
    Texts outcomes;
    desk.onOutcome([&](const WriteOutcome &outcome) {
        outcomes.push_back(std::to_string(outcome.id) + ' ' + writeEndName(outcome.end));
    });
    desk.submit({ 1, QStringLiteral("D"), 0, { 1 } });
    desk.submit({ 1, QStringLiteral("F"), 0, { 7 } });
    desk.submit({ 1, QStringLiteral("CW"), 0, { 1 } });

    for (int i = 0; i < 3; ++i) {
        link.handlerErrors().during([&] {
            desk.deliver();
            desk.prepare();
            const Cycle::Step step = cycle.step();
            if (step != Cycle::Step::Idle)
                desk.afterStep(cycle, step, guard.report().verdict);
        });
    }

    EXPECT_EQ(outcomes, (Texts { "1000 refused", "1001 confirmed", "1002 confirmed" }));
    EXPECT_EQ(desk.pending(), 0);
    EXPECT_EQ(desk.reported(), 3);
}
