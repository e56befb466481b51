// SPDX-License-Identifier: MIT
// The runtime against simulated inverters on a cable that damages, delays, loses and echoes.
#include "cable_line.h"
#include "runtime_fixture.h"

#include <set>

using namespace dx4::host;
using std::chrono::milliseconds;
using std::chrono::seconds;

namespace {

constexpr std::uint64_t seed = 20260712;
constexpr int registersPerStation = 32;

LineSettings hostLine()
{
    LineSettings settings;
    settings.speed = 19200;
    settings.parity = Parity::Even;
    settings.responseTimeout = milliseconds(60);
    return settings;
}

dx4::sim::CableSettings simulatorLine()
{
    dx4::sim::CableSettings settings;
    settings.bitsPerSecond = 19200;
    return settings;
}

/// A number that tells station and register apart, so that no value can pass for another's.
std::uint16_t markOf(int station, int address)
{
    return static_cast<std::uint16_t>(station * 1000 + address);
}

/// Two inverters whose monitor values never change, so that a wrong value in the cache shows.
class FaultyCable : public ::testing::Test {
protected:
    FaultyCable()
    {
        for (int station : { 1, 2 }) {
            dx4::sim::Inverter &inverter = bus.add(station);
            for (int i = 0; i < registersPerStation; ++i)
                inverter.hold(static_cast<std::uint16_t>(0xD000 + i), markOf(station, i));
        }
        RuntimeSettings settings;
        settings.link.blockSize = 8;
        settings.pause = [this](Duration span) { clock.advance(span); };
        host = std::make_unique<Runtime>(privateCopy(), line, settings);
        Planner planner(privateCopy(), settings.link);
        host->setPlan(*planner.make(
            { { 1, QStringLiteral("D 0-31") }, { 2, QStringLiteral("D 0-31") } }, nullptr));
    }

    void fault(dx4::sim::FaultKind kind, double probability, Duration duration = Duration { 0 })
    {
        dx4::sim::FaultRule rule;
        rule.kind = kind;
        rule.probability = probability;
        rule.duration = duration;
        cable.plan().add(rule);
    }

    /// Values in the cache that are neither 0, as never read, nor the station's own.
    int wrongValues() const
    {
        int wrong = 0;
        for (int station : { 1, 2 }) {
            for (int i = 0; i < registersPerStation; ++i) {
                const Value shown = host->value(station, QStringLiteral("D"), i);
                wrong += shown.known && shown.value != markOf(station, i) ? 1 : 0;
            }
        }
        return wrong;
    }

    dx4::sim::VirtualClock clock;
    dx4::sim::Bus bus;
    dx4::sim::Cable cable { bus, clock, simulatorLine(), dx4::sim::FaultPlan({}, seed) };
    CableLine line { cable, clock, hostLine() };
    std::unique_ptr<Runtime> host;
};

} // namespace

TEST_F(FaultyCable, NoFaultBringsAWrongValueIntoTheCache)
{
    RecordProperty("seed", std::to_string(seed));
    using dx4::sim::FaultKind;
    for (FaultKind kind : { FaultKind::DropRequest, FaultKind::DropReply, FaultKind::FlipBits,
                            FaultKind::BreakCrc, FaultKind::Truncate, FaultKind::Junk,
                            FaultKind::WrongStation, FaultKind::WrongFunction, FaultKind::Echo })
        fault(kind, 0.03);
    fault(FaultKind::Delay, 0.03, milliseconds(70));
    fault(FaultKind::Delay, 0.03, milliseconds(100));
    dx4::sim::FaultRule exception;
    exception.kind = FaultKind::Exception;
    exception.probability = 0.02;
    exception.value = 4;
    cable.plan().add(exception);

    for (int i = 0; i < 5000; ++i) {
        if (host->step() == Runtime::Step::Idle)
            clock.advance(host->idleTime());
        ASSERT_EQ(wrongValues(), 0) << "seed " << seed << " step " << i;
    }

    const RequestCounts total = host->counters().total();
    EXPECT_GT(total.good, 3000U);
    for (quint64 cause : { total.timeouts, total.truncated, total.badCrc, total.foreign,
                           total.wrongReplies, total.lateReplies, total.echoes, total.junkBytes })
        EXPECT_GT(cause, 0U);
    EXPECT_GT(total.exceptions.at(4), 0U);
}

TEST_F(FaultyCable, AWriteGetsThroughAnEchoingNoisyLine)
{
    fault(dx4::sim::FaultKind::Echo, 1.0);
    fault(dx4::sim::FaultKind::DropReply, 0.1);
    int confirmed = 0;
    host->onOutcome([&](const WriteOutcome &outcome) {
        confirmed += outcome.end == WriteEnd::Confirmed ? 1 : 0;
    });
    for (int i = 0; i < 20; ++i)
        host->step();

    for (int i = 0; i < 20; ++i) {
        host->write({ 1, QStringLiteral("FRE"), 0, { static_cast<quint16>(1000 + i) } });
        for (int k = 0; k < 12; ++k)
            host->step();
    }

    EXPECT_GE(confirmed, 19);
    EXPECT_EQ(wrongValues(), 0);
}
