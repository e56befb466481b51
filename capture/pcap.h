// SPDX-License-Identifier: MIT
// The frames of a serial line as a network capture, written and read back.
#pragma once

#include <chrono>
#include <cstdint>
#include <istream>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace dx4::capture {

/// Who sent a frame.
enum class Sender { Master, Station };

/// One frame of the line.
struct Frame {
    std::chrono::microseconds time { 0 }; ///< since 1970 UTC, or since the start of a clock
    Sender sender = Sender::Master;
    std::vector<std::uint8_t> bytes; ///< CRC included
};

/// Writes frames as UDP packets between 10.0.0.1 (the master) and port 502 of 10.0.0.2 (the line),
/// in the pcap format. Analysers have no capture format for a serial line of their own, but decode
/// Modbus RTU inside UDP: tshark -r FILE -o mbrtu.udp.port:502 -V
class PcapWriter {
public:
    /// Writes the file header; `out` must be binary and outlive the writer.
    explicit PcapWriter(std::ostream &out);

    /// Writes one frame of at most 65507 bytes and flushes; longer ones are cut. The stream's own
    /// state tells whether it got through.
    void add(const Frame &frame);

private:
    std::ostream &m_out;
};

/// Reads frames back, in the order of the file. Only what PcapWriter writes is understood: this
/// byte order, packets that begin with IPv4, UDP from or to port 502; other packets are skipped.
///
/// @param error  out: what is wrong with the file; may be null
/// @return the frames, or nothing when the file is no capture or ends inside a packet
std::optional<std::vector<Frame>> readPcap(std::istream &in, std::string *error);

} // namespace dx4::capture
