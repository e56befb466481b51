// SPDX-License-Identifier: MIT
// The frames of a serial line as a network capture, written and read back.
#include "capture/pcap.h"

#include <algorithm>

namespace dx4::capture {

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::uint32_t magic = 0xA1B2C3D4; // microseconds
constexpr std::uint32_t rawIpPackets = 101; // the link type of packets that begin with IP
constexpr std::uint32_t longestPacket = 65535;
constexpr std::size_t fileHeaderBytes = 24;
constexpr std::size_t recordHeaderBytes = 16;
constexpr std::size_t ipHeaderBytes = 20;
constexpr std::size_t udpHeaderBytes = 8;
constexpr std::size_t longestFrame = longestPacket - ipHeaderBytes - udpHeaderBytes;
constexpr unsigned masterPort = 50200;
constexpr unsigned modbusPort = 502;
constexpr std::uint8_t plainIpHeader = 0x45; // version 4, header of five words
constexpr std::uint8_t udpProtocol = 17;
constexpr std::uint32_t microsecondsPerSecond = 1'000'000;

void addLittle(Bytes &bytes, std::uint32_t value)
{
    for (unsigned shift = 0; shift < 32; shift += 8)
        bytes.push_back(static_cast<std::uint8_t>((value >> shift) & 0xFFU));
}

void addBig(Bytes &bytes, unsigned value)
{
    bytes.push_back(static_cast<std::uint8_t>((value >> 8) & 0xFFU));
    bytes.push_back(static_cast<std::uint8_t>(value & 0xFFU));
}

std::uint32_t littleAt(const Bytes &bytes, std::size_t offset)
{
    return bytes[offset] | static_cast<std::uint32_t>(bytes[offset + 1]) << 8
        | static_cast<std::uint32_t>(bytes[offset + 2]) << 16
        | static_cast<std::uint32_t>(bytes[offset + 3]) << 24;
}

unsigned bigAt(const Bytes &bytes, std::size_t offset)
{
    return bytes[offset] * 256U + bytes[offset + 1];
}

void put(std::ostream &out, const Bytes &bytes)
{
    out.write(reinterpret_cast<const char *>(bytes.data()),
              static_cast<std::streamsize>(bytes.size()));
}

/// Reads `count` bytes; fewer at the end of the file.
Bytes get(std::istream &in, std::size_t count)
{
    Bytes bytes(count);
    in.read(reinterpret_cast<char *>(bytes.data()), static_cast<std::streamsize>(count));
    bytes.resize(static_cast<std::size_t>(in.gcount()));
    return bytes;
}

unsigned ipChecksum(const Bytes &header)
{
    unsigned sum = 0;
    for (std::size_t i = 0; i < ipHeaderBytes; i += 2)
        sum += bigAt(header, i);
    // The fixed fields and the longest packet add up to 0x1D913: one carry is all that there is.
    return ~((sum & 0xFFFFU) + (sum >> 16)) & 0xFFFFU;
}

Bytes ipHeader(std::size_t payload, bool request)
{
    Bytes header = { plainIpHeader, 0 };
    addBig(header, static_cast<unsigned>(ipHeaderBytes + udpHeaderBytes + payload));
    addBig(header, 0); // identification
    addBig(header, 0x4000); // do not fragment
    header.insert(header.end(), { 64, udpProtocol, 0, 0 }); // time to live, checksum follows
    const std::uint8_t from = request ? 1 : 2;
    const std::uint8_t to = request ? 2 : 1;
    header.insert(header.end(), { 10, 0, 0, from, 10, 0, 0, to });
    const unsigned checksum = ipChecksum(header);
    header[10] = static_cast<std::uint8_t>(checksum >> 8);
    header[11] = static_cast<std::uint8_t>(checksum & 0xFFU);
    return header;
}

Bytes packetOf(const Frame &frame)
{
    const bool request = frame.sender == Sender::Master;
    const std::size_t length = std::min(frame.bytes.size(), longestFrame);
    Bytes packet = ipHeader(length, request);
    addBig(packet, request ? masterPort : modbusPort);
    addBig(packet, request ? modbusPort : masterPort);
    addBig(packet, static_cast<unsigned>(udpHeaderBytes + length));
    addBig(packet, 0); // no checksum
    packet.insert(packet.end(), frame.bytes.begin(),
                  frame.bytes.begin() + static_cast<std::ptrdiff_t>(length));
    return packet;
}

/// The frame inside a packet; nothing when it is no packet of a line.
std::optional<Frame> frameOf(const Bytes &packet)
{
    const std::size_t headers = ipHeaderBytes + udpHeaderBytes;
    if (packet.size() < headers || packet[0] != plainIpHeader || packet[9] != udpProtocol)
        return std::nullopt;
    const bool request = bigAt(packet, ipHeaderBytes + 2) == modbusPort;
    if (!request && bigAt(packet, ipHeaderBytes) != modbusPort)
        return std::nullopt;
    Frame frame;
    frame.sender = request ? Sender::Master : Sender::Station;
    frame.bytes.assign(packet.begin() + static_cast<std::ptrdiff_t>(headers), packet.end());
    return frame;
}

std::nullopt_t refuse(std::string *error, const char *why)
{
    if (error)
        *error = why;
    return std::nullopt;
}

} // namespace

PcapWriter::PcapWriter(std::ostream &out)
    : m_out(out)
{
    Bytes header;
    addLittle(header, magic);
    addLittle(header, 0x00040002); // version 2.4
    addLittle(header, 0); // times are UTC
    addLittle(header, 0); // accuracy
    addLittle(header, longestPacket);
    addLittle(header, rawIpPackets);
    put(m_out, header);
    m_out.flush();
}

void PcapWriter::add(const Frame &frame)
{
    const Bytes packet = packetOf(frame);
    Bytes record;
    addLittle(record, static_cast<std::uint32_t>(frame.time.count() / microsecondsPerSecond));
    addLittle(record, static_cast<std::uint32_t>(frame.time.count() % microsecondsPerSecond));
    addLittle(record, static_cast<std::uint32_t>(packet.size()));
    addLittle(record, static_cast<std::uint32_t>(packet.size()));
    put(m_out, record);
    put(m_out, packet);
    m_out.flush();
}

std::optional<std::vector<Frame>> readPcap(std::istream &in, std::string *error)
{
    const Bytes header = get(in, fileHeaderBytes);
    if (header.size() < fileHeaderBytes || littleAt(header, 0) != magic)
        return refuse(error, "no pcap file with times in microseconds");
    if (littleAt(header, 20) != rawIpPackets)
        return refuse(error, "packets that do not begin with IP; expected link type 101");

    std::vector<Frame> frames;
    for (Bytes record = get(in, recordHeaderBytes); !record.empty();
         record = get(in, recordHeaderBytes)) {
        const bool whole = record.size() == recordHeaderBytes;
        const std::uint32_t length = whole ? littleAt(record, 8) : 0;
        if (!whole || length > longestPacket)
            return refuse(error, "a packet's header is damaged");
        const Bytes packet = get(in, length);
        if (packet.size() < length)
            return refuse(error, "the file ends inside a packet");
        auto frame = frameOf(packet);
        if (!frame)
            continue;
        frame->time = std::chrono::seconds(littleAt(record, 0))
            + std::chrono::microseconds(littleAt(record, 4));
        frames.push_back(std::move(*frame));
    }
    return frames;
}

} // namespace dx4::capture
