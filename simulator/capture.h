// SPDX-License-Identifier: MIT
// The frames of a line as a network capture that protocol analysers read.
#pragma once

#include "capture/pcap.h"
#include "simulator/cable.h"

#include <ostream>

namespace dx4::sim {

/// Writes requests and replies as capture::PcapWriter does.
class Capture {
public:
    /// Writes the file header; `out` must be binary and outlive it.
    explicit Capture(std::ostream &out)
        : m_writer(out)
    {
    }

    /// To be given to Cable::observe(); other events than requests and replies leave no trace.
    void operator()(const LineEvent &event);

private:
    capture::PcapWriter m_writer;
};

} // namespace dx4::sim
