// SPDX-License-Identifier: MIT
// A page of ports and configuration on a machine that a test makes up.
#pragma once

#include "panel_fixture.h"

#include "panel/connect/connect_page.h"

/// The page in its window, over three drives that run with /etc/plant.toml on /dev/ttyUSB0.
struct MadeUpConnect {
    explicit MadeUpConnect(QSize size = { 800, 480 });

    void show();

    MadeUpPanel panel;
    dx4::panel::CheckedConfig next; ///< what the next file is found to be
    std::vector<dx4::host::Config> reloaded;
    int looks = 0; ///< at the ports
    dx4::panel::ConnectView view;
    dx4::panel::ConnectPage *page;
};
