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

/// A write to station 1, made once `share` hundredths of the length have passed.
struct DemoWrite {
    int share = 0;
    QString regType;
    int address = 0;
    QVector<quint16> values;
    QString meaning; ///< "set frequency 30.00 Hz"
};

/// Shows it. Times are counted from the start of the demonstration.
class DemoView {
public:
    /// Says what it runs on.
    DemoView(const DemoSetting &setting, const Terminal &terminal, bool json);

    /// A write was settled. @param outcome  "confirmed", "timed out" ...
    void write(const DemoWrite &write, const QString &outcome, host::Duration elapsed);

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
