// SPDX-License-Identifier: MIT
// A line that throws is down for good, and nobody is left without an answer.
#include "service_fixture.h"

#include <algorithm>
#include <stdexcept>

using namespace dx4::host;
using std::chrono::seconds;

namespace {

/// A line that can wait nowhere.
class NoPlaceToWait : public PlantLine {
public:
    using PlantLine::PlantLine;
    void setWaits(Waits &) override { throw std::runtime_error("no place to wait"); }
};

/// A request is on its way when the adapter fails.
class ServiceFailure : public ::testing::Test {
protected:
    ServiceFailure()
        : under(stopping())
    {
        under.plant->hold();
        under.start();
        under.plant->awaitHeld();
        under.plant->failure = [] { throw std::runtime_error("adapter gone mad"); };
        QObject::connect(under.service.get(), &LineService::lineWentDown,
                         [this] { isDown = true; });
    }

    static ServiceSettings stopping()
    {
        ServiceSettings settings = polling({ { 1, QStringLiteral("D 0") } });
        settings.runtime.stops = { { 1, 0 }, { 3, 0 } };
        return settings;
    }

    void waitForTheEnd()
    {
        under.plant->release();
        under.waitFor([this] { return isDown; });
    }

    bool isDown = false;
    ServiceUnderTest under;
};

const char *const failed = "the line failed and is not tried again: adapter gone mad";

} // namespace

TEST_F(ServiceFailure, IsToldAsAlarmAndAsTheLinesEnd)
{
    waitForTheEnd();

    EXPECT_EQ(under.told, (Texts { failed, std::string("down: ") + failed }));
    EXPECT_FALSE(under.service->snapshot()->isOpen);
    EXPECT_EQ(under.service->snapshot()->downReason.toStdString(), failed);
}

TEST_F(ServiceFailure, RefusesAWriteThatWaits)
{
    const int id = under.submit(2, "FRE", 0, { 5 });

    under.plant->release();
    under.waitFor([this] { return !under.outcomes.empty(); });

    EXPECT_EQ(under.outcomeIds, std::vector<int> { id });
    EXPECT_EQ(under.outcomes.front().refusal, Refusal::NotConnected);
    EXPECT_FALSE(under.outcomes.front().sent);
    EXPECT_EQ(under.outcomes.front().exceptionCode, 0);
}

TEST_F(ServiceFailure, EndsAWriteOnTheLineAsTimedOut)
{
    under.plant->failure = nullptr;
    const int id = under.submit(2, "FRE", 0, { 5 });
    under.plant->letGo(1);
    under.plant->awaitHeld();
    under.plant->failure = [] { throw std::runtime_error("adapter gone mad"); };

    waitForTheEnd();

    ASSERT_EQ(under.outcomeIds, std::vector<int> { id });
    EXPECT_EQ(under.outcomes.front().end, WriteEnd::TimedOut);
    EXPECT_TRUE(under.outcomes.front().sent);
    EXPECT_EQ(under.outcomes.front().exceptionCode, 0);
    EXPECT_EQ(under.outcomes.front().text.toStdString(),
              std::string("station 2: not confirmed: ") + failed);
}

TEST_F(ServiceFailure, RefusesWhatIsAskedForLater)
{
    waitForTheEnd();
    under.told.clear();

    under.submit(1, "FRE", 0, { 5 });
    under.service->read(1, QStringLiteral("D"), 3);
    under.service->stop(seconds(1));
    under.waitFor([&] { return under.told.size() == 4; });

    EXPECT_EQ(under.outcomes.back().refusal, Refusal::NotConnected);
    EXPECT_EQ(under.reads.back().reason.toStdString(), failed);
    EXPECT_EQ(under.stops.back().unconfirmed, (QVector<int> { 1, 3 }));
    EXPECT_EQ(under.told.back(),
              std::string("stop 3: NOTHING WAS STOPPED, the drives may still run: ") + failed);
}

TEST_F(ServiceFailure, HasNoCountersAndTakesNoConfiguration)
{
    waitForTheEnd();

    under.service->reload({}, {});
    const int id = under.service->takeCounters();
    under.waitFor([&] { return !under.counters.empty(); });

    EXPECT_EQ(under.counters.back().counts.total().requests, 0U);
    EXPECT_EQ(under.told.back(), "counters " + std::to_string(id));
    EXPECT_EQ(std::count(under.told.begin(), under.told.end(), "reloaded: "), 0);
}

TEST_F(ServiceFailure, NamesTheStationsOfTheConfigurationThatWasTakenOver)
{
    under.plant->failure = nullptr;
    StationConfig station;
    station.address = 7;
    Config config;
    config.stations = { station };
    config.stop.controlWord = 0;
    under.service->reload(config, {});
    under.submit(7, "FRE", 0, { 5 });
    under.plant->letGo(1);
    under.plant->awaitHeld();
    under.plant->failure = [] { throw std::runtime_error("adapter gone mad"); };
    waitForTheEnd();

    under.service->stop(seconds(1));
    under.waitFor([&] { return !under.stops.empty(); });

    EXPECT_EQ(under.stops.back().unconfirmed, QVector<int> { 7 });
}

