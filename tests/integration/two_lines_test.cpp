// SPDX-License-Identifier: MIT
// Two lines in one process, each with a copy of the driver of its own.
#include "integration_fixture.h"

using Texts = std::vector<std::string>;

TEST(TwoLines, KeepTheirValuesAndCallbacksApart)
{
    ModbusPeer leftPeer(1);
    ModbusPeer rightPeer(1);
    HostUnderTest left(leftPeer, 1);
    HostUnderTest right(rightPeer, 2);
    leftPeer.setRegister(0xD000, 10);
    rightPeer.setRegister(0xD000, 20);
    left.link.poll({ polled("D", 0) });
    right.link.poll({ polled("D", 0) });

    left.steps(1);
    right.steps(1);

    EXPECT_EQ(left.value("D", 0), 10);
    EXPECT_EQ(right.value("D", 0), 20);
    EXPECT_EQ(left.changes, Texts { "1 1 D 0" });
    EXPECT_EQ(right.changes, Texts { "2 1 D 0" });
}

TEST(TwoLines, ADeadOneDoesNotDisturbTheOther)
{
    ModbusPeer deadPeer(1);
    ModbusPeer livePeer(1);
    HostUnderTest dead(deadPeer, 1);
    HostUnderTest live(livePeer, 2);
    livePeer.setRegister(0xD000, 20);
    dead.link.poll({ polled("D", 0) });
    live.link.poll({ polled("D", 0) });
    deadPeer.staySilent(3);

    const Texts deadSteps = dead.steps(3);
    const Texts liveSteps = live.steps(3);

    EXPECT_EQ(deadSteps, (Texts { "retry", "retry", "given up" }));
    EXPECT_EQ(liveSteps, (Texts { "served", "served", "served" }));
    EXPECT_EQ(live.value("D", 0), 20);
    EXPECT_FALSE(live.link.registerState(1, QStringLiteral("D"), 0).failed);
}

TEST(TwoLines, ConditionReadOutcomesReachTheirOwnHost)
{
    ModbusPeer leftPeer(1);
    ModbusPeer rightPeer(1);
    HostUnderTest left(leftPeer, 1);
    HostUnderTest right(rightPeer, 2);
    right.link.addConditionRead(1, QStringLiteral("D"), 4, 1);

    left.steps(1);
    right.steps(1);

    EXPECT_EQ(left.changes, Texts {});
    EXPECT_EQ(right.changes, Texts { "-1 -1 -1 0" });
}
