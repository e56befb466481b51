// SPDX-License-Identifier: MIT
// Parameter sets over a runtime, with its guard and its rules for writes.
#include "host/parameters/parameter_transfer.h"
#include "host/runtime/runtime_access.h"

#include "runtime_fixture.h"

using namespace dx4::host;

namespace {

class RuntimeAccessTest : public ::testing::Test {
protected:
    RuntimeAccessTest() { under.host.setPlan(planOf({ { 1, QStringLiteral("D 0") } })); }

    int &reg(int modbusRegister) { return under.stations.registers[{ 1, modbusRegister }]; }

    RuntimeUnderTest under;
    Texts otherOutcomes;
    RuntimeAccess access { under.host, [this](const WriteOutcome &outcome) {
                              otherOutcomes.push_back(std::to_string(outcome.id) + ' '
                                                      + writeEndName(outcome.end));
                          } };
    ParameterSet set;
    QString error;
};

} // namespace

TEST_F(RuntimeAccessTest, ASetIsReadAndRestored)
{
    reg(0xF105) = 5;
    reg(0xFC0D) = 13;
    const bool read = readParameters(access, set, &error);
    reg(0xF105) = 99;

    const RestoreReport report = restoreParameters(access, 1, set);

    EXPECT_TRUE(read) << error.toStdString();
    EXPECT_EQ(set.values.value(0x0A0D), 13);
    EXPECT_TRUE(report.isRestored()) << report.interrupted.toStdString();
    EXPECT_EQ(report.written, 1);
    EXPECT_EQ(reg(0xF105), 5);
    EXPECT_EQ(under.sent(1, 16) + under.sent(1, 6), 1);
}

TEST_F(RuntimeAccessTest, ARefusedReadIsRefused)
{
    under.stations.changes.push_back(instead(framed("01 83 02")));

    const AccessResult result = access.read(1, QStringLiteral("F"), 0x0105, 1);

    EXPECT_EQ(result.kind, AccessResult::Kind::Refused);
    EXPECT_EQ(result.reason.toStdString(),
              "station 1, F 1.5 (0xF105): refused with exception 2, register not there");
    EXPECT_TRUE(result.values.isEmpty());
}

TEST_F(RuntimeAccessTest, AWriteThatIsConfirmedHasNothingToExplain)
{
    const AccessResult result = access.write(1, QStringLiteral("F"), 0x0105, 7);

    EXPECT_EQ(result.kind, AccessResult::Kind::Done);
    EXPECT_EQ(result.reason, QString());
    EXPECT_EQ(reg(0xF105), 7);
}

TEST(RuntimeAccessEnd, OutcomesGoToTheOthersFromThenOn)
{
    RuntimeUnderTest under;
    const auto others = std::make_shared<Texts>();
    {
        const RuntimeAccess access(under.host, [others](const WriteOutcome &outcome) {
            others->push_back(writeEndName(outcome.end));
        });
    }

    under.write(1, "FRE", 0, { 5 });
    under.steps(1);

    EXPECT_EQ(*others, Texts { "confirmed" });
    EXPECT_EQ(others.use_count(), 2)
        << "the runtime has their handler, not the access that is gone";
}

TEST_F(RuntimeAccessTest, ADeadStationDoesNotAnswer)
{
    under.stations.dead = { 1 };

    const AccessResult result = access.read(1, QStringLiteral("F"), 0x0105, 1);

    EXPECT_EQ(result.kind, AccessResult::Kind::NoAnswer);
    EXPECT_EQ(result.reason.toStdString(), "station 1, F 1.5 (0xF105): no reply");
}

TEST_F(RuntimeAccessTest, AStationThatIsLeftAloneIsNotAsked)
{
    under.stations.dead = { 1 };
    access.read(1, QStringLiteral("F"), 0x0105, 1);
    access.read(1, QStringLiteral("F"), 0x0105, 1);
    const auto before = under.stations.line.sent().size();

    const AccessResult result = access.read(1, QStringLiteral("F"), 0x0105, 1);

    EXPECT_EQ(result.kind, AccessResult::Kind::NoAnswer);
    EXPECT_EQ(result.reason.toStdString(),
              "station 1, F 1.5 (0xF105): not asked, as the station is silent");
    EXPECT_EQ(under.stations.line.sent().size(), before);
}

