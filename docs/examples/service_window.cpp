// SPDX-License-Identifier: MIT
// A window with one value, kept up to date by a service.
#include "host/service/line_service.h"

#include <QApplication>
#include <QLabel>

#include <utility>

using namespace dx4::host;

namespace {

/// Whatever led to the signal: the snapshot has the newest value and all that is known of it.
void show(QLabel &label, const LineService &service)
{
    const auto snapshot = service.snapshot();
    const RegisterValue *value = snapshot->find(1, QStringLiteral("D"), 0);
    label.setText(value ? value->text() : QStringLiteral("-"));
    label.setEnabled(value && !value->state.stale);
    label.setToolTip(snapshot->downReason);
}

} // namespace

int main(int argc, char **argv)
{
    const QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    QString error;
    auto scratch = Plugin::load(arguments.value(2), Plugin::Instance::PrivateCopy, &error);
    if (!scratch)
        qFatal("usage: service_window PORT DRIVER; %s", qPrintable(error));
    ServiceSettings settings;
    Planner planner(std::move(scratch), settings.runtime.link);
    settings.plan = *planner.make({ { 1, QStringLiteral("D 0") } }, &error);

    LineSettings line;
    line.port = arguments.at(1);
    QLabel label(QStringLiteral("-"));
    LineService service(serialLine(line, arguments.at(2)), settings);
    const auto refresh = [&] { show(label, service); };
    QObject::connect(&service, &LineService::valuesChanged, &label, refresh);
    QObject::connect(&service, &LineService::lineWentDown, &label, refresh);
    QObject::connect(&service, &LineService::lineOpened, &label, refresh);
    label.show();
    return QApplication::exec();
}
