// SPDX-License-Identifier: MIT
// Logs what one station tells, without a thread; a signal stops the drive and ends the program.
#include "host/service/event_loop_service.h"
#include "host/writes/stop_signal.h"

#include <QCoreApplication>
#include <QSocketNotifier>
#include <QTextStream>

#include <utility>

using namespace dx4::host;

namespace {

void print(const QString &text)
{
    QTextStream(stdout) << text << '\n';
}

void printValues(const QVector<RegisterValue> &values)
{
    for (const RegisterValue &value : values)
        print(QStringLiteral("%1 %2: %3").arg(value.regType).arg(value.address).arg(value.text()));
}

} // namespace

int main(int argc, char **argv)
{
    const StopSignal signal;
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    QString error;
    auto scratch = Plugin::load(arguments.value(2), Plugin::Instance::PrivateCopy, &error);
    if (!scratch)
        qFatal("usage: event_loop_logger PORT DRIVER; %s", qPrintable(error));
    ServiceSettings settings;
    settings.runtime.stops = { { 1, 0 } }; // station 1 stops with CW 0
    Planner planner(std::move(scratch), settings.runtime.link);
    settings.plan = *planner.make({ { 1, QStringLiteral("D 0-9") } }, &error);

    LineSettings line;
    line.port = arguments.at(1);
    EventLoopService service(serialLine(line, arguments.at(2)), settings);
    QObject::connect(&service, &LineService::valuesChanged, printValues);
    QObject::connect(&service, &LineService::lineWentDown, print);
    QObject::connect(&service, &LineService::stopEnded, [](int, const StopReport &report) {
        print(report.text);
        QCoreApplication::exit(report.unconfirmed.isEmpty() ? 0 : 1);
    });
    QSocketNotifier notifier(signal.descriptor(), QSocketNotifier::Read);
    QObject::connect(&notifier, &QSocketNotifier::activated, &service, [&] {
        notifier.setEnabled(false);
        service.stop(std::chrono::seconds(2));
    });
    return QCoreApplication::exec();
}
