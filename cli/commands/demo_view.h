// SPDX-License-Identifier: MIT
// How the demonstration is shown: a live table, plain lines, or JSON.
#pragma once

#include "cli/console/terminal.h"
#include "cli/registers/watch_list.h"

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

/// One way to show it. Times are counted from the start of the demonstration.
class DemoView {
public:
    DemoView() = default;
    virtual ~DemoView() = default;
    DemoView(const DemoView &) = delete;
    DemoView &operator=(const DemoView &) = delete;

    virtual void begin(const DemoSetting &setting) = 0;
    virtual void write(const DemoWrite &write, host::Duration elapsed) = 0;

    /// Called after each exchange; draws when enough time has passed since the last drawing.
    virtual void values(WatchList &list, const host::CounterSet &counters, host::Duration now,
                        host::Duration elapsed) = 0;
    virtual void end(WatchList &list, const host::CounterSet &counters, host::Duration now,
                     host::Duration elapsed) = 0;

    /// The view that suits the output.
    static std::unique_ptr<DemoView> create(const Terminal &terminal, bool json);
};

} // namespace dx4::cli
