// SPDX-License-Identifier: MIT
// Whatever is written, a station gets it in the order of submission, every write ends once, and
// what was confirmed last is what the station holds.
#include "runtime_fixture.h"

#include <algorithm>
#include <random>

using namespace dx4::host;
namespace {

constexpr int stationCount = 5;
constexpr int silentStation = 4; // from the start
constexpr int flappingStation = 5;

using Frames = std::vector<QByteArray>;

RuntimeSettings stoppedBy0()
{
    RuntimeSettings settings;
    for (int station = 1; station <= stationCount; ++station)
        settings.stops.append({ station, 0 });
    return settings;
}

/// Modbus register of "CW", "FRE" and the first group of "F".
int registerOf(const WriteWish &wish)
{
    if (wish.regType == QLatin1String("F"))
        return 0xF000 + wish.address;
    return wish.regType == QLatin1String("CW") ? 0x1001 : 0x1002;
}

void appendWord(QByteArray &bytes, int word)
{
    bytes.append(static_cast<char>(word >> 8));
    bytes.append(static_cast<char>(word & 0xFF));
}

QByteArray frameOf(const WriteWish &wish)
{
    const auto count = static_cast<int>(wish.values.size());
    QByteArray frame;
    frame.append(static_cast<char>(wish.station));
    frame.append(count == 1 ? '\x06' : '\x10');
    appendWord(frame, registerOf(wish));
    if (count > 1) {
        appendWord(frame, count);
        frame.append(static_cast<char>(2 * count));
    }
    for (quint16 value : wish.values)
        appendWord(frame, value);
    appendWord(frame, 0);
    return renewedCrc(frame);
}

/// A frame that is repeated counts once.
Frames withoutRepeats(Frames frames)
{
    frames.erase(std::unique(frames.begin(), frames.end()), frames.end());
    return frames;
}

/// Five stations under writes of all sorts: one is silent, one is at times, two refuse a register,
/// and replies of all get lost.
class RandomPlant {
public:
    explicit RandomPlant(unsigned seed)
        : m_dice(seed)
    {
        QVector<PlanEntry> polled;
        for (int station = 1; station <= stationCount; ++station)
            polled.append({ station, QStringLiteral("D 0") });
        host.host.setPlan(planOf(polled));
        host.steps(stationCount);
        host.stations.dead = { silentStation };
        host.stations.refused = { { 2, 0x1002 }, { 3, 0xF002 } };
        host.host.onOutcome([this](const WriteOutcome &outcome) {
            outcomes[outcome.id].push_back(outcome);
            if (below(8) == 0)
                submit();
        });
    }

    void play(int rounds)
    {
        for (int i = 0; i < rounds; ++i) {
            for (int writes = below(4); writes > 0; --writes)
                submit();
            if (below(20) == 0)
                toggleFlapping();
            if (below(8) == 0)
                host.stations.changes.assign(static_cast<std::size_t>(1 + below(4)), silence());
            for (int steps = below(4); steps > 0; --steps)
                step();
        }
        host.stations.changes.clear();
        for (int i = 0; i < 5000 && host.host.pendingWrites() > 0; ++i)
            step();
    }

    RuntimeUnderTest host { stoppedBy0() };
    std::map<int, WriteWish> wishes;
    std::map<int, std::vector<WriteOutcome>> outcomes;

private:
    int below(int bound) { return std::uniform_int_distribution<int>(0, bound - 1)(m_dice); }

    void step()
    {
        const Runtime::Step done = host.host.step();
        if (done == Runtime::Step::Idle || done == Runtime::Step::LineDown)
            host.stations.line.advance(host.host.idleTime());
    }

    void toggleFlapping()
    {
        if (host.stations.dead.erase(flappingStation) == 0)
            host.stations.dead.insert(flappingStation);
    }

    /// Few values and registers, so that writes overlap and stations hold some already.
    void submit()
    {
        WriteWish wish;
        wish.station = 1 + below(stationCount);
        const int kind = below(8);
        wish.regType = kind == 0 ? QStringLiteral("CW")
            : kind == 1          ? QStringLiteral("FRE")
                                 : QStringLiteral("F");
        const int count = kind > 1 ? 1 + below(3) : 1;
        wish.address = kind > 1 ? below(5) : 0;
        for (int i = 0; i < count; ++i)
            wish.values.append(static_cast<quint16>(below(4)));
        wish.always = below(4) == 0;
        wish.readBack = below(4) == 0;
        wishes[host.host.write(wish)] = wish;
    }

