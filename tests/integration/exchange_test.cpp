// SPDX-License-Identifier: MIT
// Reads and writes of every register type, judged by what the libmodbus slave holds and saw.
#include "integration_fixture.h"

using Texts = std::vector<std::string>;

TEST_F(Integration, GroupsMonitorsStatusAndFaultAreReadInOneRotation)
{
    peer.setRegister(0xF000, 11);
    peer.setRegister(0xF001, 12);
    peer.setRegister(0xF902, 92);
    peer.setRegister(0xFC0D, 0xABCD);
    peer.setRegister(0xD003, 5000);
    peer.setRegister(0x2000, 3);
    peer.setRegister(0x2001, 7);
    host.link.poll({ polled("F", parameter(0, 0), 2), polled("F", parameter(9, 2)),
                     polled("F", parameter(10, 13)), polled("D", 3), polled("SW", 0),
                     polled("FU", 0) });

    const Texts steps = host.steps(6);

    EXPECT_EQ(steps, (Texts { "served", "served", "served", "served", "served", "served" }));
    EXPECT_EQ(host.value("F", parameter(0, 0)), 11);
    EXPECT_EQ(host.value("F", parameter(0, 1)), 12);
    EXPECT_EQ(host.value("F", parameter(9, 2)), 92);
    EXPECT_EQ(host.value("F", parameter(10, 13)), 0xABCD);
    EXPECT_EQ(host.value("D", 3), 5000);
    EXPECT_EQ(host.value("SW", 0), 3);
    EXPECT_EQ(host.value("FU", 0), 7);
    EXPECT_EQ(peer.requests().size(), 6U);
}

TEST_F(Integration, ABlockOfGroupCGoesToItsOwnRegisters)
{
    host.link.poll({ polled("F", parameter(10, 12), 2) });

    host.steps(1);

    EXPECT_EQ(peer.requests(), Texts { "01 03 FC 0C 00 02 34 58" });
}

TEST_F(Integration, AChangedValueIsReportedOnceAndAnEqualOneNever)
{
    peer.setRegister(0xD000, 1);
    host.link.poll({ polled("D", 0, 2) });

    host.steps(2);
    peer.setRegister(0xD001, 2);
    host.steps(2);

    EXPECT_EQ(host.changes, (Texts { "1 1 D 0", "1 1 D 1" }));
}

TEST_F(Integration, ASingleParameterWriteArrivesByFunction6)
{
    host.link.write(1, QStringLiteral("F"), parameter(10, 13), { 0x1234 });

    const Texts steps = host.steps(1);

    EXPECT_EQ(steps, Texts { "served" });
    EXPECT_EQ(peer.registerValue(0xFC0D), 0x1234);
    EXPECT_EQ(peer.requests().at(0).substr(0, 5), "01 06");
}

TEST_F(Integration, SeveralParametersArriveByOneFunction16)
{
    host.link.write(1, QStringLiteral("F"), parameter(2, 4), { 0x0102, 0xFFFE, 3 });

    const Texts steps = host.steps(2);

    EXPECT_EQ(steps, (Texts { "served", "idle" }));
    EXPECT_EQ(peer.registerValue(0xF204), 0x0102);
    EXPECT_EQ(peer.registerValue(0xF205), 0xFFFE);
    EXPECT_EQ(peer.registerValue(0xF206), 3);
    EXPECT_EQ(peer.requests().at(0).substr(0, 20), "01 10 F2 04 00 03 06");
}

TEST_F(Integration, FrequencyAndControlWordArriveAtTheirRegisters)
{
    host.link.write(1, QStringLiteral("FRE"), 0, { 3000 });
    host.link.write(1, QStringLiteral("CW"), 0, { 1 });

    const Texts steps = host.steps(2);

    EXPECT_EQ(steps, (Texts { "served", "served" }));
    EXPECT_EQ(peer.registerValue(0x1002), 3000);
    EXPECT_EQ(peer.registerValue(0x1001), 1);
}

TEST_F(Integration, AWrittenValueIsShownAtOnceAndKeptAfterTheEcho)
{
    host.link.write(1, QStringLiteral("F"), 0, { 50 });
    const dx4::host::RegisterState before = host.link.registerState(1, QStringLiteral("F"), 0);

    host.steps(1);

    const dx4::host::RegisterState after = host.link.registerState(1, QStringLiteral("F"), 0);
    EXPECT_EQ(before.value, 50);
    EXPECT_TRUE(before.writePending);
    EXPECT_EQ(after.value, 50);
    EXPECT_FALSE(after.writePending);
}

TEST_F(Integration, WritesGoBeforeReadsAndReadsGoOn)
{
    host.link.poll({ polled("D", 0) });
    host.link.write(1, QStringLiteral("FRE"), 0, { 100 });

    const Texts steps = host.steps(3);

    EXPECT_EQ(steps, (Texts { "served", "served", "served" }));
    EXPECT_EQ(peer.requests().at(0).substr(0, 11), "01 06 10 02");
    EXPECT_EQ(peer.requests().at(1).substr(0, 11), "01 03 D0 00");
    EXPECT_EQ(peer.requests().at(2).substr(0, 11), "01 03 D0 00");
}

TEST_F(Integration, AConditionReadIsServedOnceAndReportsItsOutcome)
{
    peer.setRegister(0xF503, 9);
    host.link.addConditionRead(1, QStringLiteral("F"), parameter(5, 3), 1);

    const Texts steps = host.steps(2);

    EXPECT_EQ(steps, (Texts { "served", "idle" }));
    EXPECT_EQ(host.value("F", parameter(5, 3)), 9);
    EXPECT_EQ(host.changes, (Texts { "-1 -1 -1 0" }));
}

TEST_F(Integration, TheCountersAddUp)
{
    host.link.poll({ polled("D", 0) });
    host.link.write(1, QStringLiteral("FRE"), 0, { 100 });

    host.steps(3);

    const dx4::host::CounterSet &counters = host.cycle.counters();
    const dx4::host::RequestCounts total = counters.total();
    EXPECT_EQ(total.requests, 3U);
    EXPECT_EQ(counters.writes().good, 1U);
    EXPECT_EQ(counters.reads().good, 2U);
    EXPECT_EQ(total.bytesSent, 24U);
    EXPECT_EQ(total.bytesReceived, 22U);
    EXPECT_EQ(total.retries + total.giveUps, 0U);
}
