// SPDX-License-Identifier: MIT
// What a file of commands asks for.
#pragma once

#include "cli/line/line_options.h"
#include "cli/registers/values.h"

namespace dx4::cli {

/// One line of the file.
struct BatchStep {
    enum class Kind { Set, Get, Wait, Stop };

    int line = 0; ///< of the file, from 1
    Kind kind = Kind::Wait;
    Setting setting; ///< of Set
    QVector<Target> targets; ///< of Get
    host::Duration wait { 0 }; ///< of Wait
    int station = 1; ///< of Stop
};

/// Reads commands, one a line: "set F 8.2 20", "set name=value", "get D 0-9 SW", "wait 500" in ms,
/// "stop" or "stop 2". Blank lines, and what stands behind "#" at the beginning of a line or behind
/// a blank, are passed over.
///
/// @param errors  out: all that is wrong, each with its line
std::optional<QVector<BatchStep>> parseBatch(const QString &text, const LineOptions &options,
                                             const host::DriverApi &api,
                                             QVector<host::ConfigError> *errors);

} // namespace dx4::cli
