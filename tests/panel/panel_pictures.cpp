// SPDX-License-Identifier: MIT
// Draws pages into files, in light and dark, with values that stand still.
#include "alarm_pictures.h"
#include "connect_pictures.h"
#include "line_pictures.h"
#include "panel_fixture.h"
#include "parameters_pictures.h"
#include "past_pictures.h"
#ifdef KORVANE_PANEL_TREND
#include "trend_fixture.h"

#include "panel/trendview/trace_save_sheet.h"
#include "panel/trendview/trace_sheet.h"
#include "panel/trendview/trigger_sheet.h"
#endif

#include "panel/widgets/look.h"

#include <QDir>
#include <QTextStream>

#include <functional>

using namespace dx4::panel;

namespace {

struct Scene {
    const char *name;
    int drives;
    std::function<void(MadeUpPanel &)> play;
};

void running(MadeUpPanel &panel)
{
    panel.made.readRunning(1);
    panel.made.readStanding(2);
    panel.made.readStanding(3);
    panel.made.read(3, "FU", 0, 2);
    panel.made.read(3, "SW", 0, 8);
    panel.show();
}

QVector<Scene> scenes()
{
    return {
        { "drives", 3, running },
        { "many", 32, running },
        { "old", 3,
          [](MadeUpPanel &panel) {
              running(panel);
              panel.made.advance(std::chrono::seconds(12));
              panel.window.refresh();
          } },
        { "gone", 3,
          [](MadeUpPanel &panel) {
              running(panel);
              panel.made.next.isOpen = false;
              panel.made.next.downReason = QStringLiteral("the adapter was pulled");
              panel.made.advance(std::chrono::seconds(40));
              panel.show();
          } },
        { "fault", 3,
          [](MadeUpPanel &panel) {
              running(panel);
              panel.window.findChild<DrivesPage *>()->choose(2);
              panel.line.start(2);
              panel.line.noteWriteEnded(ended(1000, dx4::host::WriteEnd::Rejected,
                                              "station 3, CW: illegal data value", 3));
              panel.window.refresh();
          } },
        { "pad", 3,
          [](MadeUpPanel &panel) {
              running(panel);
              auto *pad = panel.window.findChild<NumberPad *>();
              panel.window.findChild<QAbstractButton *>(QStringLiteral("change"))->click();
              pad->type(QLatin1Char('4'));
              pad->type(QLatin1Char('5'));
          } },
        { "unconfirmed", 3,
          [](MadeUpPanel &panel) {
              running(panel);
              panel.line.stopAll();
              dx4::host::StopReport report;
              report.unconfirmed = { 1 };
              panel.line.noteStopEnded(1, report);
              panel.window.refresh();
          } },
        { "closing", 3,
          [](MadeUpPanel &panel) {
              running(panel);
              panel.window.close();
          } },
    };
}

void draw(const Scene &scene, QSize size, const QString &file)
{
    MadeUpPanel panel(scene.drives, size);
    scene.play(panel);
    QCoreApplication::processEvents();
    panel.window.grab().save(file);
}

#ifdef KORVANE_PANEL_TREND
struct TrendScene {
    const char *name;
    std::function<void(MadeUpTrend &)> play;
};

void aMinute(MadeUpTrend &trend)
{
    trend.play(std::chrono::seconds(60), std::chrono::milliseconds(100));
    trend.show();
}

void eightTraces(MadeUpTrend &trend)
{
    trend.play(std::chrono::seconds(30), std::chrono::milliseconds(100));
    trend.silence(std::chrono::seconds(12));
    trend.store.noteWriteEnded(
        ended(1, dx4::host::WriteEnd::Confirmed, "station 1, CW: 1 written"));
    trend.play(std::chrono::seconds(12), std::chrono::milliseconds(100));
    trend.panel.made.read(1, "FU", 0, 2);
    trend.store.noteValues({ *trend.panel.made.find(1, "FU", 0) });
    trend.play(std::chrono::seconds(8), std::chrono::milliseconds(100));
    trend.page->choose(MadeUpTrend::allOf());
    trend.show();
}

QVector<TrendScene> trendScenes()
{
    const auto press = [](MadeUpTrend &trend, const char *text) {
        for (auto *button : trend.page->findChildren<FlatButton *>()) {
            if (button->isVisible() && button->text() == QLatin1String(text))
                button->click();
        }
        trend.show();
    };
    return {
        { "trend", aMinute },
        { "trend_eight", eightTraces },
        { "trend_cursors",
          [](MadeUpTrend &trend) {
              eightTraces(trend);
              trend.page->setMeasuring(true);
              trend.show();
          } },
        { "trend_day",
          [](MadeUpTrend &trend) {
              trend.pace = 1.0 / 150;
              trend.play(std::chrono::hours(14), std::chrono::seconds(3));
              trend.silence(std::chrono::hours(1));
              trend.play(std::chrono::hours(9), std::chrono::seconds(3));
              trend.page->setSpan(24 * 3'600'000);
              trend.show();
          } },
        { "trend_empty", [](MadeUpTrend &trend) { trend.show(); } },
        { "trend_traces",
          [press](MadeUpTrend &trend) {
              aMinute(trend);
              press(trend, "Traces...");
          } },
        { "trend_trigger",
          [press](MadeUpTrend &trend) {
              aMinute(trend);
              press(trend, "Trigger...");
          } },
        { "trend_save",
          [press](MadeUpTrend &trend) {
              aMinute(trend);
              press(trend, "Save...");
          } },
    };
}

void drawTrends(QSize size, const QDir &folder, const QString &suffix)
{
    for (const TrendScene &scene : trendScenes()) {
        MadeUpTrend trend(size);
        scene.play(trend);
        QCoreApplication::processEvents();
        const QString name = QStringLiteral("%1-%2-%3.png")
                                 .arg(QLatin1String(scene.name))
                                 .arg(size.width())
                                 .arg(suffix);
        trend.panel.window.grab().save(folder.filePath(name));
    }
}
#endif

} // namespace

int main(int argc, char **argv)
{
    const ScreenInMemory screen(argc, argv);
    if (argc < 2) {
        QTextStream(stderr) << "usage: panel_pictures FOLDER [SCENE...]\n";
        return 2;
    }
    const QDir folder(QString::fromLocal8Bit(argv[1]));
    const QStringList wanted = QCoreApplication::arguments().mid(2);
    for (const bool isDark : { false, true }) {
        QApplication::setPalette(paletteOf(isDark ? darkLook() : lightLook()));
        for (const QSize &size : { QSize(800, 480), QSize(1280, 800), QSize(1920, 1080) }) {
#ifdef KORVANE_PANEL_TREND
            drawTrends(size, folder, isDark ? QStringLiteral("dark") : QStringLiteral("light"));
#endif
            for (const Scene &scene : scenes()) {
                if (!wanted.isEmpty() && !wanted.contains(QLatin1String(scene.name)))
                    continue;
                const QString name =
                    QStringLiteral("%1-%2-%3.png")
                        .arg(QLatin1String(scene.name))
                        .arg(size.width())
                        .arg(isDark ? QStringLiteral("dark") : QStringLiteral("light"));
                draw(scene, size, folder.filePath(name));
            }
            drawAlarms(size, isDark ? "dark" : "light", folder);
            drawConnect(size, isDark ? "dark" : "light", folder);
            drawLine(size, isDark ? "dark" : "light", folder);
            drawParameters(size, isDark ? "dark" : "light", folder);
            drawPast(size, isDark ? "dark" : "light", folder);
        }
    }
    return 0;
}
