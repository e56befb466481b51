// SPDX-License-Identifier: MIT
// Alarms and acknowledgements as a journal has them.
#include "panel/alarms/alarm_events.h"

#include "host/writes/stop_words.h"
#include "register_tables.h"

namespace dx4::panel {
namespace {

using journal::Event;
using journal::EventKind;

EventKind kindOf(AlarmKind kind)
{
    switch (kind) {
    case AlarmKind::Fault:
        return EventKind::Fault;
    case AlarmKind::Station:
        return EventKind::Station;
    case AlarmKind::Line:
        return EventKind::Line;
    case AlarmKind::Stop:
        return EventKind::Stop;
    case AlarmKind::Message:
        return EventKind::Alarm;
    case AlarmKind::Journal:
        return EventKind::Journal;
    }
    return EventKind::Alarm;
}

void takeFault(AlarmBook &book, const Event &event)
{
    const QVector<Alarm> alarms = book.list();
    for (const Alarm &alarm : alarms) {
        if (alarm.key.kind == AlarmKind::Fault && alarm.key.station == event.station
            && alarm.key.code != *event.code)
            book.clear(alarm.key, event.time);
    }
    if (*event.code != 0)
        book.raise({ AlarmKind::Fault, event.station, *event.code, {} }, {}, event.time);
}

/// An alarm with two ends: the code is 0 where it is over.
void takeCode(AlarmBook &book, AlarmKind kind, const Event &event)
{
    const AlarmKey key { kind, event.station, 0, {} };
    if (*event.code == 0)
        return book.clear(key, event.time);
    // The host raises a message with the same words.
    book.drop({ AlarmKind::Message, 0, 0, event.text });
    const QString lineDown = QStringLiteral("line down: ");
    const bool isPrefixed = event.text.startsWith(lineDown);
    book.raise(key, isPrefixed ? event.text.mid(lineDown.size()) : event.text, event.time);
}

void takeMessage(AlarmBook &book, const Event &event)
{
    if (event.text == QLatin1String(host::allStopsConfirmed))
        return book.clear({ AlarmKind::Stop, 0, 0, {} }, event.time);
    book.note({ AlarmKind::Message, 0, 0, event.text }, event.text, event.time);
}

void takeAcknowledgement(AlarmBook &book, const Event &event)
{
    const QVector<Alarm> alarms = book.list();
    for (const Alarm &alarm : alarms) {
        const bool isIt = static_cast<int>(kindOf(alarm.key.kind)) == event.before.value_or(0)
            && alarm.key.station == event.station && alarm.key.code == event.code.value_or(0)
            && event.text.endsWith(alarm.key.message);
        if (isIt)
            book.acknowledge(alarm.key);
    }
}

void take(AlarmBook &book, const Event &event)
{
    if (event.kind == EventKind::Alarm)
        return takeMessage(book, event);
    if (event.kind == EventKind::Acknowledgement)
        return takeAcknowledgement(book, event);
    if (!event.code)
        return;
    if (event.kind == EventKind::Fault)
        return takeFault(book, event);
    if (event.kind == EventKind::Station)
        return takeCode(book, AlarmKind::Station, event);
    if (event.kind == EventKind::Line)
        return takeCode(book, AlarmKind::Line, event);
    if (event.kind == EventKind::Stop)
        return takeCode(book, AlarmKind::Stop, event);
}

} // namespace

Event acknowledgementOf(const Alarm &alarm, const QString &who)
{
    Event event;
    event.kind = EventKind::Acknowledgement;
    event.station = alarm.key.station;
    event.before = static_cast<int>(kindOf(alarm.key.kind));
    if (alarm.key.kind == AlarmKind::Fault) {
        event.regType = REG_LIST[TypeFu];
        event.code = alarm.key.code;
    }
    const QString what = [&] {
        switch (alarm.key.kind) {
        case AlarmKind::Fault:
            return QStringLiteral("station %1: fault %2").arg(event.station).arg(alarm.key.code);
        case AlarmKind::Station:
            return QStringLiteral("station %1 does not answer").arg(event.station);
        default:
            return alarm.reason;
        }
    }();
    event.text = QStringLiteral("acknowledged by %1: %2").arg(who, what);
    return event;
}

journal::EventQuery alarmEvents(const QString &line, journal::Time before)
{
    journal::EventQuery query;
    query.kinds = { EventKind::Fault,   EventKind::Alarm, EventKind::Line,
                    EventKind::Station, EventKind::Stop,  EventKind::Acknowledgement };
    query.line = line;
    query.window.to = before;
    query.most = mostEventsBefore;
    return query;
}

AlarmBook bookOf(const QVector<Event> &events)
{
    AlarmBook book;
    for (const Event &event : events)
        take(book, event);
    return book;
}

} // namespace dx4::panel
