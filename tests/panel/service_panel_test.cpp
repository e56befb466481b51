// SPDX-License-Identifier: MIT
// The panel over a service with stations on a line in memory.
#include "panel/app/ending.h"
#include "panel/connect/connect_view.h"
#include "panel/lineview/line_view.h"
#include "panel/model/panel_line.h"
#include "service_fixture.h"

#include <gtest/gtest.h>

using namespace dx4;
using namespace dx4::host;

namespace {

constexpr int statusRegister = 0x2000;
constexpr int controlRegister = 0x1001;

/// Station 1, whose status word is polled.
Config oneDrive()
{
    Config config;
    StationConfig station;
    station.address = 1;
    RegisterConfig status;
    status.at = QStringLiteral("SW");
    station.registers.append(status);
    config.stations.append(station);
    config.stop.controlWord = 0;
    config.states.insert(1, QStringLiteral("running"));
    return config;
}

struct Panel {
    Panel()
        : config(oneDrive())
        , service(serviceSettings(config, planOf({ { 1, QStringLiteral("SW") } })))
    {
        service.playTime();
        service.plant->stations.registers[{ 1, statusRegister }] = 1;
        service.start();
        line = std::make_unique<panel::PanelLine>(panel::portOf(*service.service), config,
                                                  panel::wordsOf(config), panel::systemClock());
        line->follow(*service.service);
    }

    std::string way() const { return line->drive(0).way.toStdString(); }

    bool hears(const char *state) const
    {
        line->look();
        return line->drive(0).state.text() == QLatin1String(state);
    }

    Config config;
    ServiceUnderTest service;
    std::unique_ptr<panel::PanelLine> line;
};

} // namespace

TEST(PanelOverAService, ShowsWhatTheStationsHold)
{
    Panel panel;

    panel.service.waitFor([&] { return panel.hears("bit 0"); });

    EXPECT_EQ(panel.line->mayRun(), QVector<int>());
}

TEST(PanelOverAService, AStartIsEchoedByTheStation)
{
    Panel panel;
    panel.service.waitFor([&] { return panel.hears("bit 0"); });

    panel.line->start(0);
    panel.service.waitFor([&] { return panel.service.outcomes.size() == 1; });

    EXPECT_EQ(panel.way(), "Start: echoed");
    EXPECT_EQ(panel.line->mayRun(), QVector<int> { 1 });
}

TEST(PanelOverAService, AStopIsConfirmedByTheStation)
{
    Panel panel;
    panel.service.waitFor([&] { return panel.hears("bit 0"); });

    panel.line->stopAll();
    panel.service.waitFor([&] { return !panel.line->isStopping(); });

    EXPECT_EQ(panel.line->message().toStdString(), "Stop: confirmed by all drives");
}

TEST(PanelOverAService, ARefusedStartIsToldInWords)
{
    Panel panel;
    panel.service.waitFor([&] { return panel.hears("bit 0"); });
    panel.service.plant->hold();
    panel.service.plant->awaitHeld();
    panel.service.plant->stations.refused.insert({ 1, controlRegister });
    panel.service.plant->release();

    panel.line->start(0);
    panel.service.waitFor([&] { return panel.service.outcomes.size() == 1; });

    EXPECT_EQ(panel.way().substr(0, 15), "Start: refused:");
}

TEST(PanelOverAService, AWindowThatHangsHasTheDrivesStopped)
{
    ServiceSettings settings = serviceSettings(oneDrive(), planOf({ { 1, QStringLiteral("SW") } }));
    settings.runtime.userPatience = std::chrono::seconds(2);
    ServiceUnderTest under(settings);
    under.playTime();
    under.start();
    QObject window;

    panel::tellOfUser(*under.service, settings.runtime.userPatience, &window);

    // This thread turns no event loop meanwhile.
    under.plant->awaitSent(framed("01 06 10 01 00 00"));
}

TEST(PanelOverAService, AWindowThatLivesTellsOfItsUserFourTimesInItsPatience)
{
    ServiceUnderTest under;
    under.start();
    QObject window;

    panel::tellOfUser(*under.service, std::chrono::seconds(2), &window);
    panel::tellOfUser(*under.service, std::chrono::seconds(0), &window);

    const auto timers = window.findChildren<QTimer *>();
    ASSERT_EQ(timers.size(), 1);
    EXPECT_EQ(timers.at(0)->interval(), 500);
    EXPECT_TRUE(timers.at(0)->isActive());
}

TEST(PanelOverAService, WhatIsCountedOnTheLineIsShown)
{
    Panel panel;
    panel.service.waitFor([&] { return panel.hears("bit 0"); });
    panel::LineView view(panel::viewPortOf(*panel.service.service, std::make_shared<FrameTap>()),
                         panel.config, panel::systemClock());
    view.follow(*panel.service.service);
    const QModelIndex good = view.counts().index(1, panel::CountsModel::GoodColumn);
    EXPECT_EQ(good.data().toString().toStdString(), "0");

    view.look();
    panel.service.waitFor([&] { return good.data().toString() != QLatin1String("0"); });

    EXPECT_EQ(view.counts().index(1, 0).data().toString().toStdString(), "1");
    EXPECT_FALSE(view.verdict().isBad) << view.verdict().text.toStdString();
}

TEST(PanelOverAService, AnotherConfigurationIsTakenOverByTheLine)
{
    Panel panel;
    panel.service.waitFor([&] { return panel.hears("bit 0"); });
    panel::CheckedConfig running;
    running.config = panel.config;
    panel::CheckedConfig other = running;
    other.file = QStringLiteral("other.toml");
    other.config.stations[0].name = QStringLiteral("New pump");
    other.config.line.speed = 19200;
    other.config.line.responseTimeout =
        panel.service.plant->stations.line.settings().responseTimeout;
    LineService &service = *panel.service.service;
    panel::ConnectView view(
        { [](const QString &) { return QVector<PortInfo>(); },
          [other](const QString &) { return other; }, [](const QString &) { return QStringList(); },
          [&service](const Config &config, const Plan &plan) { service.reload(config, plan); } },
        running, panel::systemClock());
    view.follow(service);
    QObject::connect(&view, &panel::ConnectView::taken, panel.line.get(),
                     &panel::PanelLine::takeConfig);

    view.open(QStringLiteral("other.toml"));
    view.finish();
    view.takeOver();
    panel.service.waitFor([&] { return view.stage() == panel::ConnectView::Stage::Taken; });

    EXPECT_EQ(panel.line->drive(0).name.toStdString(), "New pump");
    EXPECT_EQ(view.stateText().toStdString(),
              "other.toml runs, but for line.speed: these take effect with a new start of "
              "dx4-panel");
}
