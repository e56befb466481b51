// SPDX-License-Identifier: MIT
// The line that a command works on: options, and the configuration behind them.
#pragma once

#include "cli/console/command_line.h"
#include "cli/registers/target.h"
#include "host/config/config.h"

namespace dx4::cli {

// bit/s
inline constexpr int slowestSpeed = 300;
inline constexpr int fastestSpeed = 4000000;

/// What every command with a line lets a user set. Options go before the configuration file, that
/// before what is usual.
struct LineOptions {
    QString driver;
    QString config; ///< TOML file; empty: none
    QString port;
    QString format; ///< "8N1"
    int speed = 0; ///< bit/s; 0: not given
    int station =
        0; ///< of addresses that name none; 0: not given, and the configuration has several
    bool stationIsGiven = false; ///< by the option itself
    int timeout = 0; ///< ms from the end of a request to the first byte of its reply; 0: not given
    int retries = -1; ///< repetitions of a request that was not answered; -1: not given
    int block = 0; ///< most registers of one request; 0: not given
    bool json = false;
    bool shared = false; ///< beside a program that has the port open without a lock
    bool trace = false; ///< frames are shown on standard error

    QStringList given; ///< options that a second command needs to stop the same drive, port apart
    QStringList registers; ///< of the configuration, as splitTargets() takes them
    host::Config plant; ///< the configuration, with the options in place of what they replace
};

/// Station of addresses that name none.
UsualStation usualStation(const LineOptions &options);

/// Whether it is clear which station is meant. Where a configuration has several, one must be
/// named.
bool namesStation(const LineOptions &options, Failure *failure);

/// Whether a station may be written to: with a configuration only its own may.
///
/// @param station  0: the configuration has several, and none was named
bool mayDrive(const LineOptions &options, int station, Failure *failure);

/// Adds the options of a line to a command, and the step that reads the configuration. `options`
/// must live as long as the command line.
void addLineOptions(Command &command, LineOptions &options);

/// "8N1", as --format takes it.
QString formatText(const host::LineSettings &line);

/// Of a letter as it stands there. @return nothing where it is none of N, E and O
std::optional<host::Parity> parityOf(const QString &letter);

/// Adds -v, --trace.
void addTraceOption(Command &command, bool &trace);

} // namespace dx4::cli
