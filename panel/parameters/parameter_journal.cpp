// SPDX-License-Identifier: MIT
// How often parameters were written, and what was written, out of the journal.
#include "panel/parameters/parameter_journal.h"

#include "host/link/notation.h"
#include "register_tables.h"

#include <QPointer>

namespace dx4::panel {
namespace {

/// What a question to the journal gave, or why not.
template <class Answer> struct Told {
    std::optional<Answer> answer;
    QString trouble;
};

/// Asks with a connection of its own: it is closed on the thread that opened it.
template <class Answer, class Question>
Told<Answer> ask(const QString &path, const Question &question)
{
    journal::Trouble trouble;
    const auto reader = journal::JournalReader::open(path, &trouble);
    if (!reader)
        return { std::nullopt, trouble.text };
    const auto answer = question(*reader);
    return { answer, answer ? QString() : reader->trouble().text };
}

Told<QVector<journal::WearCount>> readWear(const QString &path)
{
    return ask<QVector<journal::WearCount>>(
        path, [](journal::JournalReader &reader) { return reader.wear(); });
}

QVector<ParameterWrite> writesOf(const QVector<journal::Event> &events, int address)
{
    QVector<ParameterWrite> writes;
    for (const journal::Event &event : events) {
        if (event.address == address && event.after)
            writes.append({ event.time, event.before, *event.after, event.code.value_or(0) });
    }
    return writes;
}

Told<QVector<ParameterWrite>> readWrites(const LineJournal &place, int station, int address)
{
    journal::EventQuery query;
    query.kinds = { journal::EventKind::Parameter };
    query.line = place.line;
    query.station = station;
    query.contains = host::fullAddress(REG_LIST[TypeF], address);
    query.most = ParameterJournal::mostListed;
    return ask<QVector<ParameterWrite>>(
        place.path, [&](journal::JournalReader &reader) -> std::optional<QVector<ParameterWrite>> {
            const auto events = reader.events(query);
            if (!events)
                return std::nullopt;
            return writesOf(*events, address);
        });
}

} // namespace

ParameterJournal::ParameterJournal(Runner runner, const LineJournal &place, QObject *parent)
    : QObject(parent)
    , m_runner(std::move(runner))
    , m_place(place)
{
}

void ParameterJournal::refresh()
{
    if (!isThere() || m_isAsked)
        return;
    m_isAsked = true;
    const QPointer<ParameterJournal> self(this);
    m_runner([self, place = m_place]() -> std::function<void()> {
        const auto told = readWear(place.path);
        return [self, place, told] {
            if (!self)
                return;
            self->m_isAsked = false;
            self->m_trouble = told.trouble;
            self->m_counts.reset();
            if (told.answer)
                self->m_counts.emplace();
            for (const journal::WearCount &wear :
                 told.answer.value_or(QVector<journal::WearCount>()))
                if (wear.at.line == place.line && wear.at.regType == REG_LIST[TypeF])
                    (*self->m_counts)[{ wear.at.station, wear.at.address }] = wear.writes;
            Q_EMIT self->changed();
        };
    });
}

std::optional<qint64> ParameterJournal::writes(int station, int address) const
{
    if (!m_counts)
        return std::nullopt;
    const auto found = m_counts->find({ station, address });
    return found == m_counts->end() ? 0 : found->second;
}

void ParameterJournal::list(int station, int address)
{
    const QPointer<ParameterJournal> self(this);
    m_runner([self, place = m_place, station, address]() -> std::function<void()> {
        const auto told = readWrites(place, station, address);
        return [self, station, address, told] {
            if (!self)
                return;
            self->m_trouble = told.trouble;
            Q_EMIT self->listed(station, address, told.answer.value_or(QVector<ParameterWrite>()));
        };
    });
}

} // namespace dx4::panel
