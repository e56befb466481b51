// SPDX-License-Identifier: MIT
// How much of a serial line's time carries what was asked for: the reference host, and libmodbus
// that reads the same blocks with the same silence between them.
#include "line_peer.h"
#include "simulated_drives.h"

#include "host/line/serial_line.h"
#include "host/runtime/runtime.h"

#include <CLI/CLI.hpp>

#include <QCoreApplication>

#include <cstdio>
#include <stdexcept>

using namespace bench;
using namespace dx4::host;

namespace {

/// What each station is asked for: as many registers of a drive as stand in a row, then the next.
QStringList wishes(int registers)
{
    if (registers == 1)
        return { QStringLiteral("SW") };
    if (registers == 16)
        return { QStringLiteral("D 0-15") };
    return { QStringLiteral("D 0-31"),     QStringLiteral("F 0.0-0.18"),
             QStringLiteral("F 1.0-1.18"), QStringLiteral("F 2.0-2.18"),
             QStringLiteral("F 3.0-3.16"), QStringLiteral("F 4.0-4.13") };
}

std::unique_ptr<Plugin> driver()
{
    QString error;
    auto plugin = Plugin::load(QString::fromLocal8Bit(KORVANE_PLUGIN_FILE),
                               Plugin::Instance::PrivateCopy, &error);
    if (!plugin)
        throw std::runtime_error(error.toStdString());
    return plugin;
}

Plan planFor(const Load &load, const LinkSettings &link)
{
    QVector<PlanEntry> entries;
    for (int station = 1; station <= load.stations; ++station) {
        for (const QString &wish : wishes(load.registers))
            entries.append({ station, wish });
    }
    QString error;
    const auto plan = Planner(driver(), link).make(entries, &error);
    if (!plan)
        throw std::runtime_error(error.toStdString());
    return *plan;
}

/// Polls by the runtime as a host would.
Share shareOfHost(const LineSettings &settings, const Plan &plan, Duration span)
{
    SerialLine line(settings);
    Runtime runtime(driver(), line, RuntimeSettings());
    runtime.setPlan(plan);
    Meter meter(settings, span);
    while (meter.goesOn()) {
        if (runtime.step() != Runtime::Step::Served)
            throw std::runtime_error("the host got no reply");
        meter.count(blockOf(runtime.cycle().request()).count);
    }
    return meter.share();
}

void printRow(const Load &load, const Share &host, const Share &peer)
{
    std::printf("| %d | %d | %d | %.2f | %.2f | %.2f | %.0f us | %.0f us |\n", load.speed,
                load.stations, load.registers, host.wire, peer.wire, host.wire / peer.wire,
                host.processorTime, peer.processorTime);
    std::fflush(stdout);
}

void measure(const Load &load, Duration span)
{
    const SimulatedDrives drives(load);
    LineSettings settings;
    settings.port = drives.port();
    settings.speed = load.speed;
    const Plan plan = planFor(load, LinkSettings());
    const Share host = shareOfHost(settings, plan, span);
    printRow(load, host, shareOfPeer(settings, plan, span));
}

} // namespace

int main(int count, char **words)
{
    const QCoreApplication application(count, words);
    CLI::App app("Measures the share of a line's time that carries wanted registers.");
    double seconds = 4;
    std::vector<int> speeds { 9600, 19200, 115200 };
    app.add_option("--seconds", seconds, "measured for each row and way")
        ->check(CLI::Range(0.1, 3600.0))
        ->capture_default_str();
    app.add_option("--speed", speeds, "of the line, bit/s; may be given several times")
        ->capture_default_str();
    try {
        app.parse(count, words);
    } catch (const CLI::ParseError &error) {
        return app.exit(error) == 0 ? 0 : 2;
    }
    const auto span = std::chrono::duration_cast<Duration>(std::chrono::duration<double>(seconds));
    std::puts("| bit/s | stations | registers of each | host | libmodbus | ratio | "
              "processor time of a read, host | libmodbus |\n|---|---|---|---|---|---|---|---|");
    try {
        for (int speed : speeds) {
            for (int stations : { 1, 8, 31 }) {
                for (int registers : { 1, 16, 120 })
                    measure({ speed, stations, registers }, span);
            }
        }
    } catch (const std::exception &error) {
        std::fprintf(stderr, "korvane_line_bench: %s\n", error.what());
        return 1;
    }
    return 0;
}
