// SPDX-License-Identifier: MIT
// Banner and page of the alarms in their states, as files.
#include "alarm_pictures.h"

#include "alarm_fixture.h"

using namespace dx4::panel;

namespace {

struct AlarmScene {
    const char *name;
    std::function<void(AlarmPanel &)> play;
};

void history(AlarmPanel &panel)
{
    panel.openAlarms();
    panel.page->showHistory(true);
    panel.giveHistory(100);
}

void click(AlarmPanel &panel, const char *name)
{
    panel.page->findChild<QAbstractButton *>(QLatin1String(name))->click();
}

QVector<AlarmScene> alarmScenes()
{
    return {
        { "banner", [](AlarmPanel &panel) { panel.raiseSome(); } },
        { "banner-active",
          [](AlarmPanel &panel) {
              panel.panel.made.readStanding(2);
              panel.panel.made.read(2, "FU", 0, 1);
              panel.show();
          } },
        { "alarms",
          [](AlarmPanel &panel) {
              panel.raiseSome();
              panel.openAlarms();
              click(panel, "row 0");
          } },
        { "alarms-none", [](AlarmPanel &panel) { panel.openAlarms(); } },
        { "alarms-many",
          [](AlarmPanel &panel) {
              panel.raiseSome();
              for (int i = 0; i < 20; ++i)
                  panel.watch.noteAlarm(
                      QStringLiteral("something went wrong for the %1. time").arg(i + 1));
              panel.show();
              panel.openAlarms();
          } },
        { "alarm-details",
          [](AlarmPanel &panel) {
              panel.raiseSome();
              panel.openAlarms();
              click(panel, "row 3");
              click(panel, "details");
          } },
        { "history", history },
        { "history-filter",
          [](AlarmPanel &panel) {
              history(panel);
              click(panel, "filter");
          } },
        { "history-save",
          [](AlarmPanel &panel) {
              history(panel);
              click(panel, "csv");
              panel.page->findChild<QAbstractButton *>(QStringLiteral("save now"))->click();
              panel.saved({ SaveEnd::Kind::IsThere, {} });
          } },
    };
}

} // namespace

void drawAlarms(QSize size, const char *look, const QDir &folder)
{
    for (const AlarmScene &scene : alarmScenes()) {
        AlarmPanel panel(size);
        scene.play(panel);
        QCoreApplication::processEvents();
        const QString name = QStringLiteral("%1-%2-%3.png")
                                 .arg(QLatin1String(scene.name))
                                 .arg(size.width())
                                 .arg(QLatin1String(look));
        panel.panel.window.grab().save(folder.filePath(name));
    }
}
