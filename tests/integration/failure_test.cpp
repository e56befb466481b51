// SPDX-License-Identifier: MIT
// Exceptions, silence and a pulled cable: counted tries, give-up and recovery.
#include "integration_fixture.h"

using Texts = std::vector<std::string>;

TEST_F(Integration, AnExceptionCountsAsAFailedTry)
{
    peer.setRegister(0xD000, 42);
    host.link.poll({ polled("D", 0) });
    peer.refuse(2, 2);

    const Texts steps = host.steps(3);

    EXPECT_EQ(steps, (Texts { "retry", "retry", "served" }));
    EXPECT_EQ(host.value("D", 0), 42);
    EXPECT_EQ(host.cycle.counters().total().exceptions.at(2), 2U);
    EXPECT_EQ(host.cycle.counters().total().retries, 2U);
}

TEST_F(Integration, SilenceCountsAsAFailedTry)
{
    peer.setRegister(0xD000, 42);
    host.link.poll({ polled("D", 0) });
    peer.staySilent(2);

    const Texts steps = host.steps(3);

    EXPECT_EQ(steps, (Texts { "retry", "retry", "served" }));
    EXPECT_EQ(host.value("D", 0), 42);
    EXPECT_EQ(host.cycle.counters().total().timeouts, 2U);
    EXPECT_EQ(host.cycle.errorText(), QStringLiteral("1#D0(1)(7)"));
}

TEST_F(Integration, ARetrySendsTheSameBytesAgain)
{
    host.link.poll({ polled("D", 0), polled("SW", 0) });
    peer.staySilent(1);

    host.steps(2);

    const Texts requests = peer.requests();
    ASSERT_EQ(requests.size(), 2U);
    EXPECT_EQ(requests.at(0), requests.at(1));
}

TEST_F(Integration, AReadIsGivenUpAtTheLimitAndTheRotationGoesOn)
{
    peer.setRegister(0x2000, 5);
    host.link.poll({ polled("D", 0), polled("SW", 0) });
    peer.staySilent(3);

    const Texts steps = host.steps(4);

    EXPECT_EQ(steps, (Texts { "retry", "retry", "given up", "served" }));
    EXPECT_TRUE(host.link.registerState(1, QStringLiteral("D"), 0).failed);
    EXPECT_EQ(host.value("SW", 0), 5);
    EXPECT_EQ(host.cycle.counters().total().giveUps, 1U);
}

TEST_F(Integration, AGivenUpReadRecoversWithItsNextTurn)
{
    peer.setRegister(0xD000, 8);
    host.link.poll({ polled("D", 0) });
    peer.refuse(3, 4);

    const Texts steps = host.steps(4);

    EXPECT_EQ(steps, (Texts { "retry", "retry", "given up", "served" }));
    EXPECT_FALSE(host.link.registerState(1, QStringLiteral("D"), 0).failed);
    EXPECT_EQ(host.value("D", 0), 8);
}

TEST_F(Integration, AGivenUpWriteShowsTheDeviceValueAgain)
{
    peer.setRegister(0xF000, 10);
    host.link.poll({ polled("F", 0) });
    host.steps(1);
    peer.refuse(3, 3);
    host.link.write(1, QStringLiteral("F"), 0, { 99 });

    const Texts steps = host.steps(3);

    EXPECT_EQ(steps, (Texts { "retry", "retry", "given up" }));
    EXPECT_EQ(host.value("F", 0), 10);
    EXPECT_EQ(peer.registerValue(0xF000), 10);
    EXPECT_EQ(host.changes, (Texts { "1 1 F 0", "1 1 F 0", "1 1 F 0", "1 1 F 0" }));
}

TEST_F(Integration, AWriteOfAMonitorValueIsRefusedByTheSlave)
{
    host.link.write(1, QStringLiteral("D"), 5, { 1 });

    const Texts steps = host.steps(4);

    EXPECT_EQ(steps, (Texts { "retry", "retry", "given up", "idle" }));
    EXPECT_EQ(peer.requests().at(0).substr(0, 11), "01 06 00 00");
}

TEST_F(Integration, AnAbsentStationDoesNotStopTheOthers)
{
    peer.setRegister(0xD000, 77);
    host.link.poll({ polled("D", 0), dx4::host::wanted(2, QStringLiteral("SW"), 0) });

    const Texts steps = host.steps(4);

    EXPECT_EQ(steps, (Texts { "served", "retry", "retry", "given up" }));
    EXPECT_EQ(host.value("D", 0), 77);
    EXPECT_TRUE(host.link.registerState(2, QStringLiteral("SW"), 0).failed);
}

TEST_F(Integration, APulledLineLeavesTheRequestWithTheDriver)
{
    host.link.poll({ polled("D", 0) });
    host.steps(1);
    peer.hangUp();

    const Texts steps = host.steps(2);

    EXPECT_EQ(steps, (Texts { "line down", "line down" }));
    EXPECT_FALSE(host.line.isOpen());
    EXPECT_FALSE(host.link.registerState(1, QStringLiteral("D"), 0).failed);
    EXPECT_EQ(host.cycle.counters().lineDowns(), 2U);
    EXPECT_EQ(host.cycle.counters().total().giveUps, 0U);
}
