// SPDX-License-Identifier: MIT
// A window with a trend of a line that a test makes up.
#pragma once

#include "panel_fixture.h"

#include "panel/trendview/trend_page.h"

struct MadeUpTrend {
    explicit MadeUpTrend(QSize size = { 800, 480 }, int drives = 1);

    /// Lets time pass in steps, with values that a drive has that rises, turns and is loaded by
    /// turns.
    void play(dx4::host::Duration span, dx4::host::Duration step);

    /// Lets time pass in silence.
    void silence(dx4::host::Duration span);

    /// Publishes what was read and draws it.
    void show();

    /// Eight registers of the first drive and the bits "running" and "at set frequency".
    static QVector<dx4::panel::TraceChoice> allOf(int traces = 8);

    MadeUpPanel panel;
    dx4::panel::TrendStore store;
    dx4::panel::TrendPage *page; // of the window
    double pace = 1.0; // of what the drive does

private:
    void read(double seconds);

    double m_played = 0.0; // s
};
