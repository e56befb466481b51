// SPDX-License-Identifier: MIT
// What a service shows and tells of its line.
#include "host/recording/frame_tap.h"
#include "host/runtime/config_runtime.h"

#include "service_fixture.h"

#include <QMetaMethod>

using namespace dx4::host;

namespace {

PlanEntry entry(int station, const char *text)
{
    return { station, QString::fromLatin1(text) };
}

/// One named register with a unit.
Config namedConfig(const char *name)
{
    RegisterConfig frequency;
    frequency.at = QStringLiteral("D 0");
    frequency.name = QString::fromLatin1(name);
    frequency.scaling.factor = 0.01;
    frequency.scaling.decimals = 2;
    frequency.scaling.unit = QStringLiteral("Hz");
    StationConfig station;
    station.registers = { frequency };
    Config config;
    config.stations = { station };
    return config;
}

} // namespace

TEST(LineServiceTest, ShowsWhatIsPolled)
{
    ServiceUnderTest under(polling({ entry(1, "D 0-1") }));
    under.plant->stations.registers[{ 1, 0xD001 }] = 17;
    under.start();

    under.waitFor([&] { return !under.told.empty() && under.shown(1, "D", 1) == 17; });

    const auto snapshot = under.service->snapshot();
    const RegisterValue *value = snapshot->find(1, QStringLiteral("D"), 1);
    EXPECT_TRUE(snapshot->isOpen);
    EXPECT_TRUE(snapshot->takenAt.isValid());
    EXPECT_EQ(snapshot->registers.size(), 2);
    EXPECT_FALSE(value->state.stale);
    EXPECT_FALSE(value->state.failed);
    EXPECT_FALSE(value->state.writePending);
    EXPECT_EQ(under.told, Texts { "open" });
}

TEST(LineServiceTest, ASnapshotStaysAsItWas)
{
    ServiceUnderTest under(polling({ entry(1, "D 0") }));
    under.plant->hold();
    under.start();
    under.plant->awaitHeld();
    const auto before = under.service->snapshot();

    under.plant->release();
    under.waitFor([&] { return under.shown(1, "D", 0) == 0; });

    EXPECT_EQ(before->find(1, QStringLiteral("D"), 0), nullptr);
}

TEST(LineServiceTest, AWriteHasOneOutcomeAndItsValueShows)
{
    ServiceUnderTest under;
    under.start();

    const int id = under.submit(1, "FRE", 0, { 2500 });
    under.waitFor([&] { return !under.outcomes.empty(); });

    EXPECT_EQ(under.outcomeIds, std::vector<int> { id });
    EXPECT_EQ(under.outcomes.front().text.toStdString(), "station 1, FRE 0 (0x1002): confirmed");
    EXPECT_EQ(under.shown(1, "FRE", 0), 2500);
}

TEST(LineServiceTest, ARefusedWriteHasItsReason)
{
    ServiceUnderTest under;
    under.start();

    under.submit(1, "D", 0, { 1 });
    under.waitFor([&] { return !under.outcomes.empty(); });

    EXPECT_EQ(under.outcomes.front().refusal, Refusal::Access);
    EXPECT_EQ(under.service->snapshot()->registers.size(), 0);
}

TEST(LineServiceTest, AWaitingWriteIsShownAsSuch)
{
    ServiceUnderTest under(polling({ entry(1, "F 0.0") }));
    under.plant->hold();
    under.start();
    under.plant->awaitHeld();
    under.submit(1, "F", 0, { 9 });

    under.plant->letGo(2); // the read that was held, and the one that compares
    under.plant->awaitHeld();

    const auto snapshot = under.service->snapshot();
    const Value &shown = snapshot->find(1, QStringLiteral("F"), 0)->state;
    EXPECT_TRUE(shown.writePending);
    EXPECT_EQ(shown.value, 9);
}

