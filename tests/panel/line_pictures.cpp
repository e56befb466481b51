// SPDX-License-Identifier: MIT
// The page of the line in its states, as files.
#include "line_pictures.h"

#include "made_up_view.h"

#include <QCoreApplication>

#include <functional>

using namespace dx4::panel;

namespace {

/// Scenes of the page of the line.
struct LineScene {
    const char *name;
    int drives;
    std::function<void(MadeUpLinePage &)> play;
};

QVector<LineScene> lineScenes()
{
    const auto open = [](LinePage::View view) {
        return [view](MadeUpLinePage &made) {
            playBadCable(made);
            made.page->open(view);
        };
    };
    return {
        { "line-counters", 3, open(LinePage::Counters) },
        { "line-answers", 3, open(LinePage::Answers) },
        { "line-frames", 3, open(LinePage::Frames) },
        { "line-blocks", 32,
          [](MadeUpLinePage &made) {
              playBadCable(made);
              made.view.showBlocks(true);
          } },
        { "line-errors", 3,
          [](MadeUpLinePage &made) {
              playBadCable(made);
              made.view.setFilter({ 3, true });
              made.page->open(LinePage::Frames);
          } },
        { "line-stations", 32,
          [](MadeUpLinePage &made) { made.page->findChild<StationSheet *>()->ask(); } },
        { "line-recorded", 3,
          [](MadeUpLinePage &made) {
              playBadCable(made);
              made.view.recorder().begin(QStringLiteral("/nowhere/line.pcap"), false);
              made.view.recorder().join();
          } },
        { "line-record", 3,
          [](MadeUpLinePage &made) {
              made.page->findChild<RecordSheet *>()->askToReplace(
                  QStringLiteral("/home/me/line-20260301-120000.pcap"));
          } },
    };
}

} // namespace

void drawLine(QSize size, const char *look, const QDir &folder)
{
    for (const LineScene &scene : lineScenes()) {
        MadeUpLinePage made(scene.drives, size);
        scene.play(made);
        made.show();
        QCoreApplication::processEvents();
        const QString name = QStringLiteral("%1-%2-%3.png")
                                 .arg(QLatin1String(scene.name))
                                 .arg(size.width())
                                 .arg(QLatin1String(look));
        made.panel.window.grab().save(folder.filePath(name));
    }
}
