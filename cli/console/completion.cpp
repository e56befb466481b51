// SPDX-License-Identifier: MIT
// What a shell offers for the last word of a command line.
#include "cli/console/completion.h"

#include "cli/console/usage_error.h"
#include "host/config/config.h"
#include "host/line/port_list.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <string>

namespace dx4::cli {
namespace {

QStringList commandsBelow(const CLI::App &app)
{
    QStringList lines;
    for (const CLI::App *command : app.get_subcommands([](const CLI::App *) { return true; }))
        lines << QString::fromStdString(command->get_name() + '\t' + command->get_description());
    return lines;
}

/// Those that are not given yet. The help, which stands first, goes last.
QStringList optionsOf(const Place &place)
{
    QStringList lines;
    for (const CLI::Option *option : place.app->get_options()) {
        const std::string name = "--" + option->get_single_name();
        if (!option->get_positional() && !place.rest.contains(QString::fromStdString(name)))
            lines << QString::fromStdString(name + '\t' + option->get_description());
    }
    if (!lines.isEmpty())
        std::rotate(lines.begin(), lines.begin() + 1, lines.end());
    return lines;
}

/// The option whose value comes next, else the one that takes bare words; null where none does.
CLI::Option *optionAt(const Place &place)
{
    const std::string before = place.rest.isEmpty() ? "" : place.rest.constLast().toStdString();
    CLI::Option *words = nullptr;
    for (CLI::Option *option : place.app->get_options()) {
        if (option->get_positional())
            words = option;
        else if (option->get_items_expected_max() > 0 && option->check_name(before))
            return option;
    }
    return words;
}

/// Where the option does not say it its type does: "high|low", "FILE", "DEVICE", "[1-247]".
QString offerOf(CLI::Option &option)
{
    const std::string named = option.get_validator(0)->get_name();
    const QString type = QString::fromStdString(option.get_type_name());
    if (!named.empty())
        return QString::fromStdString(named);
    if (type == QLatin1String("FILE") || type == QLatin1String("DEVICE"))
        return QLatin1String(type == QLatin1String("FILE") ? anyFile : anyPort);
    return type.contains(QLatin1Char('|')) ? type.split(QLatin1Char('|')).join(QLatin1Char(' '))
                                           : QString();
}

QStringList valuesOf(const QString &offer, const Place &place, bool isBegun)
{
    QStringList lines;
    if (offer == QLatin1String(anyCommand))
        return commandsBelow(*findPlace(*place.app->get_parent(), place.rest).app);
    if (offer == QLatin1String(anyPort) && isBegun)
        return { QLatin1String(anyFile) };
    if (offer == QLatin1String(anyPort)) {
        for (const host::PortInfo &port : host::listPorts())
            lines << port.device + QLatin1Char('\t') + port.description;
        return lines;
    }
    const auto at = place.rest.indexOf(QLatin1String("--config"));
    if (offer == QLatin1String(anyStation) && at >= 0) {
        QVector<host::ConfigError> errors;
        const auto config = host::loadConfig(place.rest.value(at + 1), &errors);
        for (const auto &station : config.value_or(host::Config()).stations)
            lines << QString::number(station.address);
    }
    if (offer == QLatin1String(anyStation))
        return lines;
    return offer.startsWith(QLatin1Char(':')) ? QStringList { offer }
                                              : offer.split(QLatin1Char(' '));
}

} // namespace

QStringList completionsOf(CLI::App &app, QStringList words)
{
    QString begun = words.isEmpty() ? QString() : words.takeLast();
    if (begun == QLatin1String("=")) // bash makes a word of it
        begun.clear();
    words.removeAll(QStringLiteral("="));
    const Place place = findPlace(app, words);
    CLI::Option *option = optionAt(place);
    if (begun.startsWith(QLatin1Char('-')) && (!option || option->get_positional()))
        return optionsOf(place);
    return option ? valuesOf(offerOf(*option), place, !begun.isEmpty()) : commandsBelow(*place.app);
}

} // namespace dx4::cli
