// SPDX-License-Identifier: MIT
// Stations that answer late, in order or not at all, behind an adapter and among noise.
#include "late_stations.h"

#include <algorithm>
#include <utility>

using dx4::host::Duration;

namespace {

constexpr Duration changePeriod = std::chrono::milliseconds(200); // of the registers' values
constexpr int versions = 256;

// In a row. An adapter that loses three right after it was opened cannot be told from one that does
// not echo.
constexpr int mostEchoesLost = 2;

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

LateStations::LateStations(const dx4::host::LineSettings &settings, const LineHabit &line,
                           Chance &chance)
    : m_settings(settings)
    , m_habit(line)
    , m_chance(chance)
{
}

void LateStations::add(int number, const LateHabit &habit)
{
    Station station;
    station.index = static_cast<int>(m_stations.size());
    station.habit = habit;
    m_stations[number] = station;
}

void LateStations::setOff(int number, bool isOff, Duration now)
{
    Station &station = m_stations.at(number);
    station.habit.isOff = isOff;
    station.busyUntil = now;
    for (auto due = m_due.begin(); due != m_due.end();)
        due = isOff && due->second.station == number ? m_due.erase(due) : std::next(due);
    auto &done = station.carriedOut;
    done.erase(std::remove_if(done.begin(), done.end(),
                              [&](const CarriedOut &write) { return isOff && write.at > now; }),
               done.end());
}

Duration LateStations::slowestOf(int station) const
{
    const auto found = m_stations.find(station);
    return found == m_stations.end()
        ? m_settings.responseTimeout
        : std::max(found->second.habit.slowest, m_settings.responseTimeout);
}

int LateStations::ordinalOf(int station, int registerAddress) const
{
    const int kind = registerAddress >= 0xF000 ? 0x30
        : registerAddress >= 0xD000            ? 0
        : registerAddress >= 0x2000            ? 0x20
                                               : 0x28;
    return m_stations.at(station).index * registerSpan
        + (kind + registerAddress % 16) % registerSpan;
}

std::vector<CarriedOut> LateStations::carriedOut(int station) const
{
    const auto found = m_stations.find(station);
    return found == m_stations.end() ? std::vector<CarriedOut>() : found->second.carriedOut;
}

int LateStations::versionAt(Duration moment)
{
    return static_cast<int>(moment / changePeriod) % versions;
}

Duration LateStations::latencyOf(const Station &station, Duration now)
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
        const auto phase = static_cast<unsigned>(now / std::chrono::milliseconds(20) % 2000);
        return share(phase < 1000 ? phase : 2000 - phase);
    }
    case LateHabit::Pattern::Random:
        return share(m_chance.pick(1001));
    }
    return habit.slowest;
}

void LateStations::hear(const QByteArray &request, Duration end)
{
    if (m_habit.echoes)
        echo(request, end);
    addNoise(request, end);
    const bool isHeard = damaged(request) == request && !m_chance.happens(m_habit.lost);
    const auto addressed = m_stations.find(byteAt(request, 0));
    if (isHeard && addressed != m_stations.end())
        deliver(addressed->first, request, end);
}

void LateStations::echo(const QByteArray &request, Duration end)
{
    const unsigned most = static_cast<unsigned>(m_settings.responseTimeout.count()) * 12 / 10 + 1;
    if (m_chance.happens(m_habit.lateEcho))
        m_held = std::max(m_held, end + Duration(m_chance.pick(most)));
    const bool isLost = m_chance.happens(m_habit.lost) && m_echoesLost < mostEchoesLost;
    m_echoesLost = isLost ? m_echoesLost + 1 : 0;
    // An echo comes as the request goes out: its bytes are there with the last one sent.
    if (!isLost)
        putFrame(end - m_settings.wireTime(static_cast<int>(request.size())), request, 0);
}

void LateStations::deliver(int number, const QByteArray &request, Duration end)
{
    Station &station = m_stations.at(number);
    if (station.habit.isOff || m_chance.happens(station.habit.lossPerMille))
        return;
    if (!station.habit.buffers && station.busyUntil > end)
        return;
    const Duration at = std::max(end, station.busyUntil) + latencyOf(station, end);
    station.busyUntil = at;
    const QByteArray reply = replyOf(number, station, request, at);
    if (!m_chance.happens(m_habit.lost))
        putFrame(at, reply, number);
}

QByteArray LateStations::replyOf(int number, Station &station, const QByteArray &request,
                                 Duration at)
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
void LateStations::addNoise(const QByteArray &request, Duration end)
{
    if (!m_chance.happens(m_habit.foreign))
        return;
    const auto span = static_cast<unsigned>(m_settings.responseTimeout.count()) * 3 + 1;
    const Duration at = end + Duration(m_chance.pick(span));
    QByteArray bytes = request.left(2);
    switch (m_chance.pick(5)) {
    case 0: // of equal length, from a station of another master's
        bytes[0] = static_cast<char>(200);
        bytes.append(static_cast<char>(2 * wordAt(request, 4)));
        for (int i = 0; i < std::min(wordAt(request, 4), 64); ++i)
            appendWord(bytes, static_cast<int>(m_chance.pick(65536)));
        return put(at, { closed(bytes), 0, true });
    case 1: // another master's broadcast
        bytes[0] = 0;
        bytes[1] = 6;
        appendWord(bytes, 0x1001);
        appendWord(bytes, static_cast<int>(m_chance.pick(8)));
        return put(at, { closed(bytes), 0, true });
    case 2: // noise that begins like a reply
        return put(at, { bytes + junk(m_chance.pick(24) + 3), 0, false });
    case 3: // a single byte
        return put(at, { bytes.left(1), 0, false });
    default:
        return put(at, { junk(m_chance.pick(40) + 1), 0, false });
    }
}

QByteArray LateStations::junk(unsigned count)
{
    QByteArray bytes;
    for (; count > 0; --count)
        bytes.append(static_cast<char>(m_chance.pick(256)));
    return bytes;
}

/// Up to three bits turned, which every CRC-16 finds in frames of this length.
QByteArray LateStations::damaged(QByteArray frame)
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

void LateStations::putFrame(Duration at, const QByteArray &frame, int station)
{
    const QByteArray arriving = damaged(frame);
    put(at, { arriving, station, arriving == frame });
}

void LateStations::put(Duration at, const Due &due)
{
    m_due.emplace(std::max(at, m_held), due);
}

/// One talks after the other: what begins while another frame is on its way comes behind it.
void LateStations::materialise()
{
    const Duration start = std::max(m_due.begin()->first, m_lastArrival);
    const Due due = m_due.begin()->second;
    m_due.erase(m_due.begin());
    if (!m_forgery.admits(due.bytes, due.isWhole))
        return;
    for (int i = 0; i < due.bytes.size(); ++i)
        m_arrivals.push_back({ start + m_settings.wireTime(i + 1), due.bytes.at(i) });
    m_lastArrival = start + m_settings.wireTime(static_cast<int>(due.bytes.size()));
}

std::optional<LateStations::Arrival> LateStations::nextBy(Duration until)
{
    while (m_arrivals.empty() && !m_due.empty() && m_due.begin()->first <= until)
        materialise();
    if (m_arrivals.empty() || m_arrivals.front().at > until)
        return std::nullopt;
    return m_arrivals.front();
}

std::optional<Duration> LateStations::nextAt() const
{
    if (!m_arrivals.empty())
        return m_arrivals.front().at;
    return m_due.empty() ? std::nullopt : std::optional<Duration>(m_due.begin()->first);
}
