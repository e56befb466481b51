// SPDX-License-Identifier: MIT
// The stop of a service: what it waits for, what it ends, and who shares it.
#include "service_fixture.h"

#include <algorithm>
#include <atomic>

using namespace dx4::host;
using std::chrono::hours;
using std::chrono::milliseconds;
using std::chrono::seconds;

namespace {

/// Polls more blocks than one, and stops station 1.
ServiceSettings stopping()
{
    ServiceSettings settings = polling({ { 1, QStringLiteral("D 0") },
                                         { 1, QStringLiteral("D 5") },
                                         { 1, QStringLiteral("SW") } });
    settings.runtime.stops = { { 1, 0 } };
    return settings;
}

QByteArray stopOfStation1()
{
    return framed("01 06 10 01 00 00");
}

class ServiceStop : public ::testing::Test {
protected:
    ServiceStop()
    {
        under.plant->hold();
        under.start();
        under.plant->awaitHeld();
        under.plant->letGo(3);
        under.plant->awaitHeld(); // the fourth request is on its way
    }

    /// The requests behind the first four.
    QVector<QByteArray> sentSince()
    {
        under.service.reset();
        return under.plant->stations.line.sent().mid(4);
    }

    ServiceUnderTest under { stopping() };
};

} // namespace

TEST_F(ServiceStop, IsTheFirstRequestBehindTheOneOnTheLine)
{
    for (int i = 0; i < 20; ++i)
        under.submit(1, "F", i, { 7 });

    const int id = under.service->stop(seconds(1));
    under.plant->release();
    under.waitFor([&] { return !under.stops.empty(); });

    EXPECT_EQ(under.told.back(), "stop " + std::to_string(id) + ": all stops confirmed");
    EXPECT_TRUE(under.stops.front().unconfirmed.isEmpty());
    EXPECT_EQ(sentSince().value(0), stopOfStation1());
}

TEST(ServiceStopBesideAnOwedReply, LetsNoReadGoBehindTheOneThatClearsIt)
{
    ServiceUnderTest under(stopping());
    under.plant->hold();
    under.start();
    under.plant->awaitHeld();
    under.plant->stations.changes = { silence() };
    under.plant->letGo(2);
    under.plant->awaitHeld(); // a read of the guard's own, before that of D 5

    under.service->stop(seconds(1));
    under.plant->release();
    under.waitFor([&] { return !under.stops.empty(); });
    under.service.reset();

    EXPECT_EQ(under.plant->stations.line.sent().value(2), framed("01 03 20 00 00 02"));
    EXPECT_EQ(under.plant->stations.line.sent().value(3), stopOfStation1());
}

TEST_F(ServiceStop, CutsTheReadsShortThatComeBeforeIt)
{
    const int backup = under.service->backUp({});
    const int read = under.service->read(1, QStringLiteral("D"), 3);

    under.service->stop(seconds(1));
    under.plant->release();
    under.waitFor([&] { return !under.stops.empty(); });

    EXPECT_EQ(under.reads.front().kind, AccessResult::Kind::NotBegun);
    EXPECT_EQ(under.reads.front().reason.toStdString(), "a stop goes first");
    EXPECT_EQ(read, backup + 1);
    EXPECT_EQ(sentSince().value(0), stopOfStation1());
}

TEST_F(ServiceStop, RefusesWritesFromItsCallToItsEnd)
{
    const int before = under.submit(1, "FRE", 0, { 1 });
    under.service->stop(seconds(1));
    const int during = under.submit(1, "FRE", 0, { 2 });

    under.plant->release();
    under.waitFor([&] { return !under.stops.empty(); });
    const int after = under.submit(1, "FRE", 0, { 3 });
    under.waitFor([&] { return under.outcomes.size() == 3; });

    EXPECT_EQ(under.outcomeIds, (std::vector<int> { during, before, after }));
    EXPECT_EQ(under.outcomes.at(0).refusal, Refusal::Stopping);
    EXPECT_EQ(under.outcomes.at(1).refusal, Refusal::Stopping);
    EXPECT_FALSE(under.outcomes.at(1).sent);
    EXPECT_EQ(under.outcomes.at(2).end, WriteEnd::Confirmed);
}

TEST_F(ServiceStop, ShowsTheStoppedDriveWithItsEnd)
{
    under.submit(1, "CW", 0, { 1 });
    under.plant->release();
    under.waitFor([&] { return under.outcomes.size() == 1; });

    under.service->stop(seconds(1));
    under.waitFor([&] { return under.stops.size() == 1; });

    EXPECT_EQ(under.shown(1, "CW", 0), 0);
}

