// SPDX-License-Identifier: MIT
// A window with a trend of a line that a test makes up.
#include "trend_fixture.h"

#include <cmath>

using namespace dx4::panel;
using namespace dx4::host;

MadeUpTrend::MadeUpTrend(QSize size, int drives)
    : panel(drives, size)
    , store(panel.made.config, panel.made.port().snapshot, panel.made.clock())
    , page(new TrendPage(store, panel.made.clock().steady))
{
    panel.window.addPage(page, QStringLiteral("Trend"));
    // The button of a page that comes later is shown by the event loop.
    QCoreApplication::sendPostedEvents();
    for (auto *button : panel.window.findChildren<FlatButton *>()) {
        if (button->text() == QLatin1String("Trend"))
            button->click();
    }
}

void MadeUpTrend::read(double seconds)
{
    const double part = std::fmod(seconds, 40.0);
    const double hertz = part < 8.0 ? part * 6.25 : 50.0 - 0.4 * std::sin(seconds * 3.0);
    const double load = 1.0 + 0.3 * std::sin(seconds / 3.0);
    const double values[] = { hertz * 100.0,       5000.0,
                              62.0 * load,         hertz * 8.0,
                              612.0 - 12.0 * load, 413.0 + 20.0 * std::sin(seconds / 200.0),
                              hertz * 6.8 * load,  hertz * 30.0 };
    for (int i = 0; i < 8; ++i)
        panel.made.read(1, "D", i, static_cast<quint16>(values[i]));
    panel.made.read(1, "SW", 0, part < 8.0 ? 0x23 : 0x13);
    panel.made.read(1, "FU", 0, 0);
}

void MadeUpTrend::play(Duration span, Duration step)
{
    for (Duration at { 0 }; at < span; at += step) {
        panel.made.advance(step);
        m_played += std::chrono::duration<double>(step).count();
        read(m_played * pace);
        store.noteValues(panel.made.next.registers);
    }
    panel.made.publish();
}

void MadeUpTrend::silence(Duration span)
{
    panel.made.advance(span);
    m_played += std::chrono::duration<double>(span).count();
    panel.made.publish();
    store.look();
}

void MadeUpTrend::show()
{
    panel.show();
    panel.show();
}

QVector<TraceChoice> MadeUpTrend::allOf(int traces)
{
    QVector<TraceChoice> choices;
    for (int address = 0; address < traces; ++address)
        choices.append({ { 1, QStringLiteral("D"), address }, -1 });
    choices.append({ { 1, QStringLiteral("SW"), 0 }, 1 });
    choices.append({ { 1, QStringLiteral("SW"), 0 }, 4 });
    return choices;
}
