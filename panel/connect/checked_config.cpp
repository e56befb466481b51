// SPDX-License-Identifier: MIT
// A configuration file that was read and tried out.
#include "panel/connect/checked_config.h"

#include <QCoreApplication>
#include <QFile>

#include <algorithm>

namespace dx4::panel {
namespace {

struct CheckTexts {
    Q_DECLARE_TR_FUNCTIONS(dx4::panel::CheckedConfig)
};

QVector<int> addressesOf(const host::Config &config)
{
    QVector<int> addresses;
    for (const host::StationConfig &station : config.stations)
        addresses.append(station.address);
    return addresses;
}

} // namespace

CheckedConfig checkConfig(const QString &file, const MakePlan &makePlan)
{
    CheckedConfig checked;
    checked.file = file;
    QFile read(file);
    if (read.open(QIODevice::ReadOnly))
        checked.text = QString::fromUtf8(read.readAll()).split(QLatin1Char('\n'));
    const auto config = host::loadConfig(file, &checked.errors);
    const auto control = config ? host::loadControl(file, &checked.errors) : std::nullopt;
    if (!config || !control)
        return checked;
    checked.config = *config;
    checked.control = *control;
    if (!config->stop.controlWord)
        checked.errors.append({ 0,
                                CheckTexts::tr("[stop] has no control_word; the stop button needs "
                                               "the value of CW that stops a drive") });
    else if (control->run == config->stop.controlWord)
        checked.errors.append({ 0,
                                CheckTexts::tr("the control_word of [stop] starts drives; write "
                                               "under [control] the run that does") });
    const auto plan = makePlan(*config, &checked.errors);
    if (plan)
        checked.plan = *plan;
    return checked;
}

QString errorsText(const CheckedConfig &checked)
{
    QStringList lines;
    for (const host::ConfigError &error : checked.errors) {
        if (error.line > 0)
            lines.append(CheckTexts::tr("Line %1:  %2")
                             .arg(QString::number(error.line),
                                  checked.text.value(error.line - 1).trimmed()));
        lines.append(error.text);
        lines.append(QString());
    }
    return lines.join(QLatin1Char('\n')).trimmed();
}

QString newStartReason(const host::Config &running, const host::Config &wanted)
{
    return addressesOf(running) == addressesOf(wanted)
        ? QString()
        : CheckTexts::tr("It has other stations: start dx4-panel with it");
}

} // namespace dx4::panel
