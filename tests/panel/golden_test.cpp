// SPDX-License-Identifier: MIT
// Every widget of a page, held against what it was when somebody looked at it.
#include "golden.h"
#include "panel_fixture.h"
#include "parameters_fixture.h"
#include "widget_walk.h"

#include <gtest/gtest.h>

TEST(Golden, TheDrivesPageOfThreeDrives)
{
    MadeUpPanel panel;
    panel.made.readRunning(1);
    panel.made.readStanding(2);
    panel.show();

    expectGolden("drives", widgetTree(panel.window));
}

TEST(Golden, TheDrivesPageWhenValuesAreOld)
{
    MadeUpPanel panel;
    panel.made.readRunning(1);
    panel.show();

    panel.made.advance(std::chrono::seconds(12));
    panel.window.refresh();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);

    expectGolden("drives_old", widgetTree(panel.window));
}

TEST(Golden, TheDrivesPageWithAFault)
{
    MadeUpPanel panel;
    panel.made.readStanding(1);
    panel.made.read(1, "FU", 0, 2);
    panel.show();

    expectGolden("drives_fault", widgetTree(panel.window));
}

TEST(Golden, TheQuestionBeforeItCloses)
{
    MadeUpPanel panel;
    panel.made.readRunning(1);
    panel.show();

    panel.window.close();

    expectGolden("closing", widgetTree(panel.window));
}

TEST(Golden, TheParametersPageOfOneDrive)
{
    ParametersPanel made;

    expectGolden("parameters", widgetTree(made.panel.window));
}

TEST(Golden, TheParametersPageWithTwoSides)
{
    ParametersPanel made;
    made.compare();
    made.page->book().tick({ at(8, 2) }, true);
    made.show();

    expectGolden("parameters_compared", widgetTree(made.panel.window));
}

TEST(Golden, TheQuestionBeforeParametersAreWritten)
{
    ParametersPanel made;
    made.compare(2);
    made.page->book().tick({ at(8, 2) }, true);
    made.show();

    made.click("Apply 1...");

    expectGolden("parameters_apply", widgetTree(made.panel.window));
}

TEST(Golden, TheReportOfWrittenParameters)
{
    ParametersPanel made;
    made.compare();
    made.page->book().tick({ at(8, 2) }, true);
    made.show();
    made.click("Apply 1...");
    made.hold("Hold to write 1 register");
    dx4::host::RestoreReport report;
    report.compared = 1;
    report.written = 1;
    report.verified = 1;

    made.page->restore().noteRestored(501, report);
    made.show();

    expectGolden("parameters_report", widgetTree(made.panel.window));
}
