// SPDX-License-Identifier: MIT
// When something happened, as seconds since the start or as a time of day.
#pragma once

#include "cli/console/facts.h"
#include "host/line/line_settings.h"

namespace dx4::cli {

double inSeconds(host::Duration span);

/// To a tenth of a second, for a column: " 12.3 s".
QString secondsText(host::Duration span);

/// Date and time of the system's clock some time ago, in ISO 8601 with milliseconds and the offset
/// of the time zone: "2026-03-01T14:05:09.250+01:00".
QString clockText(host::Duration ago);

/// Writes times for one command. The system's clock may be set while the command runs: a time of
/// day is counted back from it each time, so it is right by the clock that shows when it is read.
class TimeStamp {
public:
    /// @param clock  times of day
    explicit TimeStamp(bool clock)
        : m_clock(clock)
    {
    }

    /// The time since the start, as of now.
    void setNow(host::Duration elapsed) { m_now = elapsed; }

    /// For a column of numbers: "12.345", or the time of day.
    QString text(host::Duration elapsed) const;

    /// For a line that is read: "  12.345 s", or the time of day.
    QString column(host::Duration elapsed) const;

    /// "time", in seconds, and with a clock "clock", the time of day.
    Facts facts(host::Duration elapsed) const;

private:
    bool m_clock;
    host::Duration m_now { 0 };
};

} // namespace dx4::cli