TEST_F(ServiceFailure, EndsTheStopUnderWayWithoutAnyConfirmation)
{
    under.plant->failure = nullptr;
    const int first = under.service->stop(seconds(1));
    under.plant->letGo(1);
    under.plant->awaitHeld(); // the first stop is on its way
    under.plant->failure = [] { throw std::runtime_error("adapter gone mad"); };

    under.plant->release();
    under.waitFor([&] { return under.stops.size() == 1; });
    const int write = under.submit(1, "FRE", 0, { 5 });
    under.waitFor([&] { return !under.outcomes.empty(); });

    EXPECT_EQ(under.stops.front().unconfirmed, (QVector<int> { 1, 3 }));
    EXPECT_EQ(under.told.back(), std::to_string(write) + " refused");
    EXPECT_EQ(under.outcomes.back().refusal, Refusal::NotConnected) << "the stop has ended";
    EXPECT_EQ(first, 1);
}

TEST_F(ServiceFailure, EndsNothingThatHasEnded)
{
    under.plant->failure = nullptr;
    under.submit(1, "FRE", 0, { 5 });
    under.plant->release();
    under.waitFor([&] { return under.outcomes.size() == 1; });
    under.service->stop(seconds(1));
    under.waitFor([&] { return under.stops.size() == 1; });
    under.plant->hold();
    under.plant->awaitHeld();
    under.plant->failure = [] { throw std::runtime_error("adapter gone mad"); };

    waitForTheEnd();

    EXPECT_FALSE(under.service->snapshot()->isOpen);
    under.service.reset();
    EXPECT_EQ(under.outcomes.size(), 1U);
    EXPECT_EQ(under.stops.size(), 1U);
}

TEST_F(ServiceFailure, LetsThePortGo)
{
    const long before = under.plant.use_count();

    waitForTheEnd();

    EXPECT_EQ(under.plant.use_count(), before - 1);
}

TEST_F(ServiceFailure, EndsJobsThatWaitAndTheOneUnderWay)
{
    under.plant->failure = nullptr;
    QString error;
    QObject::connect(under.service.get(), &LineService::backedUp,
                     [&](int, const ParameterSet &, const QString &why) { error = why; });
    under.service->backUp({});
    under.plant->letGo(3);
    under.plant->awaitHeld();
    under.service->read(1, QStringLiteral("D"), 3);
    under.plant->letGo(1);
    under.plant->awaitHeld();
    under.plant->failure = [] { throw std::runtime_error("adapter gone mad"); };

    waitForTheEnd();

    EXPECT_EQ(error.toStdString(), "the line failed");
    EXPECT_EQ(under.reads.size(), 1U);
}

TEST_F(ServiceFailure, MayBeAnyException)
{
    under.plant->failure = [] { throw 7; };

    waitForTheEnd();

    EXPECT_EQ(under.told.at(0), "the line failed and is not tried again: unknown exception");
}

TEST_F(ServiceFailure, WhileTheServiceEndsStillTellsOfTheStop)
{
    under.service->stop(seconds(1));
    under.plant->release();

    under.service.reset();

    ASSERT_EQ(under.stops.size(), 1U);
    EXPECT_EQ(under.stops.front().unconfirmed, (QVector<int> { 1, 3 }));
}

TEST(ServiceFailureOfALine, LeavesNoStationLost)
{
    ServiceUnderTest under(polling({ { 1, QStringLiteral("D 0") }, { 2, QStringLiteral("D 0") } }));
    under.plant->stations.dead = { 2 };
    under.start();
    under.waitFor([&] { return under.told.size() == 2; });
    const QVector<int> before = under.service->snapshot()->lostStations;
    under.plant->hold();
    under.plant->awaitHeld();
    under.plant->failure = [] { throw std::runtime_error("adapter gone mad"); };

    under.plant->release();
    under.waitFor([&] { return under.told.size() == 4; });

    EXPECT_EQ(before, QVector<int> { 2 });
    EXPECT_EQ(under.service->snapshot()->lostStations, QVector<int>());
}

TEST(ServiceFailureInAPause, IsTheLinesEndAsWell)
{
    ServiceUnderTest under;
    under.settings.runtime.pause = [](Duration) { throw std::runtime_error("no pause"); };
    under.start();

    under.waitFor([&] { return under.told.size() == 3; });

    EXPECT_EQ(under.told.at(1), "the line failed and is not tried again: no pause");
}

TEST(ServiceFailureAtTheStart, IsTheLinesEndAsWell)
{
    ServiceUnderTest under;
    QString reason;
    const auto service = makeService(
        [plant = under.plant] {
            return LineParts { std::make_unique<NoPlaceToWait>(plant), privateCopy(), {} };
        },
        {});
    QObject::connect(service.get(), &LineService::lineWentDown,
                     [&](const QString &text) { reason = text; });

    under.waitFor([&] { return !reason.isEmpty(); });

    EXPECT_EQ(reason.toStdString(), "the line failed and is not tried again: no place to wait");
}
