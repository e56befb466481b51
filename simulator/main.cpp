// SPDX-License-Identifier: MIT
// dx4-sim: serves simulated inverters on a pseudo-terminal or a serial port.
#include "simulator/options.h"
#include "simulator/reporter.h"
#include "simulator/server.h"

#include <exception>
#include <iostream>
#include <stdexcept>

namespace {

using namespace dx4::sim;

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

void serve(const Options &options)
{
    Port port = openPort(options);
    SteadyClock clock;
    Bus bus;
    for (int station : options.stations)
        bus.add(station);
    Cable cable(bus, clock, lineOf(options));
    Reporter reporter(std::cout, options.json);
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
