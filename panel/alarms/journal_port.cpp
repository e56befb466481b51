// SPDX-License-Identifier: MIT
// What the pages ask of the journal, answered by a desk.
#include "panel/alarms/journal_port.h"

#include "host/base/whole_file.h"
#include "journal/csv.h"
#include "panel/alarms/alarm_events.h"

#include <QFileInfo>
#include <QIODevice>

#include <algorithm>

namespace dx4::panel {

using journal::JournalReader;

namespace {

/// Writes into a replacement, and keeps nothing back that could fail later.
class ReplacingDevice : public QIODevice {
public:
    /// @param file  open; outlives the device
    explicit ReplacingDevice(host::FileReplacement &file)
        : m_file(file)
    {
        open(QIODevice::WriteOnly | QIODevice::Unbuffered);
    }

    bool isSequential() const override { return true; }

protected:
    qint64 readData(char *, qint64) override { return -1; }
    qint64 writeData(const char *bytes, qint64 count) override
    {
        return m_file.write(QByteArray(bytes, static_cast<int>(count))) ? count : -1;
    }

private:
    host::FileReplacement &m_file;
};

} // namespace

ReadEvents readingWith(JournalDesk &desk)
{
    return [&desk](const journal::EventQuery &query, std::function<void(const EventsRead &)> then) {
        desk.ask([query, then = std::move(then)](JournalReader *reader, const QString &trouble) {
            EventsRead read;
            const auto events = reader ? reader->events(query) : std::nullopt;
            read.events = events.value_or(QVector<journal::Event>());
            if (!events)
                read.trouble = reader ? reader->trouble().text : trouble;
            return [then, read] { then(read); };
        });
    };
}

SaveEnd saveCsv(JournalReader &reader, const journal::EventQuery &query, const QString &file,
                bool mayReplace)
{
    if (!mayReplace && QFileInfo::exists(file))
        return { SaveEnd::Kind::IsThere, {} };
    host::FileReplacement replacement(file);
    if (!replacement.open())
        return { SaveEnd::Kind::Failed, replacement.error() };
    ReplacingDevice to(replacement);
    QString error;
    const bool isWritten = journal::exportCsv(reader, query, to, &error);
    if (isWritten && replacement.putInPlace())
        return {};
    return { SaveEnd::Kind::Failed, replacement.error().isEmpty() ? error : replacement.error() };
}

SaveEvents savingWith(JournalDesk &desk)
{
    return [&desk](const journal::EventQuery &query, const QString &file, bool mayReplace,
                   std::function<void(const SaveEnd &)> then) {
        desk.ask([query, file, mayReplace, then = std::move(then)](JournalReader *reader,
                                                                   const QString &trouble) {
            const SaveEnd end = reader ? saveCsv(*reader, query, file, mayReplace)
                                       : SaveEnd { SaveEnd::Kind::Failed, trouble };
            return [then, end] { then(end); };
        });
    };
}

void restoreAlarms(JournalDesk &desk, AlarmWatch &watch, const QString &line, journal::Time before)
{
    if (!desk.hasJournal())
        return;
    readingWith(desk)(alarmEvents(line, before), [&watch](const EventsRead &read) {
        QVector<journal::Event> events = read.events;
        std::reverse(events.begin(), events.end());
        watch.restore(bookOf(events));
    });
}

} // namespace dx4::panel
