// SPDX-License-Identifier: MIT
// The alarms of one line and how far somebody has taken note of them.
#pragma once

#include "journal/records.h"

#include <QString>
#include <QVector>

#include <map>

namespace dx4::panel {

/// What an alarm is about.
enum class AlarmKind {
    Fault, ///< a drive reports a fault code
    Station, ///< a station does not answer
    Line, ///< the line is down
    Stop, ///< a stop was not confirmed
    Message, ///< something that the host raised and that does not last
    Journal, ///< the journal cannot be written
};

/// Tells one alarm from the others.
struct AlarmKey {
    AlarmKind kind = AlarmKind::Message;
    int station = 0; ///< of faults and stations
    int code = 0; ///< of faults
    QString message; ///< of messages
};

bool operator<(const AlarmKey &a, const AlarmKey &b);
bool operator==(const AlarmKey &a, const AlarmKey &b);

/// The states of ISA-18.2, but for those that a plan of the plant would have to give: alarms are
/// not shelved, suppressed or out of service here.
enum class AlarmState {
    Normal,
    Active, ///< unacknowledged
    Acknowledged, ///< and active
    Returned, ///< to normal, unacknowledged
};

struct Alarm {
    AlarmKey key;
    AlarmState state = AlarmState::Normal;
    QString reason; ///< in the words of its source; may be empty
    journal::Time since = 0; ///< when it came first of all times that nobody has acknowledged
    journal::Time newest = 0; ///< when it came the last time
    journal::Time returned = 0; ///< when it went; 0: it is active
    int count = 1; ///< how often it came since somebody acknowledged it
};

bool isUnacknowledged(const Alarm &alarm);

/// Holds every alarm that is not normal. Times are given by the caller. The same word said twice
/// changes nothing, so that sources may state what is, not only what changed.
class AlarmBook {
public:
    /// Beyond that the one goes that returned first; then the one that came first.
    static constexpr int mostAlarms = 500;

    /// An alarm is active.
    void raise(const AlarmKey &key, const QString &reason, journal::Time at);

    /// An alarm is not active any more.
    void clear(const AlarmKey &key, journal::Time at);

    /// Something happened that does not last.
    void note(const AlarmKey &key, const QString &reason, journal::Time at);

    /// Somebody has taken note.
    ///
    /// @return whether there was anything to take note of
    bool acknowledge(const AlarmKey &key);

    /// Forgets an alarm that another one tells as well.
    void drop(const AlarmKey &key);

    /// Takes over what was left of the time before; what is known since counts for more.
    void restore(const AlarmBook &before);

    /// Null for one that is normal.
    const Alarm *find(const AlarmKey &key) const;

    /// The active unacknowledged ones first, then those that returned, of each the oldest first.
    QVector<Alarm> list() const;

    /// The unacknowledged one that has waited longest: of the active ones, or where there are none,
    /// of those that returned. Null where all is acknowledged.
    const Alarm *oldest() const;

    int unacknowledged() const;
    int active() const;

    /// Alarms that went as there was no room.
    int dropped() const { return m_dropped; }

    /// Another number each time that something changes.
    quint64 version() const { return m_version; }

private:
    void makeRoom();

    std::map<AlarmKey, Alarm> m_alarms;
    int m_dropped = 0;
    quint64 m_version = 0;
};

} // namespace dx4::panel
