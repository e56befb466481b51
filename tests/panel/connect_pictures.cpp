// SPDX-License-Identifier: MIT
// The page of ports, plan and configuration in its states, as files.
#include "connect_pictures.h"

#include "made_up_connect.h"

#include "panel/connect/file_sheet.h"

#include <QCoreApplication>

#include <functional>

using namespace dx4::panel;

namespace {

/// Scenes of the page of ports, plan and configuration.
struct ConnectScene {
    const char *name;
    std::function<void(MadeUpConnect &)> play;
};

QVector<ConnectScene> connectScenes()
{
    return {
        { "connect-ports", [](MadeUpConnect &made) { made.page->open(ConnectPage::Ports); } },
        { "connect-plan", [](MadeUpConnect &made) { made.page->open(ConnectPage::Plan); } },
        { "connect-wrong",
          [](MadeUpConnect &made) {
              made.next.text =
                  QStringList { QStringLiteral("[line]"), QStringLiteral("speeed = 19200") };
              made.next.errors.append({ 2, QStringLiteral("unknown key \"line.speeed\"") });
              made.view.open(QStringLiteral("/etc/other.toml"));
              made.view.finish();
              made.page->open(ConnectPage::Configuration);
          } },
        { "connect-whole",
          [](MadeUpConnect &made) {
              made.view.open(QStringLiteral("/etc/other.toml"));
              made.view.finish();
              made.page->open(ConnectPage::Configuration);
          } },
        { "connect-file",
          [](MadeUpConnect &made) {
              made.page->open(ConnectPage::Configuration);
              made.page->findChild<FileSheet *>()->ask(made.view.running().file, made.view.files());
          } },
    };
}

} // namespace

void drawConnect(QSize size, const char *look, const QDir &folder)
{
    for (const ConnectScene &scene : connectScenes()) {
        MadeUpConnect made(size);
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
