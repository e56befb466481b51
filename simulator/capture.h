// SPDX-License-Identifier: MIT
// The frames of a line as a network capture that protocol analysers read.
#pragma once

#include "simulator/cable.h"

#include <ostream>

namespace dx4::sim {

/// Writes requests and replies as UDP packets between 10.0.0.1 (the master) and port 502
/// of 10.0.0.2 (the line), in the pcap format. Analysers have no capture format for a serial line
/// of their own, but decode Modbus RTU inside UDP: tshark -r FILE -o mbrtu.udp.port:502 -V
class Capture {
public:
    /// Writes the file header; `out` must be binary and outlive it.
    explicit Capture(std::ostream &out);

    /// To be given to Cable::observe(); other events than requests and replies leave no trace.
    void operator()(const LineEvent &event);

private:
    std::ostream &m_out;
};

} // namespace dx4::sim
