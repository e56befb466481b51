// SPDX-License-Identifier: MIT
// One host asking late stations, and what it believed that was not so.
#include "trial.h"

#include <algorithm>
#include <sstream>

using namespace dx4::host;
using std::chrono::milliseconds;

namespace {

constexpr int requestBytes = 8;
constexpr int mostOlder = 128; // versions; beyond, it is a step back
constexpr Duration comparable =
    std::chrono::seconds(20); // before the versions have gone half round

int wordAt(const QByteArray &bytes, int position)
{
    return static_cast<unsigned char>(bytes.at(position)) * 256
        + static_cast<unsigned char>(bytes.at(position + 1));
}

void close(FRAME_PRO &frame, int payload)
{
    unsigned crc = 0xFFFF;
    for (int i = 0; i < payload; ++i) {
        crc ^= frame.frame[i];
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc & 1U) != 0 ? (crc >> 1) ^ 0xA001U : crc >> 1;
    }
    frame.frame[payload] = static_cast<unsigned char>(crc & 0xFFU);
    frame.frame[payload + 1] = static_cast<unsigned char>(crc >> 8);
    frame.sendLength = payload + 2;
}

FRAME_PRO request(int station, int function, int address, int value)
{
    FRAME_PRO frame;
    const int words[] = { station * 256 + function, address, value };
    for (int i = 0; i < 3; ++i) {
        frame.frame[2 * i] = static_cast<unsigned char>(words[i] / 256);
        frame.frame[2 * i + 1] = static_cast<unsigned char>(words[i] % 256);
    }
    frame.replyLength = requestBytes;
    frame.var.station = station;
    close(frame, requestBytes - 2);
    return frame;
}

FRAME_PRO read(int station, int address, int count)
{
    FRAME_PRO frame = request(station, 3, address, count);
    frame.replyDataLength = 2 * count;
    frame.replyLength = 5 + 2 * count;
    return frame;
}

} // namespace

void TrialCounts::add(const TrialCounts &other)
{
    steps += other.steps;
    wrongValues += other.wrongValues;
    falseConfirmations += other.falseConfirmations;
    falseRefusals += other.falseRefusals;
    goodReads += other.goodReads;
    goodWrites += other.goodWrites;
    refusals += other.refusals;
    withheld += other.withheld;
    late += other.late;
    time += other.time;
}

namespace {

LineSettings settingsBy(Chance &chance)
{
    static constexpr int speeds[] = { 9600, 19200, 38400, 57600, 115200 };
    static constexpr int timeouts[] = { 20, 50, 100, 300, 1000 };
    LineSettings settings;
    settings.speed = speeds[chance.pick(5)];
    settings.responseTimeout = milliseconds(timeouts[chance.pick(5)]);
    return settings;
}

LineHabit habitBy(Chance &chance, LineSettings &settings)
{
    LineHabit habit;
    habit.echoes = chance.pick(3) == 0;
    const bool isClean = chance.pick(4) == 0;
    habit.damaged = isClean ? 0 : chance.pick(4) * 20;
    habit.lost = isClean ? 0 : chance.pick(4) * 20;
    habit.foreign = isClean ? 0 : chance.pick(3) * 30;
    habit.lateEcho = habit.echoes ? chance.pick(3) * 50 : 0;
    const unsigned told = chance.pick(4);
    settings.echo = told > 0 ? EchoMode::Auto : habit.echoes ? EchoMode::Yes : EchoMode::No;
    return habit;
}

} // namespace

Trial::Trial(Chance &chance, Stations stations)
    : m_chance(chance)
    , m_settings(settingsBy(chance))
    , m_line(habitBy(chance, m_settings))
    , m_plant(m_settings, m_line, chance)
    , m_guard(m_plant)
    , m_exchange(&m_guard)
    , m_writesPerMille(chance.pick(4) * 100)
    , m_switchesPerMille(chance.pick(3) * 2)
{
    std::ostringstream text;
    text << m_settings.speed << " bit/s, timeout " << m_settings.responseTimeout.count() / 1000
         << " ms, echoes " << m_line.echoes << " (mode " << static_cast<int>(m_settings.echo)
         << "), damaged " << m_line.damaged << ", lost " << m_line.lost << ", foreign "
         << m_line.foreign << ", late echoes " << m_line.lateEcho << '\n';
    m_text = text.str();
    addStations(stations);
    addBlocks();
}

void Trial::addStations(Stations stations)
{
    const int count = static_cast<int>(m_chance.pick(4)) + 1;
    for (int number = 1; number <= count; ++number) {
        const Duration timeout = m_settings.responseTimeout;
        LateHabit habit;
        habit.pattern = static_cast<LateHabit::Pattern>(m_chance.pick(3));
        habit.buffers = m_chance.pick(2) == 0;
        const bool isPrompt = m_chance.pick(3) == 0 || stations == Stations::InTime;
        habit.quickest = isPrompt ? timeout / 20 : timeout / 2;
        habit.slowest = isPrompt ? timeout / 3 : timeout * (m_chance.pick(46) + 5) / 10;
        habit.lossPerMille = m_chance.pick(3) * 20;
        m_plant.addStation(number, habit);
        std::ostringstream text;
        text << "station " << number << (habit.buffers ? " buffers" : " drops") << ", pattern "
             << static_cast<int>(habit.pattern) << ", " << habit.quickest.count() << " to "
             << habit.slowest.count() << " us, loses " << habit.lossPerMille << '\n';
        m_text += text.str();
    }
}

