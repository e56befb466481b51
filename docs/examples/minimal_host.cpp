// SPDX-License-Identifier: MIT
// The least that a host does: poll one station until a signal comes, write once, stop, print the
// counters.
#include "host/line/serial_line.h"
#include "host/runtime/runtime.h"
#include "host/writes/stop_signal.h"

#include <QCoreApplication>
#include <QJsonDocument>

#include <cstdio>

using namespace dx4::host;

namespace {

int fail(const QString &error)
{
    std::fprintf(stderr, "%s\n", qPrintable(error));
    return 1;
}

int runHost(const QString &port, const QString &driver)
{
    LineSettings lineSettings;
    lineSettings.port = port;
    SerialLine line(lineSettings);

    StopSignal signal;
    RuntimeSettings settings;
    settings.pause = [&signal](Duration span) { signal.wait(span); };
    settings.stops = { { 1, 0 } }; // station 1 stops with CW 0

    QString error;
    auto scratch = Plugin::load(driver, Plugin::Instance::PrivateCopy, &error);
    auto plugin = Plugin::load(driver, Plugin::Instance::Shared, &error);
    if (!scratch || !plugin)
        return fail(error);
    Planner planner(std::move(scratch), settings.link);
    const auto plan =
        planner.make({ { 1, QStringLiteral("D 0-9") }, { 1, QStringLiteral("SW") } }, &error);
    if (!plan)
        return fail(error);

    Runtime runtime(std::move(plugin), line, settings);
    runtime.setPlan(*plan);
    runtime.onOutcome([](const WriteOutcome &outcome) { std::puts(qPrintable(outcome.text)); });
    runtime.onAlarm([](const QString &text) { std::fprintf(stderr, "%s\n", qPrintable(text)); });

    bool written = false;
    runtime.run([&] {
        const Value status = runtime.value(1, QStringLiteral("SW"), 0);
        if (status.known && !written) {
            runtime.write({ 1, QStringLiteral("FRE"), 0, { 2500 } });
            written = true;
        }
        return signal.hasCome();
    });

    const StopReport stop = runtime.stop(std::chrono::seconds(2));
    std::puts(QJsonDocument(runtime.countersJson()).toJson().constData());
    if (!runtime.lineError().isEmpty())
        return fail(runtime.lineError());
    return stop.unconfirmed.isEmpty() ? 0 : 1;
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv); // the serial port wants one, and no event loop
    if (argc != 3) {
        std::fprintf(stderr, "usage: %s PORT DRIVER\n", argv[0]);
        return 2;
    }
    return runHost(QString::fromLocal8Bit(argv[1]), QString::fromLocal8Bit(argv[2]));
}
