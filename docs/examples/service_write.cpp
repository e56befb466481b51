// SPDX-License-Identifier: MIT
// Writes the set frequency of station 1 and ends with the outcome.
#include "host/service/line_service.h"

#include <QCoreApplication>
#include <QTextStream>

using namespace dx4::host;

namespace {

/// The line is open when the service says so: a write before that would be refused.
void writeWhenOpen(LineService &service, quint16 frequency)
{
    QObject::connect(&service, &LineService::lineOpened, &service, [&service, frequency] {
        service.submit({ 1, QStringLiteral("FRE"), 0, { frequency } });
    });
    QObject::connect(&service, &LineService::writeEnded, &service, [](const WriteOutcome &outcome) {
        QTextStream(stdout) << outcome.text << '\n';
        QCoreApplication::exit(outcome.end == WriteEnd::Confirmed ? 0 : 1);
    });
    QObject::connect(&service, &LineService::lineWentDown, &service, [](const QString &reason) {
        QTextStream(stderr) << reason << '\n';
        QCoreApplication::exit(1);
    });
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 4) {
        QTextStream(stderr) << "usage: service_write PORT DRIVER FREQUENCY\n";
        return 2;
    }
    LineSettings line;
    line.port = arguments.at(1);
    LineService service(serialLine(line, arguments.at(2)));
    writeWhenOpen(service, arguments.at(3).toUShort());
    return QCoreApplication::exec();
}
