// SPDX-License-Identifier: MIT
// What a journal holds.
#pragma once

#include "host/config/scaling.h"

#include <QString>
#include <QVector>

#include <array>
#include <map>
#include <optional>

namespace dx4::journal {

/// Times are milliseconds since 1970, UTC, as the system's clock said. That clock may be set: the
/// order of what happened is that of the ids, and within one start times never descend.
using Time = qint64;

constexpr Time secondMs = 1000;

/// What an event is. The numbers stand in files.
enum class EventKind {
    Fault = 1, ///< the fault code of a drive came, changed or went
    Write = 2, ///< a write ended
    Parameter = 3, ///< a register of a drive's memory was sent a value
    Alarm = 4,
    Notice = 5,
    Line = 6, ///< a line was opened or went down
    Station = 7, ///< a station was lost, or is back
    Stop = 8, ///< a stop ended
    Journal = 9, ///< the journal on itself: what it could not keep, a file that was set aside
    Acknowledgement = 10, ///< somebody has taken note of an alarm
};

constexpr std::array<EventKind, 10> eventKinds = {
    EventKind::Fault,           EventKind::Write,  EventKind::Parameter,
    EventKind::Alarm,           EventKind::Notice, EventKind::Line,
    EventKind::Station,         EventKind::Stop,   EventKind::Journal,
    EventKind::Acknowledgement,
};

/// "fault", "write", "parameter", "alarm", "notice", "line", "station", "stop", "journal",
/// "acknowledgement".
QString kindName(EventKind kind);

/// Something that happened.
struct Event {
    qint64 id = 0; ///< ascending in the order in which events came; 0 before it is written
    qint64 start = 0; ///< of the program, as JournalStart::id; before it is written: the run of the
                      ///< clock, see Stamp
    Time time = 0;
    EventKind kind = EventKind::Notice;
    QString line; ///< as the program calls it
    int station = 0; ///< 0: none, or not known
    QString regType; ///< empty: no register
    int address = 0; ///< internal address
    /// Fault: the code, 0 when it went. Write and Parameter: host::WriteEnd. Line: 1 when it went
    /// down, 0 when it was opened. Station: 1 when it was lost, 0 when it is back. Stop: how many
    /// stations did not confirm it. Acknowledgement: the code of the alarm.
    std::optional<int> code;
    /// Fault: the code before. Parameter: the value, where it was read. Acknowledgement: the kind
    /// of the alarm, an EventKind.
    std::optional<int> before;
    std::optional<int> after; ///< Parameter: the value that was sent
    QString text; ///< one line for people
};

/// A register of one of the lines.
struct RegisterKey {
    QString line;
    int station = 0;
    QString regType;
    int address = 0; ///< internal address
};

bool operator<(const RegisterKey &a, const RegisterKey &b);
bool operator==(const RegisterKey &a, const RegisterKey &b);

/// A register under one name and scaling.
struct Series {
    RegisterKey at;
    QString name; ///< empty: none
    host::Scaling scaling;
};

bool operator<(const Series &a, const Series &b);

/// How far values may be trusted. The numbers stand in files; a worse one is greater.
enum class Quality { Good = 0, Stale = 1, Failed = 2 };

/// What a register held in one second, in its counts: signed ones where its scaling says so.
struct Sample {
    Series series;
    qint64 start = 0; ///< the run of the clock, see Stamp
    Time time = 0; ///< a whole second
    int lowest = 0;
    int highest = 0;
    int last = 0;
    int count = 0; ///< changes that came; 0: it was as before
    Quality quality = Quality::Good; ///< the worst
};

/// How often a register of a drive was written: its memory wears.
struct WearCount {
    RegisterKey at;
    qint64 writes = 0;
    Time last = 0; ///< of the newest one
};

/// A time with the run of the clock that it belongs to: the clock runs forward within one, and each
/// time that it is set back another one begins. Runs are counted from 1 and have their own starts
/// in the file.
struct Stamp {
    int run = 1;
    Time time = 0;
};

/// One start of a program, or its clock being set back.
struct JournalStart {
    qint64 id = 0; ///< ascending
    Time began = 0; ///< the first that was written
    Time last = 0; ///< the newest that was written
    bool isEnded = false; ///< the program closed the journal; else it still runs, or was cut off
    QString program;
};

/// How much a journal holds. The oldest goes first.
struct Bounds {
    /// Of the file; history goes first, the finest before the others. At least 1 MiB. What is
    /// written meanwhile, at most some megabytes, lies in the file NAME-wal beside it.
    qint64 bytes = 128LL << 20;
    int eventRows = 20'000; ///< of each kind
    std::array<int, 4> historyRows = { 400'000, 400'000, 400'000, 400'000 }; ///< of each level
};

} // namespace dx4::journal
