// SPDX-License-Identifier: MIT
// What a host is to do, read from a TOML file.
#pragma once

#include "host/config/scaling.h"
#include "host/plan/plan.h"

#include <QMap>
#include <QString>
#include <QVector>

#include <optional>

namespace dx4::host {

/// Registers that are wanted from a station.
struct RegisterConfig {
    QString at; ///< "D 0", "F 8.0-8.3", as PlanEntry::text
    QString name; ///< of a single register; empty: none
    Scaling scaling;
    int line = 0; ///< of the file, from 1
};

struct StationConfig {
    int address = 1; ///< 1 to 247
    QString name; ///< empty: none
    Duration extraGap { 0 }; ///< silence before its requests, on top of the line's own
    QVector<RegisterConfig> registers;
};

/// What is done before the host goes away.
struct StopPolicy {
    std::optional<quint16> controlWord; ///< "CW" value that stops the drive; none: nothing is sent
    Duration confirmWithin = std::chrono::seconds(2); ///< for the echoes of all stations
    bool broadcast = false; ///< the drives take the stop as a broadcast, which goes first then
};

struct Config {
    LineSettings line; ///< the port may be empty: one file for several ports, named by the host
    LinkSettings link;
    StopPolicy stop;
    QVector<StationConfig> stations;
    QMap<int, QString> states; ///< what the bits of "SW" say, by bit
    QMap<int, QString> faults; ///< what "FU" says, by code
};

/// One thing that is wrong with a file.
struct ConfigError {
    int line = 0; ///< from 1; 0 where the file as a whole is meant
    QString text; ///< one line: what is wrong and what would be right

    /// "FILE:12: TEXT", as editors and compilers show it.
    QString in(const QString &file) const;
};

/// Reads a configuration. All that is wrong is reported, not only the first.
///
/// @param text    TOML
/// @param errors  out: appended, in the order of the file where it could be read; may be null
/// @return the configuration, or nothing when there was an error
std::optional<Config> parseConfig(const QByteArray &text, QVector<ConfigError> *errors);

/// Reads a configuration file; a file that cannot be read is an error of line 0.
std::optional<Config> loadConfig(const QString &path, QVector<ConfigError> *errors);

/// Plans what a configuration wants, checked with the driver's own address checks.
///
/// @param planner  made with the block size of the link that will poll
/// @param errors   out: appended, each entry that the driver refuses with its line; may be null
std::optional<Plan> planOf(const Config &config, Planner &planner, QVector<ConfigError> *errors);

} // namespace dx4::host
