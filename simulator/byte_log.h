// SPDX-License-Identifier: MIT
// The frames of a line as text, without times: two runs of the same scenario compare equal.
#pragma once

#include "simulator/cable.h"

#include <ostream>
#include <string>

namespace dx4::sim {

/// One event as one line, without its end:
/// "3 > 01 03 ..." the master's request, third of the line; "3 ~ 01 03 ..." as the stations heard
/// it where that differs; "3 ! break-crc reply" a fault that struck; "3 < 01 03 ..." what the
/// master hears; "3 -" nothing; "3 = unplugged" the plug.
std::string logLine(const LineEvent &event);

/// Writes every event it is given to a stream, which must outlive it, and flushes each line.
class ByteLog {
public:
    explicit ByteLog(std::ostream &out)
        : m_out(out)
    {
    }

    /// To be given to Cable::observe().
    void operator()(const LineEvent &event) { m_out << logLine(event) << '\n' << std::flush; }

private:
    std::ostream &m_out;
};

} // namespace dx4::sim
