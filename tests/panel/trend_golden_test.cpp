// SPDX-License-Identifier: MIT
// Every widget of the trend, held against what it was when somebody looked at it.
#include "golden.h"
#include "trend_fixture.h"
#include "widget_walk.h"

#include <gtest/gtest.h>

using std::chrono::milliseconds;
using std::chrono::seconds;

namespace {

void press(MadeUpTrend &trend, const char *text)
{
    for (auto *button : trend.page->findChildren<dx4::panel::FlatButton *>()) {
        if (button->isVisible() && button->text() == QLatin1String(text))
            button->click();
    }
    trend.show();
}

} // namespace

TEST(Golden, TheTrendOfTheFirstDrive)
{
    MadeUpTrend trend;
    trend.play(seconds(20), milliseconds(100));
    trend.show();

    expectGolden("trend", widgetTree(trend.panel.window));
}

TEST(Golden, TheTrendOfEightTracesWithCursors)
{
    MadeUpTrend trend;
    trend.play(seconds(60), milliseconds(100));
    trend.page->choose(MadeUpTrend::allOf());
    trend.show();
    press(trend, "Cursors");

    expectGolden("trend_cursors", widgetTree(trend.panel.window));
}

TEST(Golden, TheTracesToChooseFrom)
{
    MadeUpTrend trend;
    trend.play(seconds(20), milliseconds(100));
    trend.show();
    press(trend, "Traces...");

    expectGolden("trend_traces", widgetTree(trend.panel.window));
}
