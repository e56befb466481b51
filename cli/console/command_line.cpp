// SPDX-License-Identifier: MIT
// Commands, options and their help; the only place that knows the argument parser.
#include "cli/console/command_line.h"

#include "cli/console/exit_code.h"
#include "cli/console/interrupt.h"
#include "cli/console/nearest_word.h"
#include "cli/console/output.h"
#include "host/base/number_text.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

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
QStringList longNames(const QStringList &names)
{
    return names.filter(QStringLiteral("--"));
}

/// Follows the words down to the command that they name.
struct Place {
    const CLI::App *app;
    QStringList path;
    QStringList rest;
};

Place findPlace(const CLI::App &app, const QStringList &arguments)
{
    Place place { &app, {}, arguments };
    while (!place.rest.isEmpty() && commandNames(*place.app).contains(place.rest.constFirst())) {
        place.app = place.app->get_subcommand(place.rest.constFirst().toStdString());
        place.path.append(place.rest.takeFirst());
    }
    return place;
}

QString described(const CLI::Option &option)
{
    return QStringLiteral("%1: %2").arg(QString::fromStdString(option.get_name()),
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
        return QStringLiteral("a command is needed: %1").arg(commands.join(QStringLiteral(", ")));
    const QString word = place.rest.constFirst();
    const QString name = word.section(QLatin1Char('='), 0, 0);
    if (!word.startsWith(QLatin1Char('-')))
        return QStringLiteral("no command \"%1\"%2").arg(word, suggestion(word, commands));
    const QStringList known = allOptionNames(*place.app);
    if (known.contains(name))
        return QStringLiteral("%1 goes behind the command, such as dx4 get %1").arg(name);
    return QStringLiteral("no option \"%1\"%2").arg(name, suggestion(name, longNames(known)));
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
            return QStringLiteral("nothing given for %1").arg(described(*option));
        const QString name = QString::fromStdString(option->get_name());
        if (isMismatch && text.startsWith(name + QLatin1Char(':')))
            return QStringLiteral("%1 given for %2")
                .arg(option->count() == 0 ? QStringLiteral("no value")
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
                return QStringLiteral("%1 and %2 contradict each other; give one of them")
                    .arg(QString::fromStdString(option->get_name()),
                         QString::fromStdString(other->get_name()));
        }
    }
    return QString();
}

/// What is wrong, in the words of this program where it knows better than the parser.
QString explain(const Place &place, const CLI::ParseError &error)
{
    const QStringList commands = commandNames(*place.app);
    if (!commands.isEmpty())
        return explainCommand(place, commands);
    const QString option = unknownOption(place);
    if (!option.isEmpty())
        return QStringLiteral("no option \"%1\"%2")
            .arg(option, suggestion(option, longNames(optionNames(*place.app))));
    if (dynamic_cast<const CLI::ExtrasError *>(&error)) {
        const QString words = QString::fromUtf8(error.what()).section(QStringLiteral(": "), 1);
        return QStringLiteral("\"%1\" is not expected").arg(words);
    }
    const QString contradiction = explainContradiction(*place.app);
    return contradiction.isEmpty() ? explainMissing(*place.app, error) : contradiction;
}

QString withHelp(const QString &text, const QString &command)
{
    const QString pointer = text.endsWith(QLatin1Char('?')) ? QStringLiteral("%1 See %2 --help")
                                                            : QStringLiteral("%1; see %2 --help");
    return pointer.arg(text, command);
}

int refuse(const Place &place, const QString &why)
{
    const QString command = place.path.join(QLatin1Char(' '));
    speakFor(command);
    return complain({ ExitUsage, withHelp(why, QStringLiteral("dx4 %1").arg(command).trimmed()) });
}

/// An option of the command with nothing behind its "=", as a script with an empty variable writes
/// it: the parser would take the next word for the value. Empty where there is none.
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

