// SPDX-License-Identifier: MIT
// What is recorded of a service with a station on a line in memory.
#include "service_fixture.h"

#include "panel/trend/trend_store.h"

#include <gtest/gtest.h>

using namespace dx4;
using namespace dx4::host;

namespace {

constexpr int statusRegister = 0x2000;
const panel::TraceKey statusKey { 1, QStringLiteral("SW"), 0 };

/// Station 1, whose status word is polled.
struct Recorded {
    Recorded()
        : service(serviceSettings(config, planOf({ { 1, QStringLiteral("SW") } })))
    {
        service.playTime();
        service.plant->stations.registers[{ 1, statusRegister }] = 1;
        service.start();
        store = std::make_unique<panel::TrendStore>(
            config, [this] { return service.service->snapshot(); }, panel::systemClock());
        store->follow(*service.service);
    }

    bool holds(quint16 word) const { return store->valueOf(statusKey) == word; }

    Config config;
    ServiceUnderTest service;
    std::unique_ptr<panel::TrendStore> store;
};

} // namespace

TEST(TrendOfAService, RecordsWhatTheStationHoldsWithoutBeingLookedAt)
{
    Recorded recorded;

    recorded.service.waitFor([&] { return recorded.holds(1); });

    panel::ColumnRun run;
    recorded.store->read(statusKey, 0, recorded.store->began(), recorded.store->now() + 1, &run);
    ASSERT_FALSE(run.columns.empty());
    EXPECT_EQ(run.columns.back().last, 1);
}

TEST(TrendOfAService, AWriteThatTheStationEchoedIsMarked)
{
    Recorded recorded;
    recorded.service.waitFor([&] { return recorded.holds(1); });
    WriteWish start;
    start.station = 1;
    start.regType = QStringLiteral("CW");
    start.values = { 1 };

    recorded.service.service->submit(start);
    recorded.service.waitFor([&] { return recorded.service.outcomes.size() == 1; });

    const auto markers = recorded.store->markers(0, recorded.store->now() + 1);
    ASSERT_EQ(markers.size(), 1);
    EXPECT_EQ(markers.first().kind, panel::Marker::Kind::Write);
}
