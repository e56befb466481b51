// SPDX-License-Identifier: MIT
// dx4-panel: a window on the drives of one line.
#include "common/standard_descriptors.h"
#include "host/writes/stop_signal.h"
#include "panel/app/alarm_parts.h"
#include "panel/app/ending.h"
#include "panel/app/options.h"
#include "panel/app/panel_window.h"
#include "panel/app/plant.h"
#include "panel/connect/connect_page.h"
#include "panel/lineview/line_page.h"
#include "panel/parameters/parameters_page.h"
#include "panel/past/past_file.h"
#include "panel/past/past_window.h"
#ifdef KORVANE_PANEL_TREND
#include "panel/app/trend_parts.h"
#endif
#include "panel/widgets/look.h"

#include <QApplication>
#include <QStandardPaths>
#include <QStyleFactory>
#include <QTranslator>

#include <iostream>
#include <optional>

using namespace dx4;

namespace {

constexpr int textSize = 16; // px

void dress()
{
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QApplication::setPalette(panel::paletteOf(panel::lookOf(QApplication::palette())));
    QFont font = QApplication::font();
    font.setPixelSize(textSize);
    QApplication::setFont(font);
    QApplication::setApplicationName(QStringLiteral("dx4-panel"));
    QApplication::setApplicationDisplayName(QStringLiteral("dx4-panel"));
}

/// Ends the event loop behind the stop that a signal asked for.
void endBy(panel::Ending &ending, const panel::PanelLine &line)
{
    QObject::connect(&ending, &panel::Ending::ended, [&line](const QVector<int> &unconfirmed) {
        if (!unconfirmed.isEmpty())
            std::cerr << "dx4-panel: " << qPrintable(line.message()) << '\n';
        QApplication::exit(unconfirmed.isEmpty() ? cli::ExitDone : cli::ExitFailed);
    });
}

void addParameters(panel::PanelWindow &window, const panel::PanelLine &line,
                   const panel::Plant &plant, const panel::AlarmParts &alarms,
                   panel::Background &background)
{
    panel::ParametersSetup setup;
    setup.port = panel::parameterPortOf(*plant.service);
    setup.config = plant.running.config;
    setup.clock = panel::systemClock();
    setup.standing = [&line](int station) { return panel::standingOf(line, station); };
    setup.runner = background.runner();
    setup.journal = { alarms.place().path, alarms.line() };
    setup.folder = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    auto *page = new panel::ParametersPage(setup);
    page->follow(*plant.service);
    window.addPage(page, QCoreApplication::translate("dx4::panel", "Parameters"));
}

void show(QWidget &window, const panel::Options &options)
{
    if (options.fullscreen)
        window.showFullScreen();
    else
        window.show();
}

int openPast(const panel::Options &options)
{
    QString error;
    const auto record = panel::loadPast(options.open, &error);
    if (!record) {
        std::cerr << "dx4-panel: " << qPrintable(error) << '\n';
        return cli::ExitUsage;
    }
    panel::PastWindow window(*record);
    show(window, options);
    return QApplication::exec();
}

panel::ConnectPort connectPortOf(const panel::Plant &plant)
{
    return { panel::portsWith,
             [plan = plant.makePlan](const QString &file) {
                 return panel::checkConfig(file, plan);
             },
             panel::configsIn,
             [service = plant.service.get()](const host::Config &config, const host::Plan &plan) {
                 service->reload(config, plan);
             } };
}

int run(const panel::Options &options, const host::StopSignal &signal)
{
    cli::Failure failure;
    const auto plant = panel::makePlant(options, &failure);
    if (!plant) {
        std::cerr << "dx4-panel: " << qPrintable(failure.text) << '\n';
        return failure.code;
    }
    const panel::DriveWords words = panel::wordsOf(plant->running.config, plant->running.control);
    const panel::Clock clock = panel::systemClock();
    panel::PanelLine line(panel::portOf(*plant->service), plant->running.config, words, clock);
    line.follow(*plant->service);
    panel::Ending ending(line, signal);
    endBy(ending, line);
    panel::AlarmParts alarms(*plant, options, clock);
    panel::Background background;
#ifdef KORVANE_PANEL_TREND
    panel::TrendParts trend(*plant, clock, alarms.place().path, alarms.line());
#endif
    panel::LineView lineView(panel::viewPortOf(*plant->service, plant->tap), plant->running.config,
                             clock);
    lineView.follow(*plant->service);
    lineView.start();
    panel::ConnectView connectView(connectPortOf(*plant), plant->running, clock);
    connectView.follow(*plant->service);
    QObject::connect(&connectView, &panel::ConnectView::taken, &line,
                     &panel::PanelLine::takeConfig);
    QObject::connect(&connectView, &panel::ConnectView::taken, &lineView,
                     &panel::LineView::takeConfig);
    panel::PanelWindow window(line, clock.steady);
    panel::tellOfUser(*plant->service, plant->running.control.userPatience, &window);
#ifdef KORVANE_PANEL_TREND
    trend.addTo(window);
#endif
    alarms.addTo(window);
    window.addPage(new panel::LinePage(lineView, panel::recordPlaces, QDateTime::currentDateTime),
                   QCoreApplication::translate("dx4::panel::PanelWindow", "Line"));
    window.addPage(new panel::ConnectPage(connectView),
                   QCoreApplication::translate("dx4::panel::PanelWindow", "Connect"));
    addParameters(window, line, *plant, alarms, background);
    show(window, options);
    window.start();
    return QApplication::exec();
}

} // namespace

int main(int argc, char **argv)
{
    common::holdStandardStreams();
    int exitCode = 0;
    // Before the window system is asked for anything: help needs no display.
    const auto options = panel::parseOptions(argc, argv, KORVANE_VERSION, &exitCode);
    if (!options)
        return exitCode;
    const bool hasLine = options->open.isEmpty();
    // Before the window system starts threads of its own. Without a line a signal ends the program.
    std::optional<host::StopSignal> signal;
    if (hasLine)
        signal.emplace();
    const QApplication application(argc, argv);
    dress();
    QTranslator translator;
    if (translator.load(QLocale(), QStringLiteral("dx4-panel"), QStringLiteral("_"),
                        QStringLiteral(":/i18n")))
        QApplication::installTranslator(&translator);
    return hasLine ? run(*options, *signal) : openPast(*options);
}
