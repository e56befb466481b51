// SPDX-License-Identifier: MIT
// Every widget of the alarms page, held against what it was when somebody looked at it.
#include "alarm_fixture.h"
#include "golden.h"
#include "widget_walk.h"

#include <gtest/gtest.h>

namespace {

QString treeOf(AlarmPanel &under)
{
    under.show();
    return widgetTree(under.panel.window);
}

} // namespace

TEST(AlarmGolden, TheAlarmsPageWithAlarmsInEveryState)
{
    AlarmPanel under;
    under.raiseSome();
    under.openAlarms();

    expectGolden("alarms", treeOf(under));
}

TEST(AlarmGolden, TheAlarmsPageWhenAllIsWell)
{
    AlarmPanel under;
    under.openAlarms();

    expectGolden("alarms_none", treeOf(under));
}

TEST(AlarmGolden, TheHistory)
{
    AlarmPanel under;
    under.openAlarms();
    under.page->showHistory(true);
    under.giveHistory(100);

    expectGolden("history", treeOf(under));
}

TEST(AlarmGolden, TheDrivesPageBelowTheBanner)
{
    AlarmPanel under;
    under.raiseSome();

    expectGolden("drives_banner", treeOf(under));
}
