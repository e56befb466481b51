// SPDX-License-Identifier: MIT
// Logs what one station tells, on a line with a thread of its own; Ctrl+C ends it.
#include "host/service/line_service.h"

#include <QCoreApplication>
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
        print(QStringLiteral("station %1, %2 %3: %4%5")
                  .arg(value.station)
                  .arg(value.regType)
                  .arg(value.address)
                  .arg(value.text(), value.state.stale ? QStringLiteral(" (stale)") : QString()));
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 3) {
        print(QStringLiteral("usage: service_logger PORT DRIVER"));
        return 2;
    }
    QString error;
    auto scratch = Plugin::load(arguments.at(2), Plugin::Instance::PrivateCopy, &error);
    if (!scratch) {
        print(error);
        return 1;
    }
    ServiceSettings settings;
    Planner planner(std::move(scratch), settings.runtime.link);
    settings.plan = *planner.make({ { 1, QStringLiteral("D 0-9") } }, &error);

    LineSettings line;
    line.port = arguments.at(1);
    LineService service(serialLine(line, arguments.at(2)), settings);
    QObject::connect(&service, &LineService::valuesChanged, printValues);
    QObject::connect(&service, &LineService::lineWentDown, print);
    QObject::connect(&service, &LineService::noticeGiven, print);
    return QCoreApplication::exec();
}