TEST(LineServiceTest, NamesAndUnitsAreThoseOfTheConfiguration)
{
    ServiceSettings settings = polling({ entry(1, "D 0") });
    settings.config = namedConfig("frequency");
    ServiceUnderTest under(settings);
    under.plant->stations.registers[{ 1, 0xD000 }] = 4998;
    under.start();

    under.waitFor([&] { return !under.changes.empty() && under.shown(1, "D", 0) == 4998; });
    const RegisterValue before = *under.service->snapshot()->find(1, QStringLiteral("D"), 0);
    under.service->reload(namedConfig("speed"), settings.plan);
    under.waitFor([&] { return under.changes.back().constFirst().name != before.name; });

    EXPECT_EQ(before.name.toStdString(), "frequency");
    EXPECT_EQ(before.text().toStdString(), "49.98 Hz");
    EXPECT_EQ(under.changes.back().constFirst().name.toStdString(), "speed");
}

TEST(LineServiceTest, NoticesOfTheRuntimeAreTold)
{
    ServiceSettings settings = polling({ entry(1, "D 0") });
    KEY_ADDRESS tooLong = settings.plan.blocks.constFirst();
    tooLong.count = 200;
    settings.plan.blocks.append(tooLong);
    ServiceUnderTest under(settings);
    under.start();
    Texts notices;
    QObject::connect(under.service.get(), &LineService::noticeGiven,
                     [&notices](const QString &text) { notices.push_back(text.toStdString()); });

    under.waitFor([&] { return !notices.empty(); });

    EXPECT_NE(notices.front().find("200 registers"), std::string::npos) << notices.front();
}

TEST(LineServiceTest, SignalsCanBeQueuedByTheirNames)
{
    ServiceUnderTest from;
    ServiceUnderTest to;
    from.start();
    to.start();
    const QMetaObject &type = LineService::staticMetaObject;

    for (int i = type.methodOffset(); i < type.methodCount(); ++i) {
        const QMetaMethod signal = type.method(i);
        EXPECT_TRUE(QObject::connect(from.service.get(), signal, to.service.get(), signal,
                                     Qt::QueuedConnection))
            << signal.methodSignature().constData();
    }
}

TEST(LineServiceTest, IsAnObjectThatOthersMayCallLater)
{
    ServiceUnderTest under;
    under.start();
    bool isCalled = false;

    QMetaObject::invokeMethod(
        under.service.get(), [&] { isCalled = true; }, Qt::QueuedConnection);
    under.takeSignals();

    EXPECT_TRUE(isCalled);
}

TEST(LineServiceTest, AReloadTellsWhichSettingsWaitForANewService)
{
    ServiceUnderTest under(polling({ entry(1, "D 0") }));
    under.settings.runtime.link.retryLimit = 2;
    under.start();
    under.waitFor([&] { return under.told == Texts { "open" }; });
    Config config = namedConfig("speed");
    config.line = under.plant->stations.line.settings();
    config.line.speed = 19200;
    config.link.retryLimit = 3;

    under.service->reload(config, under.settings.plan);
    under.waitFor([&] { return under.told.size() == 2; });

    EXPECT_EQ(under.told.back(), "reloaded: line.speed link.tries");
}

TEST(LineServiceTest, AReloadPollsAndShowsTheNewPlanAlone)
{
    ServiceUnderTest under(polling({ entry(1, "D 0") }));
    under.plant->stations.registers[{ 1, 0xD005 }] = 55;
    under.start();
    under.waitFor([&] { return under.shown(1, "D", 0) == 0; });

    under.service->reload({}, planOf({ entry(1, "D 5") }));
    under.waitFor([&] { return under.shown(1, "D", 5) == 55; });

    EXPECT_EQ(under.service->snapshot()->registers.size(), 1);
}

