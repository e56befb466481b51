// SPDX-License-Identifier: MIT
// Neither the user's thread nor the line's waits for the other.
#include "service_fixture.h"

#include <QThread>

#include <thread>

using namespace dx4::host;
using std::chrono::seconds;

namespace {

ServiceSettings pollingOne()
{
    return polling({ { 1, QStringLiteral("D 0") } });
}

/// The next reads bring 1, 2, 3 and so on.
void letValuesChange(Plant &plant, int count)
{
    for (int i = 1; i <= count; ++i)
        plant.stations.changes.push_back([](const QByteArray &reply) {
            static quint8 value = 0;
            value = static_cast<quint8>(value % 200 + 1);
            QByteArray changed = reply;
            changed[4] = static_cast<char>(value);
            return MemoryLine::Answer { renewedCrc(changed), Duration { 0 } };
        });
}

} // namespace

TEST(ServiceThreads, AReceiverThatHangsDoesNotDelayTheLine)
{
    ServiceUnderTest under(pollingOne());
    letValuesChange(*under.plant, 200);
    under.plant->hold();
    under.start();

    under.plant->letGo(200);
    under.plant->awaitHeld(); // no signal was taken meanwhile

    EXPECT_EQ(under.shown(1, "D", 0), 200);
    EXPECT_TRUE(under.changes.empty());
}

TEST(ServiceThreads, AReceiverThatHungGetsTheNewestValuesAtOnce)
{
    ServiceUnderTest under(pollingOne());
    letValuesChange(*under.plant, 200);
    under.plant->hold();
    under.start();
    under.plant->letGo(200);
    under.plant->awaitHeld();

    under.takeSignals();

    ASSERT_EQ(under.changes.size(), 1U);
    ASSERT_EQ(under.changes.front().size(), 1);
    EXPECT_EQ(under.changes.front().constFirst().state.value, 200);
}

TEST(ServiceThreads, AReceiverThatHungGetsEveryOutcomeInOrder)
{
    ServiceUnderTest under;
    under.plant->hold();
    under.start();
    std::vector<int> ids;
    for (int station = 1; station <= 100; ++station)
        ids.push_back(under.submit(station, "FRE", 0, { 5 }));

    under.plant->release();
    under.plant->awaitSent(framed("64 06 10 02 00 05"));
    under.waitFor([&] { return under.outcomes.size() == ids.size(); });

    EXPECT_EQ(under.outcomeIds, ids);
}

TEST(ServiceThreads, AStopComesThoughTheReceiverHangs)
{
    ServiceSettings settings = pollingOne();
    settings.runtime.stops = { { 1, 0 } };
    ServiceUnderTest under(settings);
    under.plant->hold();
    under.start();
    under.plant->awaitHeld();

    std::thread signalled([&under] {
        under.service->stop(seconds(1));
        under.plant->release();
    });
    under.plant->awaitSent(framed("01 06 10 01 00 00")); // this thread takes no signals meanwhile

    signalled.join();
    EXPECT_TRUE(under.told.empty());
}

TEST(ServiceThreads, LineAndDriverAreMadeAndUsedOnAThreadOfTheirOwn)
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
    auto service = std::make_unique<LineService>([&] {
        maker = QThread::currentThread();
        return LineParts { std::make_unique<Watched>(plant, destroyer), privateCopy(), {} };
    });

    service.reset();

    EXPECT_NE(maker, nullptr);
    EXPECT_NE(maker, QThread::currentThread());
    EXPECT_EQ(destroyer, maker);
}