    std::mt19937 m_dice;
};

void expectEachEndedOnce(const RandomPlant &plant)
{
    EXPECT_EQ(plant.host.host.pendingWrites(), 0);
    EXPECT_EQ(plant.outcomes.size(), plant.wishes.size());
    for (const auto &[id, ends] : plant.outcomes)
        EXPECT_EQ(ends.size(), 1U) << id;
}

void expectOrderOfSubmission(const RandomPlant &plant, int station)
{
    Frames submitted;
    for (const auto &[id, wish] : plant.wishes) {
        if (wish.station == station && plant.outcomes.at(id).front().sent)
            submitted.push_back(frameOf(wish));
    }

    Frames arrived;
    for (const QByteArray &frame : plant.host.stations.line.sent()) {
        if (frame.at(0) == static_cast<char>(station) && frame.at(1) != 3)
            arrived.push_back(frame);
    }

    EXPECT_EQ(withoutRepeats(arrived), withoutRepeats(submitted)) << "station " << station;
}

/// A replaced write was not sent, and a newer one of the same registers follows it.
void expectReplacementsToBeNewer(const RandomPlant &plant)
{
    for (const auto &[id, ends] : plant.outcomes) {
        if (ends.front().end != WriteEnd::Replaced)
            continue;
        const WriteWish &older = plant.wishes.at(id);
        const bool isFollowed =
            std::any_of(plant.wishes.upper_bound(id), plant.wishes.end(), [&](const auto &newer) {
                return newer.second.station == older.station
                    && registerOf(newer.second) == registerOf(older)
                    && newer.second.values.size() == older.values.size();
            });
        EXPECT_TRUE(isFollowed) << id;
        EXPECT_FALSE(ends.front().sent) << id;
    }
}

/// What was confirmed last is held, but where something else was sent later and may have been
/// carried out.
void expectConfirmedValuesToBeHeld(RandomPlant &plant)
{
    std::map<std::pair<int, int>, std::optional<quint16>> last; // by station and register
    for (const auto &[id, wish] : plant.wishes) {
        const WriteOutcome &outcome = plant.outcomes.at(id).front();
        const bool isConfirmed = outcome.end == WriteEnd::Confirmed;
        for (int i = 0; i < wish.values.size() && (isConfirmed || outcome.sent); ++i)
            last[{ wish.station, registerOf(wish) + i }] =
                isConfirmed ? std::optional(wish.values.at(i)) : std::nullopt;
    }

    for (const auto &[where, value] : last) {
        if (!value)
            continue;
        EXPECT_EQ(plant.host.stations.registers[where], *value)
            << "station " << where.first << " register " << where.second;
    }
}

/// How often each end came.
class EndCounts {
public:
    void add(const RandomPlant &plant)
    {
        for (const auto &[id, ends] : plant.outcomes) {
            const bool isHeld = ends.front().end == WriteEnd::Confirmed && !ends.front().sent;
            ++m_counts[isHeld ? "held" : writeEndName(ends.front().end)];
        }
    }

    int of(const char *end) { return m_counts[end]; }

private:
    std::map<std::string, int> m_counts;
};

} // namespace

TEST(WriteOrderProperty, HoldsForRandomWrites)
{
    EndCounts counts;
    for (unsigned seed = 1; seed <= 300; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        RandomPlant plant(seed);

        plant.play(60);

        expectEachEndedOnce(plant);
        expectReplacementsToBeNewer(plant);
        for (int station = 1; station <= stationCount; ++station)
            expectOrderOfSubmission(plant, station);
        expectConfirmedValuesToBeHeld(plant);
        ASSERT_FALSE(::testing::Test::HasFailure());
        counts.add(plant);
    }

    for (const char *end : { "confirmed", "held", "replaced", "rejected", "timed out", "refused" })
        EXPECT_GT(counts.of(end), 300) << end;
}
