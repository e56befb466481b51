// SPDX-License-Identifier: MIT
// What a user may do: in slots, from other threads, and while the line hangs.
#include "service_fixture.h"

#include <QCoreApplication>

#include <algorithm>
#include <set>
#include <stdexcept>
#include <thread>

using namespace dx4::host;
using std::chrono::seconds;

namespace {

ServiceSettings pollingOne()
{
    return polling({ { 1, QStringLiteral("D 0") } });
}

} // namespace

TEST(ServiceUsers, ALineThatHangsKeepsNobodyWaiting)
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

TEST(ServiceUsers, ManyThreadsGetOneOutcomeForEachOfTheirWrites)
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

TEST(ServiceUsers, ASlotMayTurnALoopOfItsOwn)
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

TEST(ServiceUsers, ASlotMayAskForMore)
{
    ServiceSettings settings = pollingOne();
    settings.runtime.stops = { { 1, 0 } };
    ServiceUnderTest under(settings);
    under.start();
    under.waitFor([&] { return under.told.size() == 1; });
    QObject::connect(under.service.get(), &LineService::writeEnded, [&](const WriteOutcome &) {
        if (under.outcomes.size() > 1)
            return;
        under.submit(2, "FRE", 0, { 6 });
        under.service->read(1, QStringLiteral("D"), 3);
    });
    QObject::connect(under.service.get(), &LineService::readEnded,
                     [&] { under.service->stop(seconds(1)); });

    under.submit(1, "FRE", 0, { 5 });
    under.waitFor([&] { return !under.stops.empty(); });

    EXPECT_EQ(under.told,
              (Texts { "open", "1 confirmed", "2 confirmed", "read 3: ", "all stops confirmed",
                       "stop 4: all stops confirmed" }));
}

TEST(ServiceUsers, WhatASlotThrowsLeavesThroughTheLoopAndKeepsNothingFromTheOthers)
{
    ServiceUnderTest under;
    under.start();
    under.waitFor([&] { return under.told.size() == 1; });
    QObject::connect(under.service.get(), &LineService::writeEnded, [&](const WriteOutcome &) {
        if (under.outcomes.size() == 1)
            throw std::runtime_error("of a slot");
    });
    under.submit(1, "FRE", 0, { 5 });
    under.submit(2, "FRE", 0, { 5 });

    std::string thrown;
    try {
        under.waitFor([&] { return under.outcomes.size() == 2; });
    } catch (const std::runtime_error &error) {
        thrown = error.what();
    }
    under.waitFor([&] { return under.outcomes.size() == 2; });

    EXPECT_EQ(thrown, "of a slot");
    EXPECT_EQ(under.told, (Texts { "open", "1 confirmed", "2 confirmed" }));
}

TEST(ServiceUsers, ASlotOfANestedLoopMayDestroyTheService)
{
    ServiceUnderTest under(pollingOne());
    under.start();
    int depth = 0;
    QObject::connect(under.service.get(), &LineService::writeEnded, [&](const WriteOutcome &) {
        if (++depth == 1)
            under.waitFor([&] { return under.service == nullptr; });
        else
            under.service.reset();
    });
    under.submit(1, "FRE", 0, { 5 });
    under.submit(2, "FRE", 0, { 5 });

    under.waitFor([&] { return under.service == nullptr; });

    EXPECT_EQ(under.outcomes.size(), 2U);
}
