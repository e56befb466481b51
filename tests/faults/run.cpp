// SPDX-License-Identifier: MIT
// One run of the scenario: two stations are polled and written while the cable fails as it is told.
#include "run.h"

#include "far_plug_line.h"
#include "host/exchange/guarded_exchange.h"
#include "simulator/byte_log.h"

#include <algorithm>
#include <memory>
#include <sstream>
#include <stdexcept>

namespace dx4::faults {

using namespace dx4::host;
using std::chrono::milliseconds;

namespace {

constexpr int mostStepsToRecover = 3 * scenarioBlocks;
constexpr std::size_t linesShown = 5;

LineSettings hostSide()
{
    LineSettings settings;
    settings.speed = 19200;
    settings.stopBits = 2; // eleven bits, as the cable has them
    settings.responseTimeout = milliseconds(100);
    return settings;
}

sim::CableSettings cableSide()
{
    sim::CableSettings settings;
    settings.bitsPerSecond = 19200;
    return settings;
}

std::unique_ptr<Plugin> loadPlugin()
{
    // Kept for the whole process: loading the file anew would cost more than a run.
    static const std::unique_ptr<Plugin> keeper = Plugin::load(QStringLiteral(KORVANE_PLUGIN_FILE));
    QString error;
    auto plugin =
        Plugin::load(QStringLiteral(KORVANE_PLUGIN_FILE), Plugin::Instance::Shared, &error);
    if (!plugin)
        throw std::runtime_error(error.toStdString());
    return plugin;
}

/// D and F of the same length, so that a reply of one would fit the other.
QList<KEY_ADDRESS> pollList()
{
    QList<KEY_ADDRESS> list;
    for (int station : { 1, 2 }) {
        list << wanted(station, QStringLiteral("F"), 0, 2)
             << wanted(station, QStringLiteral("F"), parameterC(2), 3)
             << wanted(station, QStringLiteral("D"), 0, 2)
             << wanted(station, QStringLiteral("D"), 7, 2)
             << wanted(station, QStringLiteral("SW"), 0)
             << wanted(station, QStringLiteral("FU"), 0);
    }
    return list;
}

/// Host, cable and stations of one run.
class Stage {
public:
    Stage(Guard guard, const std::vector<sim::FaultRule> &rules, std::uint64_t seed)
        : cable(plant.bus(), clock, cableSide(), sim::FaultPlan(rules, seed))
        , line(cable, clock, hostSide())
        , guarded(line)
        , cycle(link, guard == Guard::Full ? static_cast<Exchange &>(guarded) : plain)
    {
        cable.observe(sim::ByteLog(log));
        cable.observe([this](const sim::LineEvent &event) { note(event); });
        const QList<KEY_ADDRESS> blocks = pollList();
        if (blocks.size() != scenarioBlocks)
            throw std::logic_error("the scenario polls another number of blocks");
        link.poll(blocks);
    }

    void step()
    {
        const Cycle::Step result = cycle.step();
        witness.look(result, cycle.request());
    }

    void write(int step);
    int recover();
    RunResult result(int stepsToRecover);

    sim::VirtualClock clock;
    Plant plant { clock };
    std::ostringstream log;
    sim::Cable cable;
    FarPlugLine line;
    Link link { loadPlugin(), LinkSettings() };
    LineExchange plain { line };
    GuardedExchange guarded;
    Cycle cycle;
    Witness witness { link, plant };
    Duration faultsUntil { 0 };

private:
    void note(const sim::LineEvent &event);
};

/// Every station's answer leaves traces, also when no answer comes.
void Stage::note(const sim::LineEvent &event)
{
    const bool isObeyed =
        event.kind == sim::LineEvent::Kind::Reply || event.kind == sim::LineEvent::Kind::NoReply;
    if (isObeyed)
        plant.remember();
    if (event.kind != sim::LineEvent::Kind::Fault)
        return;
    for (const sim::FaultRule &rule : cable.plan().rules())
        faultsUntil = std::max(faultsUntil, event.time + rule.duration);
}

/// What the operator does before this step.
void Stage::write(int step)
{
    switch (step) {
    case 3:
        witness.write(1, "FRE", 0, 1);
        witness.writeValue(1, "CW", 0, 1);
        break;
    case 9:
        witness.write(1, "F", 1, 1);
        break;
    case 15:
        witness.write(1, "F", parameterC(2), 2);
        witness.write(2, "F", 0, 2);
        break;
    case 20:
        witness.write(2, "FRE", 0, 1);
        break;
    default:
        break;
    }
}

/// Steps until everything is read anew, on a line without faults.
int Stage::recover()
{
    cable.plan().clear();
    while (clock.now() <= faultsUntil)
        step();
    plant.change();
    int steps = 0;
    while (steps < mostStepsToRecover && (link.waitingWrites() > 0 || !witness.unread().empty())) {
        step();
        ++steps;
    }
    witness.lookAtTheEnd();
    return steps;
}

RunResult Stage::result(int stepsToRecover)
{
    RunResult result;
    result.findings = witness.findings();
    result.byteLog = log.str();
    result.line = cycle.counters().total();
    result.confirmedWrites = witness.writes(Outcome::Confirmed);
    result.failedWrites = witness.writes(Outcome::Failed);
    result.stepsToRecover = stepsToRecover;
    return result;
}

} // namespace

RunResult play(Guard guard, const std::vector<sim::FaultRule> &rules, std::uint64_t seed, int steps)
{
    Stage stage(guard, rules, seed);
    for (int step = 0; step < steps; ++step) {
        stage.plant.change();
        stage.write(step);
        stage.step();
    }
    int strikes = 0;
    for (const sim::FaultRule &rule : stage.cable.plan().rules())
        strikes += rule.struck;
    RunResult result = stage.result(stage.recover());
    result.findings = stage.witness.findings();
    result.strikes = strikes;
    return result;
}

std::string textOf(const std::vector<std::string> &findings)
{
    std::string text;
    for (std::size_t i = 0; i < std::min(findings.size(), linesShown); ++i)
        text += findings[i] + '\n';
    if (findings.size() > linesShown)
        text += "and " + std::to_string(findings.size() - linesShown) + " more\n";
    return text;
}

} // namespace dx4::faults