/// Blocks of one length for the most part: those are what can be confused.
void Trial::addBlocks()
{
    const int usual = static_cast<int>(m_chance.pick(8)) + 1;
    for (int station = 1; m_blocks.size() < 24 && station <= 4; ++station) {
        const bool isThere = station == 1 || m_chance.pick(2) == 0;
        for (unsigned i = isThere ? m_chance.pick(6) + 1 : 0; i > 0; --i) {
            const int count =
                m_chance.pick(5) == 0 ? static_cast<int>(m_chance.pick(8)) + 1 : usual;
            const int first = static_cast<int>(m_chance.pick(static_cast<unsigned>(16 - count)));
            const unsigned kind = m_chance.pick(6);
            m_blocks.push_back(kind == 0 ? read(station, 0x2000 + (first & 1), 1)
                                   : kind == 1
                                   ? read(station, 0xD000 + first + (count == 1 ? 1 : 0), count)
                                   : read(station, (kind < 4 ? 0xD000 : 0xF000) + first, count));
        }
    }
}

FRAME_PRO Trial::write(int station)
{
    FRAME_PRO frame;
    switch (m_chance.pick(4)) {
    case 0:
        frame = request(station, 6, 0x1001, static_cast<int>(m_chance.pick(3)));
        break;
    case 1:
        frame = request(station, 6, 0x1002, ++m_nextValue % 65536);
        break;
    case 2:
        frame = request(station, 6, 0xF00E + static_cast<int>(m_chance.pick(2)), 7);
        break;
    default:
        frame = request(station, 16, 0xF004, 2);
        frame.frame[6] = 4;
        for (int i = 7; i < 11; ++i)
            frame.frame[i] = static_cast<unsigned char>(m_chance.pick(256));
        close(frame, 11);
        break;
    }
    frame.var.varKind = 1000 + ++m_nextValue;
    return frame;
}

void Trial::nextRequest()
{
    m_request.triesLeft = static_cast<int>(m_chance.pick(3)) + 1;
    m_request.begun = m_plant.now();
    const FRAME_PRO &block = m_blocks[static_cast<std::size_t>(m_nextBlock) % m_blocks.size()];
    if (m_chance.happens(m_writesPerMille)) {
        m_request.frame = write(block.var.station);
        return;
    }
    m_request.frame = block;
    m_nextBlock += m_chance.pick(8) == 0 ? static_cast<int>(m_chance.pick(8)) : 1;
}

void Trial::step()
{
    if (m_chance.happens(m_switchesPerMille)) {
        const bool isOff = m_plant.habitOf(1).isOff;
        m_plant.setOff(1, !isOff);
    }
    if (m_request.triesLeft == 0)
        nextRequest();
    const Duration before = m_plant.now();
    const Reply reply = m_exchange->run(m_request.frame);
    m_counts.time += m_plant.now() - before;
    ++m_counts.steps;
    --m_request.triesLeft;
    m_counts.withheld += reply.kind == Reply::Kind::Withheld ? 1 : 0;
    m_counts.late += m_exchange->report().lateReplies;
    const bool isRefused = m_exchange->report().verdict.cause == ReplyCause::Exception;
    const bool isGood = m_exchange->report().verdict.cause == ReplyCause::Good;
    if (isGood && m_request.frame.frame[1] == 3)
        judgeRead(reply.bytes);
    else if (isGood)
        judgeWrite();
    if (isRefused)
        judgeRefusal();
    if (isGood || isRefused)
        m_request.triesLeft = 0;
}

void Trial::judgeRead(const QByteArray &reply)
{
    ++m_counts.goodReads;
    const int station = m_request.frame.var.station;
    const int first = m_request.frame.frame[2] * 256 + m_request.frame.frame[3];
    const int count = m_request.frame.frame[5];
    for (int i = 0; i < count; ++i) {
        const int value = wordAt(reply, 3 + 2 * i);
        const int version = value / LatePlant::ordinals;
        if (value % LatePlant::ordinals != m_plant.ordinalOf(station, first + i))
            wrong(m_counts.wrongValues, "a value of another register");
        Shown &last = m_shown[{ station, first + i }];
        const bool isComparable = last.at > m_plant.now() - comparable;
        if (isComparable && ((version - last.version) & 0xFF) > mostOlder)
            wrong(m_counts.wrongValues, "a value older than one shown before");
        last = { version, m_plant.now() };
    }
}

void Trial::judgeWrite()
{
    ++m_counts.goodWrites;
    const QByteArray sent(reinterpret_cast<const char *>(m_request.frame.frame),
                          m_request.frame.sendLength);
    const auto &done = m_plant.carriedOut(m_request.frame.var.station);
    const bool isDone = std::any_of(done.rbegin(), done.rend(), [&](const CarriedOut &write) {
        return write.request == sent && write.at >= m_request.begun && write.at <= m_plant.now();
    });
    if (!isDone)
        wrong(m_counts.falseConfirmations, "a write that was not carried out");
}

void Trial::judgeRefusal()
{
    ++m_counts.refusals;
    const int first = m_request.frame.frame[2] * 256 + m_request.frame.frame[3];
    const int count = m_request.frame.frame[1] == 6 ? 1 : m_request.frame.frame[5];
    bool isRefused = false;
    for (int i = 0; i < count; ++i)
        isRefused = isRefused || LatePlant::isRefused(first + i);
    if (!isRefused)
        wrong(m_counts.falseRefusals, "a refusal of another request");
}

void Trial::wrong(long &count, const std::string &what)
{
    ++count;
    if (!m_firstWrong.empty())
        return;
    std::ostringstream text;
    text << "step " << m_counts.steps << ": " << what << ", asked by "
         << QByteArray(reinterpret_cast<const char *>(m_request.frame.frame),
                       m_request.frame.sendLength)
                .toHex(' ')
                .toStdString()
         << '\n';
    m_firstWrong = text.str();
}
