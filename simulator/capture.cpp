// SPDX-License-Identifier: MIT
// The frames of a line as a network capture that protocol analysers read.
#include "simulator/capture.h"

namespace dx4::sim {

namespace {

constexpr std::uint32_t rawIpPackets = 101; // the link type of packets that begin with IP
constexpr std::size_t ipHeaderBytes = 20;
constexpr std::size_t udpHeaderBytes = 8;
constexpr unsigned masterPort = 50200;
constexpr unsigned modbusPort = 502;
constexpr std::uint8_t udpProtocol = 17;

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

void put(std::ostream &out, const Bytes &bytes)
{
    for (std::uint8_t byte : bytes)
        out.put(static_cast<char>(byte));
}

unsigned ipChecksum(const Bytes &header)
{
    unsigned sum = 0;
    for (std::size_t i = 0; i < ipHeaderBytes; i += 2)
        sum += wordAt(header, i);
    while (sum > 0xFFFFU)
        sum = (sum & 0xFFFFU) + (sum >> 16);
    return ~sum & 0xFFFFU;
}

Bytes ipHeader(std::size_t payload, bool request)
{
    Bytes header = { 0x45, 0 };
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

Bytes packetOf(const Bytes &frame, bool request)
{
    Bytes packet = ipHeader(frame.size(), request);
    addBig(packet, request ? masterPort : modbusPort);
    addBig(packet, request ? modbusPort : masterPort);
    addBig(packet, static_cast<unsigned>(udpHeaderBytes + frame.size()));
    addBig(packet, 0); // no checksum
    packet.insert(packet.end(), frame.begin(), frame.end());
    return packet;
}

} // namespace

Capture::Capture(std::ostream &out)
    : m_out(out)
{
    Bytes header;
    addLittle(header, 0xA1B2C3D4); // microseconds, little endian
    addLittle(header, 0x00040002); // version 2.4
    addLittle(header, 0); // times are UTC
    addLittle(header, 0); // accuracy
    addLittle(header, 65535); // longest packet
    addLittle(header, rawIpPackets);
    put(m_out, header);
    m_out.flush();
}

void Capture::operator()(const LineEvent &event)
{
    const bool request = event.kind == LineEvent::Kind::Request;
    if (!request && event.kind != LineEvent::Kind::Reply)
        return;
    const Bytes packet = packetOf(event.bytes, request);
    Bytes record;
    addLittle(record, static_cast<std::uint32_t>(event.time.count() / 1000000));
    addLittle(record, static_cast<std::uint32_t>(event.time.count() % 1000000));
    addLittle(record, static_cast<std::uint32_t>(packet.size()));
    addLittle(record, static_cast<std::uint32_t>(packet.size()));
    record.insert(record.end(), packet.begin(), packet.end());
    put(m_out, record);
    m_out.flush();
}

} // namespace dx4::sim