TEST(LineServiceTest, CountersAreThoseOfTheLineWithTheTimeTheyTook)
{
    ServiceUnderTest under(polling({ entry(1, "D 0") }));
    under.plant->hold();
    under.start();
    under.plant->letGo(2);
    under.plant->awaitHeld();

    const int id = under.service->takeCounters();
    under.plant->letGo(2); // the request that is held, and the step behind the counting
    under.waitFor([&] { return !under.counters.empty(); });

    const LineCounters &taken = under.counters.front();
    EXPECT_EQ(under.told.back(), "counters " + std::to_string(id));
    EXPECT_EQ(taken.counts.total().requests, 3U);
    EXPECT_GT(taken.span.count(), 0);
    EXPECT_EQ(taken.load(), taken.counts.lineLoad({}, taken.span));
    EXPECT_EQ(taken.toJson(), taken.counts.toJson({}, taken.span));
}

TEST(LineServiceTest, AnotherPlanTakesTheOldOnesPlace)
{
    ServiceUnderTest under(polling({ entry(1, "D 0") }));
    under.plant->stations.registers[{ 1, 0xD005 }] = 55;
    under.start();

    under.service->setPlan(planOf({ entry(1, "D 5") }));
    under.waitFor([&] { return under.shown(1, "D", 5) == 55; });

    EXPECT_EQ(under.service->snapshot()->registers.size(), 1);
}

TEST(LineServiceTest, AClosedLineIsToldWithItsReasonAndItsReturn)
{
    ServiceUnderTest under;
    under.playTime();
    under.plant->stations.line.close();
    under.plant->isRefusedToOpen = true;
    under.start();

    under.waitFor([&] { return !under.told.empty(); });
    const bool wasOpen = under.service->snapshot()->isOpen;
    under.plant->isRefusedToOpen = false;
    under.waitFor([&] { return under.told.size() == 2; });

    EXPECT_FALSE(wasOpen);
    EXPECT_EQ(under.told, (Texts { "down: no such port", "open" }));
    EXPECT_EQ(under.service->snapshot()->downReason, QString());
}

TEST(LineServiceTest, AStationIsToldAsLostAndAsBack)
{
    ServiceUnderTest under(polling({ entry(1, "D 0"), entry(2, "D 0") }));
    under.plant->stations.dead = { 2 };
    under.start();
    under.waitFor([&] { return under.told.size() == 2; });
    const QVector<int> lost = under.service->snapshot()->lostStations;

    under.plant->hold();
    under.plant->awaitHeld();
    under.plant->stations.dead.clear();
    under.plant->release();
    under.waitFor([&] { return under.told.size() == 3; });

    EXPECT_EQ(lost, QVector<int> { 2 });
    EXPECT_EQ(under.told, (Texts { "open", "lost 2", "back 2" }));
    EXPECT_TRUE(under.service->snapshot()->lostStations.isEmpty());
}

TEST(LineServiceTest, ASilentUserStopsTheDrives)
{
    ServiceSettings settings = polling({ entry(1, "D 0") });
    settings.runtime.userPatience = std::chrono::seconds(1);
    settings.runtime.stops = { { 1, 0 } };
    ServiceUnderTest under(settings);
    under.start();

    under.waitFor([&] { return under.told.size() == 3; });

    EXPECT_EQ(under.told,
              (Texts { "open", "the user interface is silent: stopping", "all stops confirmed" }));
}

TEST(LineServiceTest, FramesOfTheLineCanBeTapped)
{
    ServiceUnderTest under(polling({ entry(1, "D 0") }));
    under.playTime();
    const auto tap = std::make_shared<FrameTap>();
    under.service = makeService(
        [plant = under.plant, tap] {
            auto line = std::make_unique<TappingLine>(std::make_unique<PlantLine>(plant), tap);
            return LineParts { std::move(line), privateCopy(), {} };
        },
        under.settings);

    under.waitFor([&] {
        under.service->takeCounters(); // answers keep the loop turning
        return tap->next() >= 3;
    });

    const TappedFrames taken = tap->since(0);
    EXPECT_TRUE(taken.frames.at(0).isRequest);
    EXPECT_FALSE(taken.frames.at(1).isRequest);
    EXPECT_EQ(taken.frames.at(1).bytes.at(0), 1) << "the station that was asked";
}
