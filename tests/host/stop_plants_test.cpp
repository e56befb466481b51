// SPDX-License-Identifier: MIT
// Random plants with their motors running: every living drive is stopped within the budget, and the
// report is true. KORVANE_STOP_PLANTS sets how many, KORVANE_STOP_SEED with which one they begin.
#include "runtime_fixture.h"

#include <cmath>
#include <cstdlib>
#include <random>
#include <sstream>

using namespace dx4::host;
using std::chrono::microseconds;
using std::chrono::milliseconds;
using std::chrono::seconds;

namespace {

constexpr int defaultPlants = 60;
constexpr int controlWord = 0x1001;
constexpr int stopWord = 6;
constexpr int turning = 1;
constexpr int requestBytes = 8;

int numberFrom(const char *variable, int otherwise)
{
    const char *text = std::getenv(variable);
    return text ? std::atoi(text) : otherwise;
}

struct Drive {
    enum class Kind { Living, Slow, Flapping, Dead };

    Kind kind = Kind::Living;
    Duration answer { 0 };
    Duration period { 0 }; ///< of a flapping one, which is there in the first half of it
    bool isPolled = false;
    bool takesBroadcast = false;
    int stops = 0; ///< that reached it

    bool isThere(Duration now) const
    {
        return kind != Kind::Dead && (kind != Kind::Flapping || now % period < period / 2);
    }
};

const char *nameOf(Drive::Kind kind)
{
    static const char *const names[] = { "living", "slow", "flapping", "dead" };
    return names[static_cast<int>(kind)];
}

/// One line with its drives, drawn from a seed.
class StopPlant {
public:
    explicit StopPlant(unsigned seed)
        : m_random(seed)
        , line([this](const QByteArray &request) { return answerTo(request); }, drawLine())
    {
        const int count = draw(1, 32);
        const int unhealthy = draw(0, 3) == 0 ? 100 : draw(0, 100); // of 100
        for (int station = 1; station <= count; ++station)
            drives[station] = drawDrive(unhealthy);
        isEchoing = draw(0, 3) == 0;
        isBroadcast = draw(0, 3) == 0;
        isHalfDuplex = draw(0, 2) == 0;
        if (isHalfDuplex)
            letFramesCollide();
    }

    int draw(int lowest, int highest)
    {
        return std::uniform_int_distribution<int>(lowest, highest)(m_random);
    }

    Duration drawSpan(Duration shortest, Duration longest)
    {
        const double low = std::log(static_cast<double>(shortest.count()));
        const double high = std::log(static_cast<double>(longest.count()));
        const double drawn = std::uniform_real_distribution<double>(low, high)(m_random);
        return Duration { static_cast<Duration::rep>(std::exp(drawn)) };
    }

    RuntimeSettings settings()
    {
        RuntimeSettings result;
        for (const auto &[station, drive] : drives)
            result.stops.append({ station, stopWord });
        result.stopBroadcast = isBroadcast;
        result.pause = [this](Duration span) { line.advance(span); };
        return result;
    }

    Plan plan() const
    {
        Plan result;
        for (const auto &[station, drive] : drives) {
            if (drive.isPolled)
                result.blocks.append(wanted(station, QStringLiteral("SW"), 0));
        }
        return result;
    }

    /// Time of one request, with the silence before it.
    Duration request() const
    {
        return line.settings().silentGap() + line.settings().wireTime(requestBytes);
    }

    std::string text() const
    {
        std::ostringstream out;
        out << line.settings().speed << " bit/s, timeout "
            << line.settings().responseTimeout / milliseconds(1) << " ms"
            << (isEchoing ? ", echoing" : "") << (isBroadcast ? ", broadcast" : "")
            << (isHalfDuplex ? ", half duplex" : "") << '\n';
        for (const auto &[station, drive] : drives) {
            out << "  " << station << ' ' << nameOf(drive.kind) << ", answers in "
                << drive.answer.count() << " us" << (drive.isPolled ? ", polled" : "") << ", "
                << drive.stops << " stops\n";
        }
        return out.str();
    }

private:
    std::mt19937 m_random;
    ScriptedLine m_registers;

public:
    std::map<int, Drive> drives;
    bool isEchoing = false;
    bool isBroadcast = false;
    bool isHalfDuplex = false; ///< a frame that meets a late reply is lost
    MemoryLine line;

    int command(int station) { return m_registers.registers[{ station, controlWord }]; }

private:
    LineSettings drawLine()
    {
        static const int speeds[] = { 9600, 19200, 38400, 57600, 115200 };
        LineSettings settings;
        settings.speed = speeds[draw(0, 4)];
        settings.responseTimeout = drawSpan(milliseconds(20), seconds(5));
        return settings;
    }

