// SPDX-License-Identifier: MIT
// Commands, options and their help.
#include "cli/console/command_line.h"

#include "cli/console/exit_code.h"
#include "cli/console/interrupt.h"
#include "cli/console/nearest_word.h"
#include "cli/console/output.h"
#include "cli/console/usage_error.h"
#include "host/base/number_text.h"

#include <CLI/CLI.hpp>

#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace dx4::cli {
namespace {

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

Command::Command(CLI::App &app, QString words, int &exitCode)
    : m_app(app)
    , m_words(std::move(words))
    , m_exitCode(exitCode)
{
}

void Command::words(const char *name, QStringList &value, const char *help, const char *offer,
                    bool required, int most)
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
    option->required(required)->check(CLI::Validator(check, "", offer))->type_name("");
}

void Command::addOption(const char *option, const char *help, const QString &type,
                        const Check &check, const Take &take, const QString &usual)
{
    const auto text = [](const std::string &given) { return QString::fromStdString(given); };
    m_app
        .add_option_function<std::string>(
            option, [=](const std::string &given) { take(text(given)); }, help)
        ->check(CLI::Validator(
            [=](const std::string &given) { return check(text(given)).toStdString(); }, ""))
        ->type_name(type.toStdString())
        ->default_str(usual.toStdString());
}

void Command::number(const char *option, int &value, const char *help, int lowest, int highest,
                     bool *isGiven)
{
    const QString allowed = filled("%1 to %2", lowest, highest);
    const auto check = [=](const QString &word) {
        const std::optional<int> number = host::parseWholeNumber(word);
        if (number && *number >= lowest && *number <= highest)
            return QString();
        const char *what = number ? "is out of range" : "is no whole number";
        return filled("\"%1\" %2; %3 is allowed", word, what, allowed);
    };
    const auto take = [&value, isGiven](const QString &given) {
        value = host::parseWholeNumber(given).value_or(value);
        if (isGiven)
            *isGiven = true;
    };
    const bool isUsual = value >= lowest && value <= highest; // else it stands for "not given"
    addOption(option, help, filled("[%1-%2]", lowest, highest), check, take,
              isUsual ? QString::number(value) : QString());
}

void Command::text(const char *option, QString &value, const char *help, const char *placeholder)
{
    const QString type = QString::fromLatin1(placeholder);
    // A script whose variable is empty must not do the same as one that leaves the option out.
    const auto check = [type](const QString &given) {
        return given.isEmpty() ? filled("nothing given; %1 is needed", type) : QString();
    };
    addOption(
        option, help, type, check, [&value](const QString &given) { value = given; }, value);
}

void Command::choice(const char *option, QString &value, const char *help, const char *choices)
{
    const QString type = QString::fromLatin1(choices);
    const QStringList valid = type.split(QLatin1Char('|'));
    const auto check = [valid](const QString &word) {
        return valid.contains(word)
            ? QString()
            : filled("\"%1\" is none of %2%3", word, valid.join(QStringLiteral(", ")),
                     suggestion(word, valid));
    };
    addOption(
        option, help, type, check, [&value](const QString &given) { value = given; }, value);
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

/// A validator's name is shown nowhere.
void Command::offer(const char *option, const char *values)
{
    m_app.get_option(option)->get_validator(0)->name(values);
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
    help.words("command", m_helpWords, "such as get, or frames read; none: all of them", anyCommand,
               false);
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
    if (arguments.value(0) == QLatin1String("--complete")) { // a shell asks
        printLines(completionsOf(*m_app, arguments.mid(1)));
        return finishOutput(ExitDone);
    }
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
    return refuse(place, explainNoHelp(place));
}

int CommandLine::execute(const QStringList &arguments)
{
    m_app->footer(
        "Addresses are written as the drive shows them: F c.13, D 0-9, SW, 2:D 4.\n"
        "Exit codes: 0 done, 1 driver or file, 2 usage, 3 port or line, 4 no reply, 5 damaged,\n"
        "6 foreign, 7 refused, 8 values differ; dx4(1) says more.");
    const Place place = findPlace(*m_app, arguments);
    const QString empty = optionWithoutValue(place);
    if (!empty.isEmpty())
        return refuse(place, filled("%1: nothing given behind \"=\"", empty));
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
