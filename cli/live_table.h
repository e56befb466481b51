// SPDX-License-Identifier: MIT
// Lines drawn over themselves on a terminal.
#pragma once

#include <QStringList>

namespace dx4::cli {

/// Keeps a block of lines at the end of the terminal's output up to date. Lines that are too wide
/// are cut by the terminal, and a block that is too high loses the end of its body.
class LiveTable {
public:
    LiveTable();
    ~LiveTable(); ///< gives cursor and line wrap back
    LiveTable(const LiveTable &) = delete;
    LiveTable &operator=(const LiveTable &) = delete;

    /// @param foot  lines below the body that are always shown
    void draw(const QStringList &body, const QStringList &foot);

private:
    int m_height = 0; ///< lines of the last drawing
};

} // namespace dx4::cli
