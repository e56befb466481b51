// SPDX-License-Identifier: MIT
// Alarms and acknowledgements as a journal has them.
#pragma once

#include "journal/journal_reader.h"
#include "panel/alarms/alarm_book.h"

namespace dx4::panel {

/// The event that keeps an acknowledgement.
///
/// @param who  acknowledges
journal::Event acknowledgementOf(const Alarm &alarm, const QString &who);

/// How many events are gone through for the alarms of the time before; a fault that is older than
/// all of them is known again as soon as its drive is read.
inline constexpr int mostEventsBefore = 5000;

/// The events of a line that alarms come from, before a moment.
journal::EventQuery alarmEvents(const QString &line, journal::Time before);

/// What these events leave of alarms.
///
/// @param events  in the order in which they came; others than alarmEvents() change nothing
AlarmBook bookOf(const QVector<journal::Event> &events);

} // namespace dx4::panel
