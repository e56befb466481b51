// SPDX-License-Identifier: MIT
// Stations that answer late, in order or not at all, behind an adapter and among noise.
#include "late_plant.h"

#include <algorithm>
#include <utility>

using dx4::host::Duration;

namespace {

constexpr Duration changePeriod = std::chrono::milliseconds(200); // of the registers' values
constexpr int versions = 256;

int byteAt(const QByteArray &bytes, int position)
{
    return static_cast<unsigned char>(bytes.at(position));
}

int wordAt(const QByteArray &bytes, int position)
{
    return byteAt(bytes, position) * 256 + byteAt(bytes, position + 1);
}

void appendWord(QByteArray &bytes, int word)
{
    bytes.append(static_cast<char>(word / 256)).append(static_cast<char>(word % 256));
}

// The plant's own arithmetic: it judges the host's.
QByteArray closed(QByteArray payload)
{
    unsigned crc = 0xFFFF;
    for (const char byte : std::as_const(payload)) {
        crc ^= static_cast<unsigned char>(byte);
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc & 1U) != 0 ? (crc >> 1) ^ 0xA001U : crc >> 1;
    }
    payload.append(static_cast<char>(crc & 0xFFU)).append(static_cast<char>(crc >> 8));
    return payload;
}

} // namespace

LatePlant::LatePlant(const dx4::host::LineSettings &settings, const LineHabit &line, Chance &chance)
    : m_settings(settings)
    , m_habit(line)
    , m_chance(chance)
{
}

void LatePlant::addStation(int number, const LateHabit &habit)
{
    Station station;
    station.index = static_cast<int>(m_stations.size());
    station.habit = habit;
    m_stations[number] = station;
}

void LatePlant::setOff(int number, bool isOff)
{
    Station &station = m_stations.at(number);
    if (isOff && !station.habit.isOff)
        station.offAt = m_now;
    station.habit.isOff = isOff;
    station.busyUntil = m_now;
    for (auto due = m_due.begin(); due != m_due.end();)
        due = isOff && due->second.station == number ? m_due.erase(due) : std::next(due);
    auto &done = station.carriedOut;
    done.erase(std::remove_if(done.begin(), done.end(),
                              [&](const CarriedOut &write) { return isOff && write.at > m_now; }),
               done.end());
}

Duration LatePlant::slowestOf(int station) const
{
    const auto found = m_stations.find(station);
    return found == m_stations.end()
        ? m_settings.responseTimeout
        : std::max(found->second.habit.slowest, m_settings.responseTimeout);
}

int LatePlant::ordinalOf(int station, int registerAddress) const
{
    const int kind = registerAddress >= 0xF000 ? 0x30
        : registerAddress >= 0xD000            ? 0
        : registerAddress >= 0x2000            ? 0x20
                                               : 0x28;
    return m_stations.at(station).index * registerSpan
        + (kind + registerAddress % 16) % registerSpan;
}

std::vector<CarriedOut> LatePlant::carriedOut(int station) const
{
    const auto found = m_stations.find(station);
    return found == m_stations.end() ? std::vector<CarriedOut>() : found->second.carriedOut;
}

int LatePlant::versionAt(Duration moment) const
{
    return static_cast<int>(moment / changePeriod) % versions;
}

bool LatePlant::open(QString *)
{
    m_open = true;
    return true;
}

Duration LatePlant::latencyOf(Station &station)
{
    const LateHabit &habit = station.habit;
    const Duration span = habit.slowest - habit.quickest;
    const auto share = [&](unsigned thousandths) {
        return habit.quickest + span * thousandths / 1000;
    };
    switch (habit.pattern) {
    case LateHabit::Pattern::Constant:
        return habit.slowest;
    case LateHabit::Pattern::Drifting: {
        const auto phase = static_cast<unsigned>(m_now / std::chrono::milliseconds(20) % 2000);
        return share(phase < 1000 ? phase : 2000 - phase);
    }
    case LateHabit::Pattern::Random:
        return share(m_chance.pick(1001));
    }
    return habit.slowest;
}

bool LatePlant::send(const QByteArray &bytes)
{
    if (!m_open)
        return false;
    m_now += m_settings.wireTime(static_cast<int>(bytes.size()));
    if (m_habit.echoes) {
        const unsigned most =
            static_cast<unsigned>(m_settings.responseTimeout.count()) * 12 / 10 + 1;
        if (m_chance.happens(m_habit.lateEcho))
            m_held = std::max(m_held, m_now + Duration(m_chance.pick(most)));
        // An echo comes as the request goes out: its bytes are there with the last one sent.
        if (!m_chance.happens(m_habit.lost))
            put(m_now - m_settings.wireTime(static_cast<int>(bytes.size())), damaged(bytes), 0);
    }
    addNoise(bytes);
    const bool isHeard = damaged(bytes) == bytes && !m_chance.happens(m_habit.lost);
    const auto addressed = m_stations.find(byteAt(bytes, 0));
    if (isHeard && addressed != m_stations.end())
        deliver(addressed->first, bytes, m_now);
    return true;
}

