// SPDX-License-Identifier: MIT
// dx4-sim: serves simulated inverters on a pseudo-terminal or a serial port.
#include "common/standard_descriptors.h"
#include "simulator/byte_log.h"
#include "simulator/capture.h"
#include "simulator/device_link.h"
#include "simulator/end_request.h"
#include "simulator/fault_file.h"
#include "simulator/options.h"
#include "simulator/output.h"
#include "simulator/reporter.h"
#include "simulator/server.h"
#include "simulator/start_values.h"
#include "simulator/talk.h"

#include <unistd.h>

#include <csignal>
#include <exception>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>

namespace {

using namespace dx4::sim;

constexpr std::uint64_t defaultSeed = 1;

CableSettings lineOf(const Options &options)
{
    CableSettings settings;
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

StartValues valuesOf(const Options &options)
{
    if (options.valueFile.empty())
        return {};
    StartValues values = readStartValues(options.valueFile);
    if (!values.good())
        throw std::invalid_argument(values.error);
    return values;
}

/// What stands in place of lines that found no room.
std::string gapLine(int count, bool json)
{
    return json ? "{\"event\":\"not-shown\",\"lines\":" + std::to_string(count) + "}\n"
                : std::to_string(count) + " lines not shown\n";
}

/// Never destroyed: the threads of the streams may still ask.
EndRequest &endRequest()
{
    static auto *const request = new EndRequest;
    return *request;
}

bool finish(std::optional<Output> &output)
{
    if (!output)
        return true;
    output->finish();
    return !output->lostSomething();
}

/// Serves until the end. @return the code to leave with
int serve(const Options &options, Output &standardOutput)
{
    FaultPlan plan = planOf(options);
    const StartValues values = valuesOf(options);
    std::optional<Output> log;
    std::optional<Output> capture;
    Port port = openPort(options);
    const SteadyClock clock;
    Bus bus;
    for (int station : options.stations)
        bus.add(station);
    const std::string wrong = setStartValues(values, bus);
    if (!wrong.empty())
        throw std::invalid_argument(wrong);
    Cable cable(bus, clock, lineOf(options), std::move(plan));
    EndRequest &end = endRequest();
    std::optional<DeviceLink> link; // behind the signals, which would leave it there
    if (!options.linkPath.empty())
        link.emplace(options.linkPath, port.path());

    if (!options.logFile.empty()) {
        log.emplace(options.logFile).tellGapsAs([](int count) { return gapLine(count, false); });
        cable.observe(ByteLog(log->stream()));
    }
    if (!options.captureFile.empty()) {
        capture.emplace(options.captureFile).onNothingWritten([&end] { end.ask(); });
        cable.observe(Capture(capture->stream()));
        capture->settle(); // its head
        if (capture->lostSomething())
            return DeviceError;
    }
    const bool json = options.json;
    standardOutput.tellGapsAs([json](int count) { return gapLine(count, json); });
    standardOutput.onNothingWritten([&end] { end.ask(); }); // else nobody knows the device
    Reporter reporter(standardOutput.stream(), json, isatty(STDOUT_FILENO) == 1);
    cable.observe([&reporter](const LineEvent &event) { reporter.event(event); });

    Commands commands(bus, cable, clock, reporter);
    Server server(port, cable, commands, clock, end);
    reporter.opened(options.pty ? "pty" : "port", port.path(), options.linkPath);
    server.run();
    standardOutput.finish();
    const bool isWhole = finish(log) && finish(capture) && !standardOutput.lostSomething();
    return isWhole ? Done : DeviceError;
}

/// The same; says what keeps it from serving.
int run(const Options &options, Output &standardOutput)
{
    try {
        return serve(options, standardOutput);
    } catch (const std::invalid_argument &error) {
        say(error.what());
        return UsageError;
    } catch (const std::exception &error) {
        say(error.what());
        return DeviceError;
    }
}

int readAndRun(int argc, char **argv)
{
    Output output(STDOUT_FILENO, "standard output");
    Options options;
    std::ostringstream errors;
    const std::optional<int> code = readOptions(argc, argv, options, output.stream(), errors);
    if (!code)
        return run(options, output);
    if (!errors.str().empty())
        say(errors.str());
    output.finish();
    return *code == Done && output.lostSomething() ? DeviceError : *code;
}

} // namespace

int main(int argc, char **argv)
{
    dx4::common::holdStandardStreams();
    // A reader who has had enough must not take the drives off the line, nor a file that must not
    // grow any more.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    const int code = readAndRun(argc, argv);
    settleTalk();
    return code;
}
