// SPDX-License-Identifier: MIT
// What is wrong with the arguments, in the words of this program.
#include "cli/console/usage_error.h"

#include "cli/console/exit_code.h"
#include "cli/console/nearest_word.h"
#include "host/base/number_text.h"

#include <CLI/CLI.hpp>

#include <string>

namespace dx4::cli {
namespace {

QStringList commandNames(const CLI::App &app)
{
    QStringList names;
    for (const CLI::App *command : app.get_subcommands([](const CLI::App *) { return true; }))
        names.append(QString::fromStdString(command->get_name()));
    return names;
}

QStringList optionNames(const CLI::App &app)
{
    QStringList names;
    for (const CLI::Option *option : app.get_options()) {
        for (const std::string &name : option->get_lnames())
            names.append(QStringLiteral("--") + QString::fromStdString(name));
        for (const std::string &name : option->get_snames())
            names.append(QLatin1Char('-') + QString::fromStdString(name));
    }
    return names;
}

/// A letter is as near to one as to any other: only words are suggested.
QString noOption(const QString &name, const QStringList &known)
{
    return filled("no option \"%1\"%2", name, suggestion(name, known.filter(QStringLiteral("--"))));
}

QString notExpected(const QString &words)
{
    return filled("\"%1\" is not expected", words);
}

QString described(const CLI::Option &option)
{
    return filled("%1: %2", QString::fromStdString(option.get_name()),
                  QString::fromStdString(option.get_description()));
}

/// Options of a command and of all below it.
QStringList allOptionNames(const CLI::App &app)
{
    QStringList names = optionNames(app);
    for (const CLI::App *command : app.get_subcommands([](const CLI::App *) { return true; }))
        names += allOptionNames(*command);
    return names;
}

/// A word that ought to be a command.
QString explainCommand(const Place &place, const QStringList &commands)
{
    if (place.rest.isEmpty())
        return filled("a command is needed: %1", commands.join(QStringLiteral(", ")));
    const QString word = place.rest.constFirst();
    const QString name = word.section(QLatin1Char('='), 0, 0);
    if (!word.startsWith(QLatin1Char('-')))
        return filled("no command \"%1\"%2", word, suggestion(word, commands));
    const QStringList known = allOptionNames(*place.app);
    if (known.contains(name))
        return filled("%1 goes behind the command, such as dx4 get %1", name);
    return noOption(name, known);
}

/// The first word that looks like an option and is none; empty where there is no such word.
QString unknownOption(const Place &place)
{
    const QStringList known = optionNames(*place.app);
    for (const QString &word : place.rest) {
        QString name = word.section(QLatin1Char('='), 0, 0);
        const bool isNumber = host::parseDecimal(word.mid(1)).has_value();
        const bool isShort = name.size() == 2 && !known.contains(name);
        const bool isLong = name.startsWith(QLatin1String("--")) && !known.contains(name);
        if (name.startsWith(QLatin1Char('-')) && name.size() > 1 && !isNumber
            && name != QLatin1String("--") && (isShort || isLong))
            return name;
    }
    return QString();
}

/// What is missing, or has no value.
QString explainMissing(const CLI::App &app, const CLI::ParseError &error)
{
    QString text = QString::fromUtf8(error.what());
    const bool isRequired = dynamic_cast<const CLI::RequiredError *>(&error) != nullptr;
    const bool isMismatch = dynamic_cast<const CLI::ArgumentMismatch *>(&error) != nullptr;
    for (const CLI::Option *option : app.get_options()) {
        const bool isMissing = option->get_required() && option->count() == 0;
        if (isRequired && isMissing)
            return filled("nothing given for %1", described(*option));
        const QString name = QString::fromStdString(option->get_name());
        if (isMismatch && text.startsWith(name + QLatin1Char(':')))
            return filled("%1 given for %2",
                          option->count() == 0 ? QStringLiteral("no value")
                                               : QStringLiteral("too many values"),
                          described(*option));
    }
    return text;
}

/// Two options that were given and exclude each other; empty where there are none.
QString explainContradiction(const CLI::App &app)
{
    for (const CLI::Option *option : app.get_options()) {
        for (const CLI::Option *other : option->get_excludes()) {
            if (option->count() > 0 && other->count() > 0)
                return filled("%1 and %2 contradict each other; give one of them",
                              QString::fromStdString(option->get_name()),
                              QString::fromStdString(other->get_name()));
        }
    }
    return QString();
}

QString withHelp(const QString &text, const QString &command)
{
    const QString pointer = text.endsWith(QLatin1Char('?')) ? QStringLiteral("%1 See %2 --help")
                                                            : QStringLiteral("%1; see %2 --help");
    return pointer.arg(text, command);
}

} // namespace

Place findPlace(CLI::App &app, const QStringList &arguments)
{
    Place place { &app, {}, arguments };
    while (!place.rest.isEmpty() && commandNames(*place.app).contains(place.rest.constFirst())) {
        place.app = place.app->get_subcommand(place.rest.constFirst().toStdString());
        place.path.append(place.rest.takeFirst());
    }
    return place;
}

QString explainNoHelp(const Place &place)
{
    const QStringList commands = commandNames(*place.app);
    return commands.isEmpty() ? notExpected(place.rest.constFirst())
                              : explainCommand(place, commands);
}

QString explain(const Place &place, const CLI::ParseError &error)
{
    const QStringList commands = commandNames(*place.app);
    if (!commands.isEmpty())
        return explainCommand(place, commands);
    const QString option = unknownOption(place);
    if (!option.isEmpty())
        return noOption(option, optionNames(*place.app));
    if (dynamic_cast<const CLI::ExtrasError *>(&error))
        return notExpected(QString::fromUtf8(error.what()).section(QStringLiteral(": "), 1));
    const QString contradiction = explainContradiction(*place.app);
    return contradiction.isEmpty() ? explainMissing(*place.app, error) : contradiction;
}

int refuse(const Place &place, const QString &why)
{
    const QString command = place.path.join(QLatin1Char(' '));
    speakFor(command);
    return complain({ ExitUsage, withHelp(why, filled("dx4 %1", command).trimmed()) });
}

QString optionWithoutValue(const Place &place)
{
    const QStringList known = optionNames(*place.app);
    for (const QString &word : place.rest) {
        if (word == QLatin1String("--"))
            break;
        if (word.endsWith(QLatin1Char('=')) && known.contains(word.chopped(1)))
            return word.chopped(1);
    }
    return QString();
}

} // namespace dx4::cli
