// SPDX-License-Identifier: MIT
// A host on the installed library: it finds the driver, polls a line in memory, and ends a service.
#include <host/config/config.h>
#include <host/line/memory_line.h>
#include <host/plan/plan.h>
#include <host/runtime/runtime.h>
#include <host/service/line_service.h>

#include <QCoreApplication>

#include <cstdio>

#ifndef PLUGIN
#define PLUGIN ""
#endif

using namespace dx4::host;

namespace {

/// Station 1 with 77 in every register, as a reply to one read of "D 5".
MemoryLine::Answer answer(const QByteArray &request)
{
    const QByteArray read = QByteArray::fromHex("0103d0050001");
    return { request.startsWith(read) ? QByteArray::fromHex("010302004d7871") : QByteArray(), {} };
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QString file = locateDriver(QString::fromLocal8Bit(PLUGIN)).path;
    QString error;
    auto checks = Plugin::load(file, Plugin::Instance::PrivateCopy, &error);
    auto driver = Plugin::load(file, Plugin::Instance::Shared, &error);
    if (!checks || !driver) {
        std::fprintf(stderr, "%s\n", qPrintable(error));
        return 1;
    }
    Planner planner(std::move(checks), LinkSettings());
    const auto plan = planner.make({ { 1, QStringLiteral("D 5") } }, &error);
    MemoryLine line(answer);
    Runtime runtime(std::move(driver), line, RuntimeSettings());
    runtime.setPlan(*plan);
    runtime.run([&runtime] { return runtime.counters().attempts() >= 1; });
    const Value value = runtime.value(1, QStringLiteral("D"), 5);
    std::printf("D 5 is %d, %s\n", value.value, value.known ? "known" : "unknown");

    QVector<ConfigError> errors;
    const bool isRefused = !parseConfig("[station]\n", &errors);
    const LineService service([] { return LineParts(); });
    return value.known && value.value == 77 && isRefused ? 0 : 1;
}
