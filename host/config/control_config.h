// SPDX-License-Identifier: MIT
// What a window that commands drives has to know of them, read from the configuration file.
#pragma once

#include "host/config/config.h"

namespace dx4::host {

/// How drives are commanded. The value that stops them is StopPolicy::controlWord.
struct ControlConfig {
    quint16 run = 1; ///< "CW" value that starts a drive
    std::optional<quint16> reverse; ///< "CW" value that starts it the other way; none: not offered
    Duration userPatience { 0 }; ///< for RuntimeSettings::userPatience; 0: never
};

/// Reads it out of a configuration, of which all that is wrong is reported as by parseConfig().
std::optional<ControlConfig> parseControl(const QByteArray &text, QVector<ConfigError> *errors);

/// The same from a file.
std::optional<ControlConfig> loadControl(const QString &path, QVector<ConfigError> *errors);

} // namespace dx4::host
