// SPDX-License-Identifier: MIT
// dx4-sim: serves simulated inverters on a pseudo-terminal or a serial port.
#include "simulator/byte_log.h"
#include "simulator/capture.h"
#include "simulator/fault_file.h"
#include "simulator/options.h"
#include "simulator/reporter.h"
#include "simulator/server.h"

#include <unistd.h>

#include <cerrno>
#include <exception>
#include <fstream>
#include <iostream>
#include <optional>
#include <stdexcept>
#include <system_error>
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

std::ofstream openOutput(const std::string &path)
{
    std::ofstream stream(path, std::ios::binary | std::ios::trunc);
    if (!stream)
        throw std::system_error(errno, std::generic_category(), path);
    return stream;
}

void serve(const Options &options)
{
    FaultPlan plan = planOf(options);
    std::optional<std::ofstream> logStream;
    std::optional<std::ofstream> captureStream;
    Port port = openPort(options);
    const SteadyClock clock;
    Bus bus;
    for (int station : options.stations)
        bus.add(station);
    Cable cable(bus, clock, lineOf(options), std::move(plan));

    if (!options.logFile.empty())
        cable.observe(ByteLog(logStream.emplace(openOutput(options.logFile))));
    if (!options.captureFile.empty())
        cable.observe(Capture(captureStream.emplace(openOutput(options.captureFile))));
    Reporter reporter(std::cout, options.json, isatty(STDOUT_FILENO) == 1);
    cable.observe([&reporter](const LineEvent &event) { reporter.event(event); });

    Commands commands(bus, cable, clock, reporter);
    Server server(port, cable, commands, clock);
    reporter.opened(options.pty ? "pty" : "port", port.path());
    server.run();
}

} // namespace

int main(int argc, char **argv)
{
    Options options;
    if (const std::optional<int> code = readOptions(argc, argv, options, std::cout, std::cerr))
        return *code;
    try {
        serve(options);
        return Done;
    } catch (const std::invalid_argument &error) {
        std::cerr << "dx4-sim: " << error.what() << '\n';
        return UsageError;
    } catch (const std::exception &error) {
        std::cerr << "dx4-sim: " << error.what() << '\n';
        return DeviceError;
    }
}
