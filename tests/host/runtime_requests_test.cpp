// SPDX-License-Identifier: MIT
// What a runtime makes of requests that are passed over, dropped, kept here or lost with the line.
#include "runtime_fixture.h"

using namespace dx4::host;
using std::chrono::milliseconds;
using std::chrono::seconds;

TEST(RuntimeWrites, ThatWereNotAskedLeaveNoDoubtOfTheValueBefore)
{
    RuntimeSettings settings;
    settings.staleAfter = std::chrono::hours(1);
    RuntimeUnderTest under(settings);
    under.host.setPlan(planOf({ { 1, QStringLiteral("SW") } }));
    under.steps(3);
    under.write(1, "CW", 0, { 3 });
    under.steps(1);
    under.stations.dead = { 1 };
    under.write(1, "FRE", 0, { 100 });
    under.host.write({ 1, QStringLiteral("F"), 0, { 7 }, true, false });
    under.write(1, "CW", 0, { 5 });
    under.runFor(milliseconds(900)); // two requests with three tries each, and no probe yet
    under.stations.dead.clear();

    under.runFor(seconds(20));

    ASSERT_EQ(under.outcomes.size(), 4U);
    EXPECT_FALSE(under.outcomeRecords.back().sent);
    const Value command = under.host.value(1, QStringLiteral("CW"), 0);
    EXPECT_EQ(command.value, 3);
    EXPECT_FALSE(command.stale);
}

TEST(RuntimeWrites, GoOutOneByOneAlsoWhereTheDriverPausesBeforeTheLast)
{
    for (int count = 1; count <= 12; ++count) {
        RuntimeUnderTest under;
        for (int i = 0; i < count; ++i)
            under.host.write({ 1, QStringLiteral("F"), i % 10 + i / 10 * 256, { 7 }, true, false });

        for (int i = 0; i < count; ++i)
            EXPECT_EQ(under.host.step(), Runtime::Step::Served) << i << " of " << count;
    }
}

TEST(RuntimePlan, ThatWaitedForARequestIsPolledAlsoWhereThatWasDropped)
{
    RuntimeUnderTest under;
    under.stations.changes = { silence() };
    under.write(1, "FRE", 0, { 5 });
    under.steps(1);
    under.host.setPlan(planOf({ { 1, QStringLiteral("D 0") } }));
    under.host.dropWrites(QStringLiteral("the program ends"));

    EXPECT_EQ(under.host.step(), Runtime::Step::Idle);

    EXPECT_EQ(under.host.step(), Runtime::Step::Served);
    EXPECT_EQ(under.stations.line.sent().last(), framed("01 03 D0 00 00 01"));
}

TEST(RuntimeWrites, ThatStayLocalMayBeEndedByTheChangeThatAnotherShows)
{
    RuntimeSettings settings;
    settings.link.writesStayLocal = true;
    RuntimeUnderTest under(settings);
    under.host.setPlan(planOf({ { 1, QStringLiteral("F 0.0-0.1") } }));
    under.write(1, "F", 0, { 9 });
    under.write(1, "F", 1, { 8 });
    under.host.onChange([&under](const ValueChange &) {
        under.host.dropWrites(QStringLiteral("the program ends"));
    });

    under.host.step();

    EXPECT_EQ(under.outcomes, (Texts { "1000 confirmed (held)", "1001 refused" }));
}

TEST(RuntimeProbe, ThatTheLineBrokeUnderIsNotCounted)
{
    RuntimeUnderTest under;
    under.host.setPlan(planOf({ { 2, QStringLiteral("SW") } }));
    under.stations.dead = { 2 };
    under.host.run([&] { return under.host.isLeftAlone(2); });
    const quint64 before = under.host.counters().station(2).requests;
    under.stations.changes = { [&under](const QByteArray &) {
        under.stations.line.unplug();
        return MemoryLine::Answer {};
    } };

    under.host.run([&] { return !under.stations.line.isOpen(); });

    EXPECT_TRUE(under.stations.changes.empty()) << "the probe went out";
    EXPECT_EQ(under.host.counters().station(2).requests, before);
}
