// SPDX-License-Identifier: MIT
// dx4-panel: a window on the drives of one line.
#include "common/standard_descriptors.h"
#include "panel/app/options.h"
#include "panel/app/panel_window.h"
#include "panel/app/plant.h"
#include "panel/widgets/look.h"

#include <QApplication>
#include <QStyleFactory>

#include <iostream>

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
    QApplication::setApplicationDisplayName(QStringLiteral("dx4-panel"));
}

int run(const panel::Options &options)
{
    cli::Failure failure;
    const auto plant = panel::makePlant(options, &failure);
    if (!plant) {
        std::cerr << "dx4-panel: " << qPrintable(failure.text) << '\n';
        return failure.code;
    }
    panel::DriveWords words = panel::wordsOf(plant->config);
    words.run = static_cast<quint16>(options.runWord);
    const panel::Clock clock = panel::systemClock();
    panel::PanelLine line(panel::portOf(*plant->service), plant->config, words, clock);
    line.follow(*plant->service);
    panel::PanelWindow window(line, clock.steady);
    if (options.fullscreen)
        window.showFullScreen();
    else
        window.show();
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
    const QApplication application(argc, argv);
    dress();
    return run(*options);
}