    Drive drawDrive(int unhealthy)
    {
        const Duration timeout = line.settings().responseTimeout;
        Drive drive;
        drive.answer = drawSpan(microseconds(500), std::min(timeout, Duration { 20'000 }));
        drive.isPolled = draw(0, 3) != 0;
        drive.takesBroadcast = draw(0, 1) == 0;
        if (draw(1, 100) > unhealthy)
            return drive;
        drive.kind = static_cast<Drive::Kind>(draw(1, 3));
        if (drive.kind == Drive::Kind::Slow)
            drive.answer = drawSpan(timeout / 10, 2 * timeout);
        drive.period = drawSpan(milliseconds(50), seconds(20));
        return drive;
    }

    /// Two drives answer late at most: more of them can hit one request in every round.
    void letFramesCollide()
    {
        line.letFramesCollide();
        int slow = 0;
        for (auto &[station, drive] : drives) {
            const bool isSlow = drive.kind == Drive::Kind::Slow;
            if (isSlow && ++slow > 2)
                drive.kind = Drive::Kind::Dead;
        }
    }

    MemoryLine::Answer answerTo(const QByteArray &request)
    {
        const int station = static_cast<unsigned char>(request.at(0));
        if (station == 0) {
            for (auto &[other, drive] : drives) {
                if (drive.takesBroadcast && drive.isThere(line.now()))
                    m_registers.registers[{ other, controlWord }] = stopWord;
            }
        }
        QByteArray heard = isEchoing ? request : QByteArray();
        const auto drive = drives.find(station);
        if (drive == drives.end() || !drive->second.isThere(line.now()))
            return { heard, Duration { 0 } };
        heard += m_registers.answer(request);
        drive->second.stops += request == stopOf(station) ? 1 : 0;
        return { heard, drive->second.answer };
    }

    static QByteArray stopOf(int station)
    {
        QByteArray frame = framed("01 06 10 01 00 06");
        frame[0] = static_cast<char>(station);
        return renewedCrc(frame);
    }

public:
    /// Every motor turns; of some the host knows, as it started them.
    void startMotors(Runtime &host)
    {
        for (const auto &[station, drive] : drives) {
            m_registers.registers[{ station, controlWord }] = turning;
            if (draw(0, 2) == 0)
                host.write({ station, QStringLiteral("CW"), 0, { turning } });
        }
    }

    void runFor(Runtime &host, Duration span)
    {
        const Duration end = line.now() + span;
        host.run([this, end] { return line.now() >= end; });
    }
};

/// A budget that carries one request to each, often no more. Where late replies destroy requests
/// there is time to try again.
Duration drawBudget(StopPlant &plant)
{
    const int requests = static_cast<int>(plant.drives.size()) + (plant.isBroadcast ? 1 : 0);
    const Duration retried =
        plant.isHalfDuplex ? seconds(2) + requests * milliseconds(300) : Duration { 0 };
    const Duration least = retried + requests * plant.request();
    if (plant.draw(0, 1) == 0)
        return least;
    return std::max(least, plant.drawSpan(least, std::max<Duration>(2 * least, seconds(4))));
}

void expectStopped(StopPlant &plant, const StopReport &report)
{
    for (const auto &[station, drive] : plant.drives) {
        const bool isSlow = drive.kind == Drive::Kind::Slow && !plant.isHalfDuplex;
        const bool isLiving = drive.kind == Drive::Kind::Living || isSlow;
        const bool isConfirmed = !report.unconfirmed.contains(station);
        EXPECT_TRUE(!isLiving || drive.stops > 0) << "station " << station << " got no stop";
        EXPECT_TRUE(!isConfirmed || plant.command(station) == stopWord)
            << "station " << station << " is said to have stopped";
    }
}

/// Stops a plant and looks at what became of it.
void stopPlant(unsigned seed)
{
    StopPlant plant(seed);
    Runtime host(privateCopy(), plant.line, plant.settings());
    host.setPlan(plant.plan());
    plant.runFor(host, plant.draw(0, 2) == 0 ? Duration { 0 } : milliseconds(plant.draw(1, 9000)));
    plant.startMotors(host);
    plant.runFor(host, milliseconds(plant.draw(0, 500)));
    for (auto &[station, drive] : plant.drives)
        drive.stops = 0;
    const Duration budget = drawBudget(plant);
    const Duration begun = plant.line.now();

    const StopReport report = host.stop(budget);

    const Duration taken = plant.line.now() - begun;
    EXPECT_LE(taken.count(), (budget + plant.request()).count()) << "microseconds";
    expectStopped(plant, report);
    if (::testing::Test::HasFailure())
        ADD_FAILURE() << "seed " << seed << ", budget " << budget.count() << " us, taken "
                      << taken.count() << " us\n"
                      << plant.text();
}

} // namespace

TEST(StopPlants, EveryLivingDriveStopsWithinTheBudgetAndTheReportIsTrue)
{
    const int plants = numberFrom("KORVANE_STOP_PLANTS", defaultPlants);
    const int first = numberFrom("KORVANE_STOP_SEED", 1);
    RecordProperty("firstSeed", first);
    RecordProperty("plants", plants);
    ASSERT_GT(plants, 0);

    for (int i = 0; i < plants && !HasFailure(); ++i)
        stopPlant(static_cast<unsigned>(first + i));
}
