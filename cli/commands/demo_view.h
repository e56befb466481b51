// SPDX-License-Identifier: MIT
// How the demonstration is shown: a live table, plain lines, or JSON.
#pragma once

#include "cli/commands/watch_view.h"

#include <memory>

namespace dx4::cli {

/// What the demonstration runs on.
struct DemoSetting {
    QString driver; ///< the driver's file
    QString device; ///< the simulator's terminal
    int speed = 9600; ///< bit/s
    int registers = 0; ///< polled registers
    int blocks = 0; ///< reads that they were merged into
    int seconds = 0; ///< planned length
};

/// A write that was settled.
struct DemoWrite {
    int station = 1;
    QString regType;
    int address = 0;
    int count = 1;
    QString meaning; ///< "set frequency 30.00 Hz"
    QString outcome; ///< "confirmed", "timed out" ...
};

/// Shows it. Times are counted from the start of the demonstration.
class DemoView {
public:
    /// Says what it runs on.
    DemoView(const DemoSetting &setting, const Terminal &terminal, bool json);

    void write(const DemoWrite &write, host::Duration elapsed);

    /// Called after each exchange; draws when enough time has passed since the last drawing.
    void values(WatchList &list, const host::CounterSet &counters, host::Duration now,
                host::Duration elapsed);
    void end(WatchList &list, const host::CounterSet &counters, host::Duration now,
             host::Duration elapsed);

private:
    bool m_json;
    std::unique_ptr<WatchView> m_values;
};

} // namespace dx4::cli