TEST_F(ServiceStop, IsSharedByAllWhoAskBeforeItEnds)
{
    under.service->stop(seconds(1));
    under.service->stop(seconds(2));

    under.plant->release();
    under.waitFor([&] { return under.stops.size() == 2; });

    EXPECT_EQ(sentSince().count(stopOfStation1()), 1);
}

TEST_F(ServiceStop, IsSharedByWhoeverAsksWhileItIsSent)
{
    under.service->stop(seconds(1));
    under.plant->letGo(1);
    under.plant->awaitHeld(); // the stop

    under.service->stop(seconds(1));
    under.plant->release();
    under.waitFor([&] { return under.stops.size() == 2; });

    EXPECT_EQ(sentSince().count(stopOfStation1()), 1);
}

TEST_F(ServiceStop, ThatIsAskedForWhileOneFailsIsSentAgain)
{
    under.service->stop(Duration { 0 });
    under.plant->letGo(1);
    under.plant->awaitHeld(); // the first stop
    under.plant->stations.changes = { silence() };

    under.service->stop(seconds(1));
    under.plant->release();
    under.waitFor([&] { return under.stops.size() == 2; });

    EXPECT_EQ(under.stops.front().unconfirmed, QVector<int> { 1 });
    EXPECT_TRUE(under.stops.back().unconfirmed.isEmpty());
}

TEST_F(ServiceStop, IsGivenUpByTheUserInItsNextPause)
{
    under.plant->stations.dead = { 1 };
    under.service->stop(hours(1));
    under.service->stop(hours(1));

    under.plant->release();
    under.plant->awaitSent(stopOfStation1());
    under.service->cancelStop();
    under.waitFor([&] { return under.stops.size() == 2; });

    EXPECT_EQ(under.stops.back().unconfirmed, QVector<int> { 1 });
}

TEST_F(ServiceStop, ThatIsAskedForAfterItWasGivenUpIsSentAgain)
{
    under.plant->stations.changes = { silence() }; // the first stop
    under.service->stop(Duration { 0 });
    under.service->cancelStop();
    under.service->stop(seconds(1));

    under.plant->release();
    under.waitFor([&] { return under.stops.size() == 2; });

    EXPECT_EQ(under.stops.front().unconfirmed, QVector<int> { 1 });
    EXPECT_TRUE(under.stops.back().unconfirmed.isEmpty());
}

TEST_F(ServiceStop, IsSharedAgainAfterOneThatWasGivenUp)
{
    under.plant->stations.changes = { silence() }; // the first stop
    under.service->stop(Duration { 0 });
    under.service->cancelStop();
    under.service->stop(seconds(1));
    under.plant->letGo(2);
    under.plant->awaitHeld(); // the second stop

    under.service->stop(seconds(1));
    under.plant->release();
    under.waitFor([&] { return under.stops.size() == 3; });

    EXPECT_EQ(sentSince().count(stopOfStation1()), 2);
}

TEST_F(ServiceStop, IsSentBeforeTheServiceEnds)
{
    under.service->stop(seconds(1));
    under.plant->release();

    const QVector<QByteArray> sent = sentSince();

    EXPECT_EQ(sent.value(0), stopOfStation1());
    ASSERT_EQ(under.stops.size(), 1U);
    EXPECT_TRUE(under.stops.front().unconfirmed.isEmpty());
}

TEST_F(ServiceStop, IsNotSentUnlessItWasAskedFor)
{
    under.plant->release();

    EXPECT_EQ(sentSince().count(stopOfStation1()), 0);
}

TEST(PatientStop, TellsInItsPausesWhatBecomesOfTheLine)
{
    ServiceUnderTest under(stopping());
    under.playTime();
    under.plant->hold();
    under.start();
    under.plant->awaitHeld();
    under.plant->stations.dead = { 1 };
    under.service->stop(seconds(60));

    under.plant->release();
    under.waitFor([&] { return under.stops.size() == 1; });

    EXPECT_EQ(under.told.at(0), "open");
    EXPECT_EQ(under.told.at(1), "lost 1");
}

namespace {

/// A dead drive did not take its stop, and a request is on the line.
class PendingStop : public ::testing::Test {
protected:
    PendingStop()
    {
        under.playTime();
        under.plant->stations.dead = { 1 };
        under.start();
        under.service->stop(Duration { 0 });
        under.waitFor([this] { return under.stops.size() == 1; });
        under.plant->hold();
        under.plant->awaitHeld();
    }

