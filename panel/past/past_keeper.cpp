// SPDX-License-Identifier: MIT
// Puts what a line showed around a fault into a file.
#include "panel/past/past_keeper.h"

#include "panel/past/past_file.h"

#include <QDir>
#include <QPointer>

#include <utility>

namespace dx4::panel {
namespace {

constexpr int mostParameters = 1000; // writes, the newest

journal::EventQuery parametersOf(const QString &line, journal::Time from, journal::Time to)
{
    journal::EventQuery query;
    query.kinds = { journal::EventKind::Parameter };
    query.line = line;
    query.window = { from, to + 1 };
    query.most = mostParameters;
    return query;
}

} // namespace

QString pastFileName(const PastRecord &record)
{
    const QString time = QDateTime::fromMSecsSinceEpoch(record.faultAt, Qt::UTC)
                             .toString(QStringLiteral("yyyyMMdd-HHmmss"));
    return QStringLiteral("fault-%1-station-%2-code-%3.json")
        .arg(time)
        .arg(record.station)
        .arg(record.code);
}

void keepNewest(const QString &folder, int most)
{
    QDir files(folder);
    // The names begin with the time.
    QStringList names =
        files.entryList({ QStringLiteral("fault-*-station-*.json") }, QDir::Files, QDir::Name);
    while (names.size() > most)
        files.remove(names.takeFirst());
}

PastKeeper::PastKeeper(JournalDesk &desk, PastPort port, QObject *parent)
    : QObject(parent)
    , m_desk(desk)
    , m_port(std::move(port))
{
}

PastRecord PastKeeper::completed(PastRecord record) const
{
    for (const host::StationConfig &station : m_port.config.stations)
        record.drives.insert(station.address, station.name);
    record.states = m_port.config.states;
    record.faults = m_port.config.faults;
    if (m_port.frames)
        record.frames = m_port.frames(record.from, record.to);
    return record;
}

void PastKeeper::keep(const PastRecord &given)
{
    const auto self = QPointer<PastKeeper>(this);
    m_desk.ask([self, record = completed(given), folder = m_port.folder, line = m_port.line,
                began = m_port.began](journal::JournalReader *reader, const QString &) {
        PastRecord whole = record;
        whole.parameters =
            reader ? reader->events(parametersOf(line, began, record.to)) : std::nullopt;
        QString error;
        const QString file = QDir(folder).absoluteFilePath(pastFileName(whole));
        if (!QDir().mkpath(folder))
            error = tr("%1: the folder cannot be made").arg(folder);
        else if (savePast(whole, file, &error))
            keepNewest(folder, mostFiles);
        return [self, record, file, error] {
            if (self)
                self->take(record, file, error);
        };
    });
}

void PastKeeper::take(const PastRecord &record, const QString &file, const QString &error)
{
    const AlarmKey key { AlarmKind::Fault, record.station, record.code, {} };
    m_texts[key] = error.isEmpty() ? tr("Values around it: dx4-panel --open %1").arg(file)
                                   : tr("The values around it could not be kept: %1").arg(error);
    if (m_port.note) {
        journal::Event event;
        event.kind = journal::EventKind::Notice;
        event.station = record.station;
        event.text = error.isEmpty()
            ? QStringLiteral("snapshot of the fault kept as %1").arg(file)
            : QStringLiteral("snapshot of the fault could not be kept: %1").arg(error);
        m_port.note(event);
    }
    Q_EMIT kept(file, error);
}

QString PastKeeper::textOf(const Alarm &alarm) const
{
    const auto found = m_texts.find(alarm.key);
    return found == m_texts.end() ? QString() : found->second;
}

} // namespace dx4::panel
