// SPDX-License-Identifier: MIT
// The frames of a line as a network capture that protocol analysers read.
#include "simulator/capture.h"

namespace dx4::sim {

void Capture::operator()(const LineEvent &event)
{
    const bool request = event.kind == LineEvent::Kind::Request;
    if (!request && event.kind != LineEvent::Kind::Reply)
        return;
    m_writer.add(
        { event.time, request ? capture::Sender::Master : capture::Sender::Station, event.bytes });
}

} // namespace dx4::sim
