// SPDX-License-Identifier: MIT
// One of the two sides that are compared: a drive or a file.
#pragma once

#include "host/line/line_settings.h"
#include "host/parameters/parameter_set.h"

#include <QCoreApplication>

#include <optional>

namespace dx4::panel {

struct ParameterSide {
    Q_DECLARE_TR_FUNCTIONS(dx4::panel::ParameterSide)

public:
    enum class Kind { Nothing, Drive, File };

    /// What is known of one register.
    enum class Known {
        NotRead, ///< not asked for yet, or written since
        Value,
        Absent, ///< the station does not have it
    };

    Kind kind = Kind::Nothing;
    QString name; ///< of the drive or the file
    QString path; ///< of a file
    host::ParameterSet set; ///< of a drive its station's, however much was read
    std::optional<host::Duration> readAt; ///< begin of the reading, so that no value is older
    bool isReading = false;
    int done = 0; ///< registers settled of a reading
    int total = 0;
    bool isBrokenOff = false; ///< the last reading did not come to its end
    bool isSaved = false; ///< a file holds what was read

    Known known(int address) const;
    std::optional<quint16> value(int address) const;

    /// Whether the values are shown as those of now. Those of a file never are.
    bool isFresh(host::Duration now) const;

    /// "read 12 s ago, not saved"; what stands below the name.
    QString stateText(host::Duration now) const;
};

/// "12 s", "4 min", "3 h": rounded down.
QString spanText(host::Duration span);

} // namespace dx4::panel
