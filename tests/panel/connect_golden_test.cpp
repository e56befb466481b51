// SPDX-License-Identifier: MIT
// Every widget of the page of the connection, held against what it was when somebody looked at it.
#include "golden.h"
#include "made_up_connect.h"
#include "widget_walk.h"

#include <gtest/gtest.h>

using dx4::panel::ConnectPage;

TEST(Golden, TheConnectPage)
{
    const std::pair<const char *, ConnectPage::View> views[] = {
        { "connect_ports", ConnectPage::Ports },
        { "connect_plan", ConnectPage::Plan },
        { "connect_configuration", ConnectPage::Configuration },
    };
    for (const auto &[name, view] : views) {
        MadeUpConnect made;
        made.page->open(view);
        made.show();

        expectGolden(name, widgetTree(made.panel.window));
    }
}
