// SPDX-License-Identifier: MIT
// Alarms and events in words.
#pragma once

#include "host/config/config.h"
#include "panel/alarms/alarm_book.h"

#include <QCoreApplication>

namespace dx4::panel {

/// Names of drives and words of fault codes.
class AlarmWords {
    Q_DECLARE_TR_FUNCTIONS(dx4::panel::AlarmWords)

public:
    AlarmWords() = default;
    explicit AlarmWords(const host::Config &config);

    /// "Conveyor: overvoltage".
    QString heading(const Alarm &alarm) const;

    /// The heading and the reason, in one line.
    QString fullText(const Alarm &alarm) const;

    /// "active, not acknowledged".
    static QString stateText(AlarmState state);

    /// State, how often it came, since when and whether it went.
    static QString detail(const Alarm &alarm);

    /// What an event was, in a word.
    static QString kindText(journal::EventKind kind);

    /// "Feed pump"; "Station 7" where it has no name.
    QString drive(int station) const;

private:
    QMap<int, QString> m_drives;
    QMap<int, QString> m_faults;
};

/// The local time of day; with its date where that is another one than of `now`.
QString timeText(journal::Time time, journal::Time now);

/// The local date and time to the second.
QString dateText(journal::Time time);

} // namespace dx4::panel
