// SPDX-License-Identifier: MIT
// Every widget of the page of the line, held against what it was when somebody looked at it.
#include "golden.h"
#include "made_up_view.h"
#include "widget_walk.h"

#include <gtest/gtest.h>

using dx4::panel::LinePage;
using dx4::panel::RecordSheet;

TEST(Golden, TheLinePage)
{
    const std::pair<const char *, LinePage::View> views[] = {
        { "line_counters", LinePage::Counters },
        { "line_answers", LinePage::Answers },
        { "line_frames", LinePage::Frames },
    };
    for (const auto &[name, view] : views) {
        MadeUpLinePage made;
        playBadCable(made);
        made.page->open(view);
        made.show();

        expectGolden(name, widgetTree(made.panel.window));
    }
}

TEST(Golden, TheSheetOfARecording)
{
    MadeUpLinePage made;
    made.page->findChild<RecordSheet *>()->askToReplace(QStringLiteral("/home/me/line.pcap"));
    made.show();

    expectGolden("line_record", widgetTree(made.panel.window));
}
