// SPDX-License-Identifier: MIT
// dx4-sim: serves simulated inverters on a pseudo-terminal or a serial port.
#include "simulator/byte_log.h"
#include "simulator/capture.h"
#include "simulator/fault_file.h"
#include "simulator/options.h"
#include "simulator/output.h"
#include "simulator/reporter.h"
#include "simulator/server.h"

#include <unistd.h>

#include <csignal>
#include <exception>
#include <iostream>
#include <optional>
#include <stdexcept>
#include <utility>

namespace {

using namespace dx4::sim;

constexpr std::uint64_t defaultSeed = 1;

LineSettings lineOf(const Options &options)
{
    LineSettings settings;
    // The characters of a serial port take their time by themselves.
    settings.bitsPerSecond = options.pty ? options.speed : 0;
    settings.bitsPerCharacter = options.bitsPerCharacter();
    settings.turnaround = std::chrono::milliseconds(options.turnaroundMs);
    return settings;
}

Port openPort(const Options &options)
{
    if (options.pty)
        return Port::openPty();
    return Port::openSerial(options.port, options.speed, options.parity(), options.stopBits());
}

FaultPlan planOf(const Options &options)
{
    if (options.faultFile.empty())
        return FaultPlan({}, options.seed.value_or(defaultSeed));
    const FaultFile file = readFaultFile(options.faultFile);
    if (!file.good())
        throw std::invalid_argument(file.error);
    const std::uint64_t seed = file.seed.value_or(defaultSeed);
    return FaultPlan(file.rules, options.seed.value_or(seed));
}

bool lostSomething(const std::optional<Output> &output)
{
    return output && output->lostSomething();
}

/// Serves until the end. @return the code to leave with
int serve(const Options &options, Output &standardOutput)
{
    FaultPlan plan = planOf(options);
    std::optional<Output> log;
    std::optional<Output> capture;
    Port port = openPort(options);
    const SteadyClock clock;
    Bus bus;
    for (int station : options.stations)
        bus.add(station);
    Cable cable(bus, clock, lineOf(options), std::move(plan));

    if (!options.logFile.empty())
        cable.observe(ByteLog(log.emplace(options.logFile).stream()));
    if (!options.captureFile.empty())
        cable.observe(Capture(capture.emplace(options.captureFile).stream()));
    if (lostSomething(capture)) // its head already
        return DeviceError;
    Reporter reporter(standardOutput.stream(), options.json, isatty(STDOUT_FILENO) == 1);
    cable.observe([&reporter](const LineEvent &event) { reporter.event(event); });

    Commands commands(bus, cable, clock, reporter);
    Server server(port, cable, commands, clock);
    reporter.opened(options.pty ? "pty" : "port", port.path());
    if (!standardOutput.lostSomething()) // else nobody knows the device
        server.run();
    const bool lost =
        standardOutput.lostSomething() || lostSomething(log) || lostSomething(capture);
    return lost ? DeviceError : Done;
}

} // namespace

int main(int argc, char **argv)
{
    holdStandardStreams();
    // A reader who has had enough must not take the drives off the line.
    std::signal(SIGPIPE, SIG_IGN);
    Output output(STDOUT_FILENO, "standard output");
    Options options;
    if (const std::optional<int> code =
            readOptions(argc, argv, options, output.stream(), std::cerr)) {
        output.stream().flush();
        return *code == Done && output.lostSomething() ? DeviceError : *code;
    }
    try {
        return serve(options, output);
    } catch (const std::invalid_argument &error) {
        std::cerr << "dx4-sim: " << error.what() << '\n';
        return UsageError;
    } catch (const std::exception &error) {
        std::cerr << "dx4-sim: " << error.what() << '\n';
        return DeviceError;
    }
}
