// SPDX-License-Identifier: MIT
// What the line's thread does between two requests.
#include "service_fixture.h"

#include <atomic>
#include <thread>

using namespace dx4::host;
using std::chrono::milliseconds;
using std::chrono::seconds;

namespace {

PlanEntry entry(int station, const char *text)
{
    return { station, QString::fromLatin1(text) };
}

bool isStale(const ServiceUnderTest &under, int station, const char *type, int address)
{
    const auto snapshot = under.service->snapshot();
    const RegisterValue *value = snapshot->find(station, QString::fromLatin1(type), address);
    return value && value->state.stale;
}

} // namespace

TEST(ServiceTurns, AnAnswerShowsBeforeTheNextRequestIsSent)
{
    ServiceUnderTest under(polling({ entry(1, "D 0") }));
    under.plant->hold();
    under.start();
    under.plant->awaitHeld();
    const int before = under.shown(1, "D", 0);

    under.plant->letGo(1);
    under.plant->awaitHeld();

    EXPECT_EQ(before, -1);
    EXPECT_EQ(under.shown(1, "D", 0), 0);
}

TEST(ServiceTurns, AValueThatNobodyAsksForGrowsStale)
{
    ServiceSettings settings = polling({ entry(2, "D 0") });
    settings.runtime.staleAfter = milliseconds(500);
    ServiceUnderTest under(settings);
    under.start();
    under.submit(1, "FRE", 0, { 5 });
    under.waitFor([&] { return under.outcomes.size() == 1; });

    under.waitFor([&] { return isStale(under, 1, "FRE", 0); });

    EXPECT_EQ(under.shown(1, "FRE", 0), 5);
    EXPECT_FALSE(isStale(under, 2, "D", 0));
}

TEST(ServiceTurns, AStationsExtraGapIsKeptFromTheStart)
{
    StationConfig station;
    station.extraGap = milliseconds(70);
    ServiceSettings settings = polling({ entry(1, "D 0") });
    settings.config = Config {};
    settings.config->stations = { station };
    ServiceUnderTest under(settings);
    under.start();
    under.submit(1, "FRE", 0, { 5 });
    under.waitFor([&] { return under.outcomes.size() == 1; });

    under.service.reset();

    const std::vector<Duration> &times = under.plant->sendTimes;
    ASSERT_GE(times.size(), 2U);
    for (std::size_t i = 1; i < times.size(); ++i)
        EXPECT_GE(times.at(i) - times.at(i - 1), milliseconds(70)) << i;
}

TEST(ServiceTurns, AUserWhoIsThereKeepsTheDrivesRunning)
{
    ServiceSettings settings = polling({ entry(1, "D 0") });
    settings.runtime.userPatience = milliseconds(200);
    settings.runtime.stops = { { 1, 0 } };
    ServiceUnderTest under(settings);
    under.plant->hold();
    under.start();
    under.plant->awaitHeld();

    for (int i = 0; i < 60; ++i) {
        under.service->noteUser();
        under.plant->letGo(1);
        under.plant->awaitHeld();
    }

    EXPECT_GT(under.plant->sendTimes.back(), milliseconds(600));
    EXPECT_EQ(under.plant->stations.line.sent().count(framed("01 06 10 01 00 00")), 0);
}

TEST(ServiceTurns, AUserIsNoticedWhileTheLineIsDown)
{
    std::atomic<LineService *> service { nullptr };
    std::atomic<bool> isLong { false };
    ServiceUnderTest under;
    under.settings.runtime.userPatience = seconds(3);
    under.settings.runtime.pause = [&, plant = under.plant](Duration span) {
        while (!service)
            std::this_thread::yield();
        service.load()->noteUser();
        plant->stations.line.advance(span);
        isLong = plant->stations.line.now() > seconds(20);
    };
    under.plant->stations.line.close();
    under.plant->isRefusedToOpen = true;
    under.start();
    service = under.service.get();

    while (!isLong)
        std::this_thread::yield();
    under.service.reset();

    EXPECT_EQ(under.told, Texts { "down: no such port" });
}

TEST(ServiceTurns, AStopThatIsAskedForAndGivenUpInAPauseHasItsEnd)
{
    std::atomic<bool> asks { false };
    std::atomic<LineService *> service { nullptr };
    ServiceUnderTest under;
    under.settings.runtime.stops = { { 1, 0 } };
    under.settings.runtime.pause = [&, plant = under.plant](Duration span) {
        plant->stations.line.advance(span);
        if (!asks.exchange(false))
            return;
        service.load()->stop(seconds(1));
        service.load()->cancelStop();
    };
    under.start();
    service = under.service.get();
    under.service->stop(seconds(1));
    under.waitFor([&] { return under.stops.size() == 1; });

    asks = true;
    under.waitFor([&] { return under.stops.size() == 2; });

    EXPECT_TRUE(under.stops.back().unconfirmed.isEmpty());
}

TEST(ServiceTurns, AStationThatIsNotShownAnyMoreIsNotLost)
{
    ServiceUnderTest under(polling({ entry(1, "D 0"), entry(2, "D 0") }));
    under.plant->stations.dead = { 2 };
    under.start();
    under.waitFor([&] { return under.told.size() == 2; });
    const QVector<int> lost = under.service->snapshot()->lostStations;

    under.service->setPlan(planOf({ entry(1, "D 5") }));
    under.waitFor([&] { return under.shown(1, "D", 5) == 0; });

    EXPECT_EQ(lost, QVector<int> { 2 });
    EXPECT_EQ(under.service->snapshot()->lostStations, QVector<int> {});
}

TEST(ServiceWithoutLine, IsOneWithoutADriverToo)
{
    ServiceUnderTest under;
    LineService service([plant = under.plant] {
        return LineParts { std::make_unique<PlantLine>(plant), nullptr, {} };
    });
    std::string reason;
    QObject::connect(&service, &LineService::lineWentDown,
                     [&](const QString &text) { reason = text.toStdString(); });

    under.waitFor([&] { return !reason.empty(); });

    EXPECT_EQ(reason, "line or driver could not be made");
}