TEST_F(RuntimeAccessTest, ABareCycleTellsAStationLeftAloneToo)
{
    ScriptedLine stations(slowLine());
    stations.dead = { 1 };
    GuardedExchange guard(stations.line);
    Breaker breaker;
    breaker.noteGiveUp(1, stations.line.now());
    breaker.noteGiveUp(1, stations.line.now());
    BreakerExchange exchange(stations.line, guard, breaker);
    Link link(privateCopy(), LinkSettings());
    Cycle cycle(link, exchange);
    CycleAccess bare(link, cycle, [&guard] { return guard.report().verdict; });

    const AccessResult result = bare.read(1, QStringLiteral("F"), 0x0105, 1);

    EXPECT_EQ(result.kind, AccessResult::Kind::NoAnswer);
    EXPECT_EQ(result.reason.toStdString(),
              "station 1, F 1.5 (0xF105): not asked, as the station is silent");
    EXPECT_TRUE(stations.line.sent().isEmpty());
}

TEST_F(RuntimeAccessTest, AWriteThatIsRefusedAtOnceIsOnlyReportedHere)
{
    const AccessResult result = access.write(1, QStringLiteral("D"), 0, 5);

    EXPECT_EQ(result.kind, AccessResult::Kind::Refused);
    EXPECT_TRUE(otherOutcomes.empty());
}

TEST_F(RuntimeAccessTest, EachWriteIsSentAndHasItsOwnResult)
{
    under.steps(2);
    reg(0xF105) = 5;
    under.stations.refused = { { 1, 0xF106 } };

    const AccessResult held = access.write(1, QStringLiteral("F"), 0x0105, 5);
    const AccessResult rejected = access.write(1, QStringLiteral("F"), 0x0106, 6);

    EXPECT_EQ(held.kind, AccessResult::Kind::Done);
    EXPECT_EQ(under.sent(1, 6), 2) << "also what the station holds already";
    EXPECT_EQ(rejected.kind, AccessResult::Kind::Refused);
    EXPECT_EQ(rejected.reason.toStdString(),
              "station 1, F 1.6 (0xF106): rejected with refused with exception 2, register not "
              "there");
}

TEST_F(RuntimeAccessTest, WritesOfOthersAreReportedToThem)
{
    under.steps(1);
    under.write(1, "CW", 0, { 1 });

    const AccessResult result = access.write(1, QStringLiteral("F"), 0x0105, 5);

    EXPECT_EQ(result.kind, AccessResult::Kind::Done);
    EXPECT_EQ(otherOutcomes, Texts { "1000 confirmed" });
    EXPECT_EQ(reg(0xF105), 5);
}

TEST_F(RuntimeAccessTest, AReadWhosePlaceAnotherOfTheSameRegisterTookIsAskedAgain)
{
    reg(0xF105) = 5;
    under.steps(1);
    // At the head of the reads, whose place nobody takes.
    under.host.link().addConditionRead(1, QStringLiteral("F"), 0x0106, 1, 1);
    under.write(1, "F", 0x0105, { 5 }); // compared first

    const AccessResult result = access.read(1, QStringLiteral("F"), 0x0105, 1);

    EXPECT_EQ(result.kind, AccessResult::Kind::Done) << result.reason.toStdString();
    EXPECT_EQ(result.values, QVector<quint16> { 5 });
    EXPECT_EQ(otherOutcomes, Texts { "1000 confirmed" });
    EXPECT_EQ(under.stations.line.sent().mid(1),
              (QVector<QByteArray> { framed("01 03 F1 06 00 01"), framed("01 03 F1 05 00 01"),
                                     framed("01 03 F1 05 00 01") }));
}

TEST_F(RuntimeAccessTest, AReadThatGoesWithAFailedOneIsAskedAgain)
{
    reg(0xF105) = 5;
    under.steps(1);
    under.write(1, "F", 0x0106, { 1 });
    under.stations.changes = { silence(), instead(framed("01 83 02")) };
    under.steps(1);

    const AccessResult result = access.read(1, QStringLiteral("F"), 0x0105, 1);

    EXPECT_EQ(result.kind, AccessResult::Kind::Done) << result.reason.toStdString();
    EXPECT_EQ(result.values, QVector<quint16> { 5 });
    EXPECT_EQ(otherOutcomes, Texts { "1000 rejected" });
}

TEST_F(RuntimeAccessTest, AClosedLineIsToldApart)
{
    under.steps(1);
    under.stations.line.unplug();

    const AccessResult read = access.read(1, QStringLiteral("F"), 0x0105, 1);
    const AccessResult written = access.write(1, QStringLiteral("F"), 0x0105, 5);

    EXPECT_EQ(read.kind, AccessResult::Kind::LineDown);
    EXPECT_EQ(written.kind, AccessResult::Kind::LineDown);
}