void LatePlant::deliver(int number, const QByteArray &request, Duration end)
{
    Station &station = m_stations.at(number);
    if (station.habit.isOff || m_chance.happens(station.habit.lossPerMille))
        return;
    if (!station.habit.buffers && station.busyUntil > end)
        return;
    const Duration at = std::max(end, station.busyUntil) + latencyOf(station);
    station.busyUntil = at;
    const QByteArray reply = replyOf(number, station, request, at);
    if (!m_chance.happens(m_habit.lost))
        put(at, damaged(reply), number);
}

QByteArray LatePlant::replyOf(int number, Station &station, const QByteArray &request, Duration at)
{
    const int function = byteAt(request, 1);
    const int first = wordAt(request, 2);
    const int count = function == 6 ? 1 : wordAt(request, 4);
    QByteArray reply = request.left(2);
    for (int i = 0; i < count; ++i) {
        if (!isRefused(first + i))
            continue;
        reply[1] = static_cast<char>(function | 0x80);
        return closed(reply.append('\x02'));
    }
    if (function != 3) {
        station.carriedOut.push_back({ request, at });
        return closed(request.left(6));
    }
    reply.append(static_cast<char>(2 * count));
    for (int i = 0; i < count; ++i)
        appendWord(reply, ordinalOf(number, first + i) + ordinals * versionAt(at));
    return closed(reply);
}

/// What is on a line besides: never a frame of a station of the plant.
void LatePlant::addNoise(const QByteArray &request)
{
    if (!m_chance.happens(m_habit.foreign))
        return;
    const auto span = static_cast<unsigned>(m_settings.responseTimeout.count()) * 3 + 1;
    const Duration at = m_now + Duration(m_chance.pick(span));
    QByteArray bytes = request.left(2);
    switch (m_chance.pick(5)) {
    case 0: // of equal length, from a station of another master's
        bytes[0] = static_cast<char>(200);
        bytes.append(static_cast<char>(2 * wordAt(request, 4)));
        for (int i = 0; i < std::min(wordAt(request, 4), 64); ++i)
            appendWord(bytes, static_cast<int>(m_chance.pick(65536)));
        return put(at, closed(bytes), 0);
    case 1: // another master's broadcast
        bytes[0] = 0;
        bytes[1] = 6;
        appendWord(bytes, 0x1001);
        appendWord(bytes, static_cast<int>(m_chance.pick(8)));
        return put(at, closed(bytes), 0);
    case 2: // noise that begins like a reply
        for (unsigned i = m_chance.pick(24) + 3; i > 0; --i)
            bytes.append(static_cast<char>(m_chance.pick(256)));
        return put(at, bytes, 0);
    case 3: // a single byte
        return put(at, bytes.left(1), 0);
    default:
        for (unsigned i = m_chance.pick(40) + 1; i > 0; --i)
            bytes.append(static_cast<char>(m_chance.pick(256)));
        return put(at, bytes.mid(2), 0);
    }
}

/// Up to three bits turned, which every CRC-16 finds in frames of this length.
QByteArray LatePlant::damaged(QByteArray frame)
{
    if (!m_chance.happens(m_habit.damaged))
        return frame;
    for (unsigned i = m_chance.pick(3) + 1; i > 0; --i) {
        const unsigned bit = m_chance.pick(static_cast<unsigned>(frame.size()) * 8);
        const int position = static_cast<int>(bit / 8);
        frame[position] = static_cast<char>(byteAt(frame, position) ^ (1 << (bit % 8)));
    }
    return frame;
}

void LatePlant::put(Duration at, const QByteArray &bytes, int station)
{
    m_due.emplace(std::max(at, m_held), Due { bytes, station });
}

/// One talks after the other: what begins while another frame is on its way comes behind it.
void LatePlant::materialise()
{
    const Duration start = std::max(m_due.begin()->first, m_lastArrival);
    const QByteArray bytes = m_due.begin()->second.bytes;
    m_due.erase(m_due.begin());
    for (int i = 0; i < bytes.size(); ++i)
        m_arrivals.push_back({ start + m_settings.wireTime(i + 1), bytes.at(i) });
    m_lastArrival = start + m_settings.wireTime(static_cast<int>(bytes.size()));
}

QByteArray LatePlant::receive(int count, Duration deadline)
{
    QByteArray received;
    while (m_open && received.size() < count) {
        if (m_arrivals.empty() && !m_due.empty() && m_due.begin()->first <= deadline)
            materialise();
        if (m_arrivals.empty() || m_arrivals.front().at > deadline)
            break;
        m_now = std::max(m_now, m_arrivals.front().at);
        received.append(m_arrivals.front().byte);
        m_arrivals.pop_front();
    }
    if (m_open && received.size() < count)
        m_now = std::max(m_now, deadline);
    return received;
}

int LatePlant::discardInput()
{
    return static_cast<int>(receive(100000, m_now).size());
}

bool LatePlant::awaitSilence(Duration gap, Duration deadline)
{
    while (m_now < deadline) {
        if (receive(100000, std::min(m_now + gap, deadline)).isEmpty())
            return true;
    }
    return false;
}
