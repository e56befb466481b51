// SPDX-License-Identifier: MIT
// A configuration file that was read and tried out.
#pragma once

#include "host/config/config.h"
#include "host/config/control_config.h"

#include <QStringList>

#include <functional>

namespace dx4::panel {

/// What a file says, or what is wrong with it.
struct CheckedConfig {
    QString file;
    QStringList text; ///< its lines, to show errors at their place
    QVector<host::ConfigError> errors; ///< empty: it is whole
    host::Config config; ///< of a whole one
    host::ControlConfig control; ///< of a whole one
    host::Plan plan; ///< of a whole one

    bool isWhole() const { return errors.isEmpty(); }
};

/// Makes a plan as host::planOf() does, with a planner of its own.
using MakePlan =
    std::function<std::optional<host::Plan>(const host::Config &, QVector<host::ConfigError> *)>;

/// Reads a file and plans it. What the panel needs besides counts as an error: without the value
/// that stops a drive there is no stop button, and it must not be the one that starts it.
CheckedConfig checkConfig(const QString &file, const MakePlan &makePlan);

/// The errors, each below the line that it is about, in order.
QString errorsText(const CheckedConfig &checked);

/// Why a whole configuration cannot take the place of a running one without a new start of the
/// panel: it has other stations. Empty: it can.
QString newStartReason(const host::Config &running, const host::Config &wanted);

} // namespace dx4::panel
