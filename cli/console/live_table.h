// SPDX-License-Identifier: MIT
// Lines drawn over themselves on a terminal.
#pragma once

#include "cli/console/scroll_keys.h"
#include "cli/console/terminal.h"

#include <QStringList>

namespace dx4::cli {

/// Keeps a block of lines at the end of the terminal's output up to date. Lines that are too wide
/// are cut by the terminal.
class LiveTable {
public:
    LiveTable();
    ~LiveTable(); ///< gives cursor, line wrap and keyboard back
    LiveTable(const LiveTable &) = delete;
    LiveTable &operator=(const LiveTable &) = delete;

    /// Lines of a body that fit the window together with so many lines below it.
    static int room(const Terminal &terminal, int footLines);

    /// Draws nothing while the terminal has not taken the drawing before: the next one shows more.
    ///
    /// @param foot  lines below the body that are always shown
    void draw(const QStringList &body, const QStringList &foot);

    ScrollKeys &keys() { return m_keys; }

private:
    void leave();
    void comeBack();

    ScrollKeys m_keys;
    int m_height = 0; ///< lines of the last drawing
};

} // namespace dx4::cli
