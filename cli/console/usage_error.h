// SPDX-License-Identifier: MIT
// What is wrong with the arguments, in the words of this program.
#pragma once

#include <QString>
#include <QStringList>

namespace CLI {
class App;
class ParseError;
} // namespace CLI

namespace dx4::cli {

/// Words of a user, as far as they name commands, and what is behind them.
struct Place {
    CLI::App *app; ///< the command
    QStringList path; ///< its words
    QStringList rest;
};

/// Follows the words down to the command that they name.
Place findPlace(CLI::App &app, const QStringList &arguments);

/// An option of the command with nothing behind its "=", as a script with an empty variable writes
/// it: the parser would take the next word for the value. Empty where there is none.
QString optionWithoutValue(const Place &place);

/// Why no help can be given for the word behind a command.
QString explainNoHelp(const Place &place);

/// What is wrong, in the words of this program where it knows better than the parser.
QString explain(const Place &place, const CLI::ParseError &error);

/// Says so on standard error, and where the help is. @return the exit code
int refuse(const Place &place, const QString &why);

} // namespace dx4::cli