/// The code of a command whose output is written, as far as that was possible.
int judged(int exitCode)
{
    const QString loss = outputLoss();
    if (loss.isEmpty())
        return exitCode;
    const int lost = complain({ ExitFailed, QStringLiteral("standard output: ") + loss });
    return finishOutput(exitCode == ExitDone ? lost : exitCode);
}

} // namespace

Command::Command(CLI::App &app, const QString &words, int &exitCode)
    : m_app(app)
    , m_words(words)
    , m_exitCode(exitCode)
{
}

void Command::words(const char *name, QStringList &value, const char *help, bool required, int most)
{
    CLI::Option *option = m_app.add_option_function<std::vector<std::string>>(
        name,
        [&value](const std::vector<std::string> &words) {
            for (const std::string &word : words)
                value.append(QString::fromStdString(word));
        },
        help);
    if (most > 0)
        option->expected(1, most);
    // An unset variable of a script would leave a word out, and the next one would take its place.
    const auto check = [](const std::string &word) {
        const bool isEmpty = QString::fromStdString(word).trimmed().isEmpty();
        return isEmpty ? std::string("one word has nothing in it") : std::string();
    };
    option->required(required)->check(CLI::Validator(check, ""))->type_name("");
}

void Command::number(const char *option, int &value, const char *help, int lowest, int highest,
                     bool *isGiven)
{
    const QString allowed = QStringLiteral("%1 to %2").arg(lowest).arg(highest);
    const auto check = [=](const std::string &given) {
        const QString word = QString::fromStdString(given);
        const std::optional<int> number = host::parseWholeNumber(word);
        if (number && *number >= lowest && *number <= highest)
            return std::string();
        const char *what = number ? "is out of range" : "is no whole number";
        return QStringLiteral("\"%1\" %2; %3 is allowed")
            .arg(word, QString::fromLatin1(what), allowed)
            .toStdString();
    };
    CLI::Option *added = m_app.add_option_function<std::string>(
        option,
        [&value, isGiven](const std::string &given) {
            value = host::parseWholeNumber(QString::fromStdString(given)).value_or(value);
            if (isGiven)
                *isGiven = true;
        },
        help);
    added->check(CLI::Validator(check, ""))
        ->type_name(QStringLiteral("[%1-%2]").arg(lowest).arg(highest).toStdString());
    if (value >= lowest && value <= highest) // else it stands for "not given"
        added->default_str(std::to_string(value));
}

void Command::text(const char *option, QString &value, const char *help, const char *placeholder)
{
    // A script whose variable is empty must not do the same as one that leaves the option out.
    const std::string missing = std::string("nothing given; ") + placeholder + " is needed";
    const auto check = [missing](const std::string &given) {
        return given.empty() ? missing : std::string();
    };
    m_app
        .add_option_function<std::string>(
            option, [&value](const std::string &given) { value = QString::fromStdString(given); },
            help)
        ->check(CLI::Validator(check, ""))
        ->type_name(placeholder)
        ->default_str(value.toStdString());
}

void Command::choice(const char *option, QString &value, const char *help, const QStringList &valid)
{
    const auto check = [valid](const std::string &given) {
        const QString word = QString::fromStdString(given);
        if (valid.contains(word))
            return std::string();
        return QStringLiteral("\"%1\" is none of %2%3")
            .arg(word, valid.join(QStringLiteral(", ")), suggestion(word, valid))
            .toStdString();
    };
    m_app
        .add_option_function<std::string>(
            option, [&value](const std::string &given) { value = QString::fromStdString(given); },
            help)
        ->check(CLI::Validator(check, ""))
        ->type_name(valid.join(QLatin1Char('|')).toStdString())
        ->default_str(value.toStdString());
}

void Command::flag(const char *option, bool &value, const char *help)
{
    m_app.add_flag(option, value, help);
}

void Command::excludes(const char *option, const char *other)
{
    m_app.get_option(option)->excludes(m_app.get_option(other));
}

