// SPDX-License-Identifier: MIT
// The arguments of the panel.
#pragma once

#include <QString>

#include <optional>

namespace dx4::panel {

struct Options {
    QString config; ///< path of the configuration; empty with demo
    QString open; ///< path of a snapshot of a fault, which is shown instead of a line
    QString driver; ///< path of the driver's file; empty: looked for
    QString simulator; ///< path of dx4-sim; empty: looked for
    QString journal; ///< path of the journal; empty: the usual place
    bool noJournal = false; ///< none is kept
    bool demo = false; ///< simulated drives
    bool fullscreen = false;
};

/// Reads the arguments; help, version and what is wrong are told at once.
///
/// @param exitCode  out: what the program ends with where nothing is given back
std::optional<Options> parseOptions(int argc, char **argv, const char *version, int *exitCode);

} // namespace dx4::panel
