// SPDX-License-Identifier: MIT
// Keeps a line until a signal comes, then stops station 1 and says whether it confirmed.
#include "host/service/line_service.h"
#include "host/writes/stop_signal.h"

#include <QCoreApplication>
#include <QSocketNotifier>
#include <QTextStream>

using namespace dx4::host;

int main(int argc, char **argv)
{
    const StopSignal signal; // before any other thread starts
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 3) {
        QTextStream(stderr) << "usage: service_stop PORT DRIVER\n";
        return 2;
    }
    LineSettings line;
    line.port = arguments.at(1);
    ServiceSettings settings;
    settings.runtime.stops = { { 1, 0 } }; // station 1 stops with CW 0
    LineService service(serialLine(line, arguments.at(2)), settings);

    // A program whose event loop may hang calls stop() from a thread that waits for the descriptor.
    QSocketNotifier notifier(signal.descriptor(), QSocketNotifier::Read);
    QObject::connect(&notifier, &QSocketNotifier::activated, &service, [&] {
        notifier.setEnabled(false);
        service.stop(std::chrono::seconds(2));
    });
    QObject::connect(&service, &LineService::lineOpened,
                     [] { QTextStream(stdout) << "the line is open\n"; });
    QObject::connect(&service, &LineService::stopEnded, &service,
                     [](int, const StopReport &report) {
                         QTextStream(stdout) << report.text << '\n';
                         QCoreApplication::exit(report.unconfirmed.isEmpty() ? 0 : 1);
                     });
    return QCoreApplication::exec();
}