void Command::without(const char *option)
{
    m_app.remove_option(m_app.get_option(option));
}

void Command::remark(const char *text)
{
    m_app.footer(text);
}

void Command::example(const char *line, const char *meaning)
{
    std::string footer = m_app.get_footer();
    if (footer.find("Examples:") == std::string::npos)
        footer += footer.empty() ? "Examples:" : "\n\nExamples:";
    m_app.footer(footer + "\n  $ " + line + "\n      " + meaning);
}

Command Command::sub(const char *name, const char *summary)
{
    m_app.require_subcommand(1);
    return Command(*m_app.add_subcommand(name, summary),
                   m_words + QLatin1Char(' ') + QString::fromLatin1(name), m_exitCode);
}

void Command::prepare(Action step)
{
    *m_prepare = std::move(step);
}

void Command::action(Action action)
{
    m_app.callback(
        [words = m_words, prepare = m_prepare, action = std::move(action), exitCode = &m_exitCode] {
            speakFor(words);
            *exitCode = *prepare ? (*prepare)() : 0;
            if (*exitCode == 0)
                *exitCode = action();
        });
}

CommandLine::CommandLine(const char *version)
    : m_app(std::make_unique<CLI::App>("Talks to a frequency inverter through its driver.", "dx4"))
{
    m_app->set_version_flag("--version", version);
    m_app->require_subcommand(1);
    Command help = add("help", "print the help of a command");
    help.words("command", m_helpWords, "such as get, or frames read; none: all of them", false);
    help.example("dx4 help frames read", "the same as dx4 frames read --help");
    help.action([] { return ExitDone; }); // found by its name before the parser is asked
}

CommandLine::~CommandLine() = default;

Command CommandLine::add(const char *name, const char *summary)
{
    return Command(*m_app->add_subcommand(name, summary), QString::fromLatin1(name), m_exitCode);
}

int CommandLine::run(int argc, char **argv)
{
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    const bool isHelp = !arguments.isEmpty() && arguments.constFirst() == QLatin1String("help")
        && !arguments.value(1).startsWith(QLatin1Char('-'));
    const int ended = isHelp ? help(arguments.mid(1)) : execute(arguments);
    speakFor(QString());
    const int exitCode = finishOutput(ended);
    return quitAsked() ? ExitQuit : judged(exitCode);
}

int CommandLine::help(const QStringList &words)
{
    const Place place = findPlace(*m_app, words);
    if (place.rest.isEmpty())
        return execute(words + QStringList { QStringLiteral("--help") });
    const QStringList commands = commandNames(*place.app);
    const QString &word = place.rest.constFirst();
    return refuse(place,
                  commands.isEmpty() ? QStringLiteral("\"%1\" is not expected").arg(word)
                                     : explainCommand(place, commands));
}

int CommandLine::execute(const QStringList &arguments)
{
    m_app->footer("Addresses are written as the drive shows them: F c.13, D 0-9, SW, 2:D 4.\n"
                  "Exit codes: 0 done, 1 device or line, 2 usage; dx4(1) lists them all.");
    const Place place = findPlace(*m_app, arguments);
    const QString empty = optionWithoutValue(place);
    if (!empty.isEmpty())
        return refuse(place, QStringLiteral("%1: nothing given behind \"=\"").arg(empty));
    try {
        std::vector<std::string> words; // the last one first, as the parser takes them
        for (const QString &argument : arguments)
            words.insert(words.begin(), argument.toLocal8Bit().toStdString());
        m_app->parse(words);
    } catch (const CLI::Success &wanted) { // --help and --version
        std::ostringstream text;
        m_exitCode = m_app->exit(wanted, text);
        writeText(QString::fromStdString(text.str()));
    } catch (const CLI::ParseError &error) {
        return refuse(place, explain(place, error));
    }
    return m_exitCode;
}

} // namespace dx4::cli