    ServiceUnderTest under { stopping() };
};

} // namespace

TEST_F(PendingStop, IsSentAgainOnceTheDriveIsBack)
{
    under.plant->stations.dead = {};
    under.plant->stations.registers[{ 1, 0x1001 }] = 1;

    under.plant->release();
    under.waitFor([&] { return under.shown(1, "D", 5) == 0; });
    under.service.reset();

    EXPECT_EQ((under.plant->stations.registers[{ 1, 0x1001 }]), 0);
}

TEST_F(PendingStop, IsNotSentAgainOnceItIsGivenUp)
{
    under.service->cancelStop();
    under.service->takeCounters();
    under.plant->release();
    under.waitFor([&] { return under.counters.size() == 1; });
    under.plant->hold();
    under.plant->awaitHeld();
    under.plant->stations.dead = {};
    const auto before = under.plant->stations.line.sent().count(stopOfStation1());

    under.plant->release();
    under.waitFor([&] { return under.shown(1, "D", 5) == 0; });
    under.service.reset();

    EXPECT_GT(before, 0);
    EXPECT_EQ(under.plant->stations.line.sent().count(stopOfStation1()), before);
}

TEST(StopOfSeveralDrives, KeepsNoOutcomeBackUntilItsEnd)
{
    ServiceSettings settings = stopping();
    settings.runtime.stops = { { 1, 0 }, { 2, 0 } };
    ServiceUnderTest under(settings);
    under.plant->hold();
    under.start();
    under.plant->awaitHeld();
    const int refused = under.submit(1, "FRE", 1, { 1 }); // there is no such register
    const int dropped = under.submit(1, "FRE", 0, { 1 });
    under.service->stop(seconds(1));
    under.plant->letGo(2);
    under.plant->awaitHeld(); // the second stop

    under.waitFor([&] { return under.outcomes.size() == 2; });

    EXPECT_EQ(under.outcomeIds, (std::vector<int> { refused, dropped }));
    EXPECT_TRUE(under.stops.empty());
}

TEST(StopOfSeveralDrives, KeepsNothingBackThatWasToBeToldBefore)
{
    ServiceSettings settings = stopping();
    settings.runtime.stops = { { 1, 0 }, { 2, 0 } };
    ServiceUnderTest under(settings);
    under.plant->hold();
    under.start();
    under.plant->awaitHeld();
    under.service->takeCounters();
    under.service->stop(seconds(1));
    under.plant->letGo(1);
    under.plant->awaitHeld(); // the first stop

    under.waitFor([&] { return under.counters.size() == 1; });

    EXPECT_TRUE(under.stops.empty());
}

namespace {

const char *const silentUser = "the user interface is silent: stopping";

/// A stop of dead drives, with a user who is there.
class WatchedStop : public ::testing::Test {
protected:
    void stop(const QVector<int> &stations, Duration budget)
    {
        under.settings.runtime.stops.clear();
        for (int station : stations) {
            under.settings.runtime.stops.append({ station, 0 });
            under.plant->stations.dead.insert(station);
        }
        under.settings.runtime.pause = [this](Duration span) {
            if (LineService *const service = user)
                service->noteUser();
            under.plant->stations.line.advance(std::min<Duration>(span, milliseconds(100)));
        };
        under.plant->hold();
        under.start();
        user = under.service.get();
        under.plant->awaitHeld();
        under.plant->failure = [this] { user.load()->noteUser(); };
        under.service->stop(budget);
        under.plant->release();
        under.waitFor([&] { return under.stops.size() == 1; });
    }

    std::atomic<LineService *> user { nullptr };
    ServiceUnderTest under { stopping() };
};

} // namespace

TEST_F(WatchedStop, LetsNoUserGoUnnoticedInItsPauses)
{
    under.settings.runtime.userPatience = seconds(3);

    stop({ 1 }, seconds(60));

    EXPECT_EQ(std::count(under.told.begin(), under.told.end(), silentUser), 0);
}

TEST_F(WatchedStop, LetsNoUserGoUnnoticedAmongItsRequests)
{
    under.settings.runtime.userPatience = milliseconds(500);

    stop({ 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16 }, seconds(2));

    EXPECT_EQ(std::count(under.told.begin(), under.told.end(), silentUser), 0);
}
