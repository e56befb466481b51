// SPDX-License-Identifier: MIT
// What is special to a service on the event loop of its owner.
#include "host/service/event_loop_service.h"

#include "service_fixture.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QThread>
#include <QTimer>

#include <algorithm>

using namespace dx4::host;
using std::chrono::seconds;

namespace {

ServiceSettings pollingAndStopping()
{
    ServiceSettings settings = polling({ { 1, QStringLiteral("D 0") } });
    settings.runtime.stops = { { 1, 0 } };
    return settings;
}

} // namespace

TEST(EventLoopServiceTest, LineAndDriverAreMadeAndUsedOnItsThread)
{
    const QThread *maker = nullptr;
    const QThread *destroyer = nullptr;
    struct Watched : PlantLine {
        Watched(std::shared_ptr<Plant> plant, const QThread *&thread)
            : PlantLine(std::move(plant))
            , destroyer(thread)
        {
        }
        ~Watched() override { destroyer = QThread::currentThread(); }
        const QThread *&destroyer;
    };
    auto plant = std::make_shared<Plant>(slowLine());
    auto service = makeService(
        [&] {
            maker = QThread::currentThread();
            return LineParts { std::make_unique<Watched>(plant, destroyer), privateCopy(), {} };
        },
        {});

    service.reset();

    EXPECT_EQ(maker, QThread::currentThread());
    EXPECT_EQ(destroyer, maker);
}

TEST(EventLoopServiceTest, NoCallBeginsBeforeTheLoopIsTurned)
{
    ServiceUnderTest under(pollingAndStopping());
    under.start();

    under.submit(1, "FRE", 0, { 5 });
    under.service->read(1, QStringLiteral("D"), 3);
    under.service->stop(seconds(1));

    EXPECT_TRUE(under.plant->sendTimes.empty());
    EXPECT_TRUE(under.told.empty());
    EXPECT_EQ(under.service->snapshot()->registers.size(), 0);
}

TEST(EventLoopServiceTest, AStopIsSentThoughTheLoopIsNeverTurned)
{
    ServiceUnderTest under(pollingAndStopping());
    under.start();
    under.service->stop(seconds(1));

    under.service.reset();

    EXPECT_EQ(under.plant->stations.line.sent().value(0), framed("01 06 10 01 00 00"));
    ASSERT_EQ(under.stops.size(), 1U);
    EXPECT_TRUE(under.stops.front().unconfirmed.isEmpty());
}

TEST(EventLoopServiceTest, ItsEndTurnsNoLoop)
{
    ServiceUnderTest under(pollingAndStopping());
    under.start();
    under.waitFor([&] { return under.told.size() == 1; });
    bool hasTicked = false;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&hasTicked] { hasTicked = true; });
    timer.start(0);
    under.service->stop(seconds(1));

    under.service.reset();

    EXPECT_FALSE(hasTicked);
    EXPECT_EQ(under.stops.size(), 1U);
}

TEST(EventLoopServiceTest, ABusyLineSendsOneRequestInATurnOfTheLoop)
{
    // A line in memory never waits: whatever it does at once keeps the loop.
    ServiceUnderTest under(pollingAndStopping());
    under.start();
    under.waitFor([&] { return under.told.size() == 1; });
    std::size_t most = 0;

    for (int turn = 0; turn < 100; ++turn) {
        const std::size_t before = under.plant->sendTimes.size();
        QCoreApplication::processEvents();
        most = std::max(most, under.plant->sendTimes.size() - before);
    }

    EXPECT_EQ(most, 1U);
}

TEST(EventLoopServiceTest, AnIdleLineWakesTheLoopSeldom)
{
    ServiceUnderTest under;
    under.start();
    under.waitFor([&] { return under.told.size() == 1; });
    int wakes = 0;
    bool isOver = false;
    const auto watch = QObject::connect(QAbstractEventDispatcher::instance(),
                                        &QAbstractEventDispatcher::awake, [&wakes] { ++wakes; });
    QTimer::singleShot(300, [&isOver] { isOver = true; });

    under.waitFor([&isOver] { return isOver; });

    QObject::disconnect(watch);
    EXPECT_LE(wakes, 30); // an idle step every 100 ms takes a few
}

TEST(EventLoopServiceTest, AWriteEndsThePauseOfAnIdleLine)
{
    ServiceUnderTest under;
    under.start();
    under.waitFor([&] { return under.told.size() == 1; });

    under.submit(1, "FRE", 0, { 5 });
    int turns = 0;
    while (under.outcomes.empty()) {
        QCoreApplication::processEvents();
        ++turns;
    }

    EXPECT_LE(turns, 20); // a pause would take thousands of them
}

TEST(EventLoopServiceTest, SeveralLinesShareALoop)
{
    ServiceUnderTest first(pollingAndStopping());
    ServiceUnderTest second(pollingAndStopping());
    first.plant->stations.registers[{ 1, 0xD000 }] = 11;
    second.plant->stations.registers[{ 1, 0xD000 }] = 22;
    first.start();
    second.start();

    first.waitFor([&] { return first.shown(1, "D", 0) == 11 && second.shown(1, "D", 0) == 22; });
    first.plant->hold();
    first.plant->awaitHeld();
    second.submit(1, "FRE", 0, { 5 });
    second.waitFor([&] { return !second.outcomes.empty(); });

    EXPECT_EQ(second.outcomes.front().end, WriteEnd::Confirmed);
}
