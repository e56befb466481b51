// SPDX-License-Identifier: MIT
// How a service ends, and one that never had a line.
#include "service_fixture.h"

#include <QCoreApplication>

#include <algorithm>
#include <stdexcept>

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

TEST(DroppedWrites, EndAsRefusedOrAsTimedOutWhereTheyWereSent)
{
    RuntimeUnderTest under;
    under.stations.dead = { 1 };
    under.write(1, "FRE", 0, { 5 });
    under.steps(1);
    under.write(1, "F", 0x0105, { 5 });

    under.host.dropWrites(QStringLiteral("the program ends"));

    EXPECT_EQ(under.outcomes, (Texts { "1000 timed out", "1001 refused" }));
    EXPECT_TRUE(under.outcomeRecords.at(0).sent);
    EXPECT_FALSE(under.outcomeRecords.at(1).sent);
    EXPECT_EQ(under.outcomeRecords.at(1).text.toStdString(),
              "station 1, F 1.5 (0xF105): not sent: the program ends");
    EXPECT_EQ(under.host.pendingWrites(), 0);
    EXPECT_EQ(under.host.link().waitingWrites(), 0);
}

TEST(ServiceEnd, EveryOpenWriteAndJobHasItsEnd)
{
    ServiceUnderTest under(pollingAndStopping());
    under.plant->hold();
    under.start();
    under.plant->awaitHeld();
    std::vector<int> ids;
    for (int i = 0; i < 30; ++i)
        ids.push_back(under.submit(1, "F", i % 8, { 5 }));
    under.service->read(1, QStringLiteral("D"), 3);
    under.plant->release();

    under.service.reset();

    std::vector<int> ended = under.outcomeIds;
    std::sort(ended.begin(), ended.end());
    EXPECT_EQ(ended, ids);
    EXPECT_EQ(under.reads.size(), 1U);
}

TEST(ServiceEnd, NothingIsCalledAfterwards)
{
    ServiceUnderTest under(pollingAndStopping());
    under.start();
    under.submit(1, "FRE", 0, { 5 });

    under.service.reset();

    const std::size_t told = under.told.size();
    const std::size_t changed = under.changes.size();
    QCoreApplication::processEvents();
    EXPECT_EQ(under.outcomes.size(), 1U);
    EXPECT_EQ(under.told.size(), told);
    EXPECT_EQ(under.changes.size(), changed);
}

TEST(ServiceEnd, WhatASlotAsksForMeanwhileIsNotTaken)
{
    ServiceUnderTest under(pollingAndStopping());
    under.plant->hold();
    under.start();
    under.plant->awaitHeld();
    LineService *const service = under.service.get(); // the pointer is empty while it ends
    std::vector<int> asked;
    QObject::connect(service, &LineService::writeEnded, [&](const WriteOutcome &) {
        asked = { service->submit({ 1, QStringLiteral("FRE"), 0, { 6 } }),
                  service->stop(seconds(1)), service->read(1, QStringLiteral("D"), 0) };
    });
    under.submit(1, "FRE", 0, { 5 });
    under.plant->release();

    under.service.reset();

    EXPECT_EQ(asked, (std::vector<int> { 0, 0, 0 }));
    EXPECT_EQ(under.outcomes.size(), 1U);
}

TEST(ServiceEnd, ASlotThatThrowsKeepsNothingFromTheOthers)
{
    ServiceUnderTest under(pollingAndStopping());
    under.start();
    QObject::connect(under.service.get(), &LineService::writeEnded,
                     [](const WriteOutcome &) { throw std::runtime_error("of a slot"); });
    under.submit(1, "FRE", 0, { 5 });
    under.submit(2, "FRE", 0, { 5 });

    under.service.reset();

    EXPECT_EQ(under.outcomes.size(), 2U);
}

TEST(ServiceEnd, ASlotMayBringItAbout)
{
    ServiceUnderTest under(pollingAndStopping());
    under.start();
    QObject::connect(under.service.get(), &LineService::writeEnded, [&](const WriteOutcome &) {
        if (under.outcomes.size() == 1)
            under.service.reset();
    });
    under.submit(1, "FRE", 0, { 5 });
    under.submit(2, "FRE", 0, { 5 });

    under.waitFor([&] { return under.service == nullptr; });

    EXPECT_EQ(under.outcomes.size(), 2U);
}

TEST(ServiceWithoutLine, SaysWhyAndRefusesEverything)
{
    ServiceUnderTest under;
    const auto owner = makeService(
        [] {
            return LineParts { nullptr, nullptr, QStringLiteral("no driver") };
        },
        pollingAndStopping());
    LineService &service = *owner;
    Texts told;
    const auto tell = [&](const QString &text) { told.push_back(text.toStdString()); };
    QObject::connect(&service, &LineService::lineWentDown, tell);
    QObject::connect(&service, &LineService::alarmRaised, tell);
    QObject::connect(&service, &LineService::writeEnded,
                     [&](const WriteOutcome &outcome) { tell(outcome.text); });
    QObject::connect(&service, &LineService::readEnded,
                     [&](int, const AccessResult &result) { tell(result.reason); });

    service.submit({ 1, QStringLiteral("FRE"), 0, { 5 } });
    service.read(1, QStringLiteral("D"), 0);
    service.stop(seconds(1));
    under.waitFor([&] { return told.size() == 4; });

    EXPECT_EQ(told,
              (Texts { "no driver", "station 1, FRE 0 (0x1002): no driver", "no driver",
                       "NOTHING WAS STOPPED, the drives may still run: no driver" }));
    EXPECT_FALSE(service.snapshot()->isOpen);

    service.submit({ 1, QStringLiteral("FRE"), 0, { 6 } });
    under.waitFor([&] { return told.size() == 5; });
    EXPECT_EQ(told.back(), "station 1, FRE 0 (0x1002): no driver") << "the stop has ended";
}

TEST(ServiceWithoutLine, AFactoryMayThrow)
{
    ServiceUnderTest under;
    const auto service =
        makeService([]() -> LineParts { throw std::runtime_error("no such adapter"); }, {});
    QString reason;
    QObject::connect(service.get(), &LineService::lineWentDown,
                     [&](const QString &text) { reason = text; });

    under.waitFor([&] { return !reason.isEmpty(); });

    EXPECT_EQ(reason.toStdString(), "no such adapter");
}
