// SPDX-License-Identifier: MIT
// Commands, options and their help. Only this and usage_error know the argument parser.
#pragma once

#include "cli/console/completion.h"

#include <functional>
#include <memory>

namespace dx4::cli {

/// One command while it is described. Variables bound to options must live as long as the command
/// line, as those do that action() gives.
class Command {
public:
    using Action = std::function<int()>;

    /// @param words  that call it, without the program's name
    Command(CLI::App &app, QString words, int &exitCode);

    /// Bare words behind the options.
    ///
    /// @param offer     what a shell offers for them, as completion.h has it
    /// @param required  at least one
    /// @param most      of them; 0: any number
    void words(const char *name, QStringList &value, const char *help, const char *offer,
               bool required = true, int most = 0);

    /// An option with a whole number within its limits.
    ///
    /// @param isGiven  set where the option is; may be null
    void number(const char *option, int &value, const char *help, int lowest, int highest,
                bool *isGiven = nullptr);

    /// An option with a text. @param placeholder  how the help calls it
    void text(const char *option, QString &value, const char *help, const char *placeholder);

    /// An option with one of several texts, "high|low".
    void choice(const char *option, QString &value, const char *help, const char *valid);
    void flag(const char *option, bool &value, const char *help);

    /// Two options of this command that contradict each other: a user who gives both is told so.
    void excludes(const char *option, const char *other);

    /// Takes an option away again which this command has no use for.
    void without(const char *option);

    /// What a shell offers for an option's value; else its choices, files for FILE, and so on.
    void offer(const char *option, const char *values);

    /// A paragraph behind the options in the help; goes before the examples.
    void remark(const char *text);

    /// A command line that the help shows, with what it does.
    void example(const char *line, const char *meaning);

    /// A command of this one.
    Command sub(const char *name, const char *summary);

    /// Done before the action; a result other than 0 ends the command with it.
    void prepare(Action step);

    /// What it does; the result is the exit code.
    void action(Action action);

    /// The same with options. @return these, which live as long as the command line
    template <typename Options> Options &action(int (*run)(const Options &))
    {
        const auto options = std::make_shared<Options>();
        action([options, run] { return run(*options); });
        return *options;
    }

private:
    using Check = std::function<QString(const QString &)>; ///< what is wrong; empty: nothing
    using Take = std::function<void(const QString &)>;

    void addOption(const char *option, const char *help, const QString &type, const Check &check,
                   const Take &take, const QString &usual);

    CLI::App &m_app;
    QString m_words;
    int &m_exitCode;
    std::shared_ptr<Action> m_prepare = std::make_shared<Action>();
};

/// The program's arguments.
class CommandLine {
public:
    /// Has the command "help" already.
    ///
    /// @param version  what --version prints
    explicit CommandLine(const char *version);
    ~CommandLine();
    CommandLine(const CommandLine &) = delete;
    CommandLine &operator=(const CommandLine &) = delete;

    Command add(const char *name, const char *summary);

    /// Parses, runs the command, gives the exit code. What is wrong with the arguments goes to
    /// standard error with the nearest valid word.
    int run(int argc, char **argv);

private:
    int execute(const QStringList &arguments);
    int help(const QStringList &words);

    std::unique_ptr<CLI::App> m_app;
    QStringList m_helpWords;
    int m_exitCode = 0;
};

} // namespace dx4::cli
