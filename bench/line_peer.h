// SPDX-License-Identifier: MIT
// Shares of a line's time, and libmodbus as the peer that is measured beside the host.
#pragma once

#include "host/plan/plan.h"

namespace bench {

/// One row of the table.
struct Load {
    int speed = 0; ///< bit/s
    int stations = 0;
    int registers = 0; ///< of each station
};

struct Share {
    double wire = 0; ///< of the elapsed time in which wanted requests and replies were on the wire
    double processorTime = 0; ///< of this thread, microseconds a read
};

/// Adds up reads over a span that begins with the second read: the first one opens the line and
/// learns what it is like.
class Meter {
public:
    Meter(const dx4::host::LineSettings &settings, dx4::host::Duration span);

    bool goesOn() const;

    /// A read of so many registers has ended well.
    void count(int registers);

    Share share() const;

private:
    dx4::host::LineSettings m_settings;
    dx4::host::Duration m_span;
    dx4::host::Duration m_wire { 0 };
    double m_start = 0; // seconds of the monotonic clock
    double m_end = 0;
    double m_processorStart = 0;
    double m_processorEnd = 0;
    int m_reads = -1;
};

/// Reads the blocks in turn by libmodbus, after the silence that two frames need between them.
Share shareOfPeer(const dx4::host::LineSettings &settings, const dx4::host::Plan &plan,
                  dx4::host::Duration span);

} // namespace bench
