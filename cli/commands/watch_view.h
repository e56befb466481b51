// SPDX-License-Identifier: MIT
// How watched registers are shown: a live table, plain lines, CSV or JSON.
#pragma once

#include "cli/terminal.h"
#include "cli/watch_list.h"
#include "host/counters.h"

#include <memory>

namespace dx4::cli {

/// One way to show them.
class WatchView {
public:
    enum class Form { Text, Csv, Json };

    WatchView() = default;
    virtual ~WatchView() = default;
    WatchView(const WatchView &) = delete;
    WatchView &operator=(const WatchView &) = delete;

    /// Called after each exchange.
    ///
    /// @param now, elapsed  the line's clock, and the time since the start
    virtual void values(WatchList &list, const host::CounterSet &counters, host::Duration now,
                        host::Duration elapsed) = 0;

    /// The line broke, or is back.
    virtual void line(const QString &text) = 0;
    virtual void end(WatchList &list, const host::CounterSet &counters, host::Duration now,
                     host::Duration elapsed) = 0;

    /// The table where the terminal can be drawn over and text was asked for, else a line for every
    /// value that became another, failed, grew stale or came back.
    static std::unique_ptr<WatchView> create(Form form, const Terminal &terminal);
};

} // namespace dx4::cli
