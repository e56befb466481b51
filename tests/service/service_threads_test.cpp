// SPDX-License-Identifier: MIT
// Neither the user's thread nor the line's waits for the other.
#include "service_fixture.h"

#include <algorithm>
#include <set>
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

TEST(ServiceThreads, ALineThatHangsKeepsNobodyWaiting)
{
    ServiceSettings settings = pollingOne();
    settings.runtime.stops = { { 1, 0 } };
    ServiceUnderTest under(settings);
    under.plant->hold();
    under.start();
    under.plant->awaitHeld();

    // The line hangs in the middle of a request: a call that waited for it would never return.
    const auto snapshot = under.service->snapshot();
    const int write = under.submit(1, "FRE", 0, { 5 });
    const int read = under.service->read(1, QStringLiteral("D"), 3);
    const int backup = under.service->backUp({});
    const int restore = under.service->restore(1, {});
    under.service->setPlan(settings.plan);
    under.service->reload({}, settings.plan);
    under.service->noteUser();
    under.service->cancelJob(read);
    const int stop = under.service->stop(seconds(1));
    under.service->cancelStop();
    under.takeSignals();

    EXPECT_NE(snapshot, nullptr);
    EXPECT_EQ((std::set<int> { write, read, backup, restore, stop }).size(), 5U);
}

TEST(ServiceThreads, ManyThreadsGetOneOutcomeForEachOfTheirWrites)
{
    ServiceUnderTest under(pollingOne());
    under.start();
    std::vector<std::vector<int>> ids(4);
    std::vector<std::thread> users;
    for (int user = 0; user < 4; ++user) {
        users.emplace_back([&under, &mine = ids[static_cast<std::size_t>(user)], user] {
            for (int i = 0; i < 50; ++i) {
                mine.push_back(under.submit(user + 1, "F", i % 8, { static_cast<quint16>(i) }));
                under.shown(1, "D", 0);
                under.service->noteUser();
            }
        });
    }

    under.waitFor([&] { return under.outcomes.size() == 200; });
    for (std::thread &user : users)
        user.join();

    std::vector<int> submitted;
    for (const std::vector<int> &mine : ids)
        submitted.insert(submitted.end(), mine.begin(), mine.end());
    std::sort(submitted.begin(), submitted.end());
    std::sort(under.outcomeIds.begin(), under.outcomeIds.end());
    EXPECT_EQ(under.outcomeIds, submitted);
}

TEST(ServiceThreads, ASlotMayTurnALoopOfItsOwn)
{
    ServiceUnderTest under;
    under.start();
    std::vector<int> order;
    QObject::connect(under.service.get(), &LineService::writeEnded,
                     [&](const WriteOutcome &outcome) {
                         order.push_back(outcome.id);
                         if (order.size() == 1)
                             under.waitFor([&] { return order.size() == 3; });
                     });

    const int first = under.submit(1, "FRE", 0, { 1 });
    const int second = under.submit(2, "FRE", 0, { 2 });
    const int third = under.submit(3, "FRE", 0, { 3 });
    under.waitFor([&] { return order.size() == 3; });

    EXPECT_EQ(order, (std::vector<int> { first, second, third }));
}
