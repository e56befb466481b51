// SPDX-License-Identifier: MIT
// One host asking late stations, and what it believed that was not so.
#include "trial.h"

#include "trial_requests.h"

#include <algorithm>
#include <sstream>

using namespace dx4::host;
using std::chrono::milliseconds;

namespace {

constexpr int mostOlder = 128; // versions; beyond, it is a step back
constexpr Duration comparable =
    std::chrono::seconds(20); // before the versions have gone half round

int wordAt(const QByteArray &bytes, int position)
{
    return static_cast<unsigned char>(bytes.at(position)) * 256
        + static_cast<unsigned char>(bytes.at(position + 1));
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

LineChoice anyLine(Chance &chance)
{
    static constexpr int speeds[] = { 9600, 19200, 38400, 57600, 115200 };
    static constexpr int timeouts[] = { 20, 50, 100, 300, 1000 };
    LineChoice choice;
    choice.settings.speed = speeds[chance.pick(5)];
    choice.settings.responseTimeout = milliseconds(timeouts[chance.pick(5)]);
    choice.habit = habitBy(chance, choice.settings);
    return choice;
}

LineChoice quickLine(Chance &chance)
{
    static constexpr int speeds[] = { 57600, 115200 };
    LineChoice choice;
    choice.settings.speed = speeds[chance.pick(2)];
    choice.settings.responseTimeout = milliseconds(chance.pick(31) + 20);
    choice.habit = habitBy(chance, choice.settings);
    return choice;
}

Trial::Trial(Chance &chance, const LineChoice &line, Plant &plant, Stations stations)
    : m_chance(chance)
    , m_plant(plant)
    , m_guard(plant.line())
    , m_exchange(&m_guard)
    , m_writesPerMille(chance.pick(4) * 100)
    , m_switchesPerMille(chance.pick(3) * 2)
{
    const LineSettings &settings = line.settings;
    const LineHabit &habit = line.habit;
    std::ostringstream text;
    text << settings.speed << " bit/s, timeout " << settings.responseTimeout.count() / 1000
         << " ms, echoes " << habit.echoes << " (mode " << static_cast<int>(settings.echo)
         << "), damaged " << habit.damaged << ", lost " << habit.lost << ", foreign "
         << habit.foreign << ", late echoes " << habit.lateEcho << '\n';
    m_text = text.str();
    addStations(settings.responseTimeout, stations);
    addBlocks();
}

void Trial::addStations(Duration timeout, Stations stations)
{
    const int count = static_cast<int>(m_chance.pick(4)) + 1;
    for (int number = 1; number <= count; ++number) {
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
            m_blocks.push_back(kind == 0 ? readOf(station, 0x2000 + (first & 1), 1)
                                   : kind == 1
                                   ? readOf(station, 0xD000 + first + (count == 1 ? 1 : 0), count)
                                   : readOf(station, (kind < 4 ? 0xD000 : 0xF000) + first, count));
        }
    }
}

FRAME_PRO Trial::write(int station)
{
    FRAME_PRO frame;
    switch (m_chance.pick(4)) {
    case 0:
        frame = requestOf(station, 6, 0x1001, static_cast<int>(m_chance.pick(3)));
        break;
    case 1:
        frame = requestOf(station, 6, 0x1002, ++m_nextValue % 65536);
        break;
    case 2:
        frame = requestOf(station, 6, 0xF00E + static_cast<int>(m_chance.pick(2)), 7);
        break;
    default:
        frame = requestOf(station, 16, 0xF004, 2);
        frame.frame[6] = 4;
        for (int i = 7; i < 11; ++i)
            frame.frame[i] = static_cast<unsigned char>(m_chance.pick(256));
        closeFrame(frame, 11);
        break;
    }
    frame.var.varKind = 1000 + ++m_nextValue;
    return frame;
}

void Trial::nextRequest()
{
    m_request.triesLeft = static_cast<int>(m_chance.pick(3)) + 1;
    m_request.begun = now();
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
    if (m_chance.happens(m_switchesPerMille))
        m_plant.toggle(1);
    if (m_chance.happens(m_besidesPerMille))
        return doBesides();
    if (m_request.triesLeft == 0)
        nextRequest();
    const Duration before = now();
    const Reply reply = m_exchange->run(m_request.frame);
    m_counts.time += now() - before;
    --m_request.triesLeft;
    judge(reply);
}

/// What a host does but for serving its plan. Each is a step, and what it brings is judged alike.
void Trial::doBesides()
{
    Line &line = m_plant.line();
    const int station = static_cast<int>(m_chance.pick(4)) + 1;
    const Duration timeout = line.settings().responseTimeout;
    m_request.triesLeft = 0;
    m_request.begun = now();
    switch (m_chance.pick(6)) {
    case 0: // opened again: by somebody else
        line.close();
        line.open(nullptr);
        return;
    case 1: // and after an exchange that found it closed
        line.close();
        m_request.frame = m_blocks.front();
        judge(m_guard.run(m_request.frame));
        line.open(nullptr);
        return;
    case 2:
        m_guard.listen();
        return;
    case 3:
        m_request.frame = readOf(station, 0x2000, 1);
        return judge(m_guard.probe(station, { timeout, std::nullopt, m_chance.pick(2) == 0 }));
    case 4:
        m_guard.broadcast(0, { timeout / 4, std::nullopt, true });
        return;
    default:
        m_request.frame = m_chance.pick(2) == 0 ? write(station) : m_blocks.front();
        const Duration until = now() + timeout * (m_chance.pick(30) + 1) / 10;
        return judge(m_guard.runWithin(m_request.frame, { timeout, until, m_chance.pick(2) == 0 }));
    }
}

void Trial::judge(const Reply &reply)
{
    ++m_counts.steps;
    const ExchangeReport &report = m_exchange->report();
    m_counts.withheld += reply.kind == Reply::Kind::Withheld ? 1 : 0;
    m_counts.late += report.lateReplies;
    const bool isRefused = report.verdict.cause == ReplyCause::Exception;
    const bool isGood = report.verdict.cause == ReplyCause::Good;
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
        const int version = value / LateStations::ordinals;
        if (value % LateStations::ordinals != m_plant.ordinalOf(station, first + i))
            wrong(m_counts.wrongValues, "a value of another register");
        Shown &last = m_shown[{ station, first + i }];
        const bool isComparable = last.at > now() - comparable;
        if (isComparable && ((version - last.version) & 0xFF) > mostOlder)
            wrong(m_counts.wrongValues, "a value older than one shown before");
        last = { version, now() };
    }
}

void Trial::judgeWrite()
{
    ++m_counts.goodWrites;
    const QByteArray sent = sentBy(m_request.frame);
    const auto &done = m_plant.carriedOut(m_request.frame.var.station);
    const bool isDone = std::any_of(done.rbegin(), done.rend(), [&](const CarriedOut &write) {
        return write.request == sent && write.at >= m_request.begun && write.at <= now();
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
        isRefused = isRefused || LateStations::isRefused(first + i);
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
         << sentBy(m_request.frame).toHex(' ').toStdString() << '\n'
         << m_plant.history();
    m_firstWrong = text.str();
}
