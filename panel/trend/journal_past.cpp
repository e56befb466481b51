// SPDX-License-Identifier: MIT
// What a journal kept before the recording began.
#include "panel/trend/journal_past.h"

#include "journal/journal_reader.h"
#include "panel/trend/trend_store.h"

#include <algorithm>

namespace dx4::panel {
namespace {

constexpr Moment longestPast = 24LL * 3600 * 1000; // ms
constexpr int mostEvents = 1000;

/// The widest row of a journal that fits into columns of a level; 0 where none does.
Moment rowWidthFor(const HistoryLevel &level)
{
    Moment widest = 0;
    for (const journal::Time width : journal::levelWidths) {
        if (width <= level.width)
            widest = width;
    }
    return widest;
}

std::optional<PastRow> rowOf(const journal::HistoryPoint &point, const TraceInfo &info)
{
    const auto lowest = info.scaling.registerValue(point.lowest);
    const auto highest = info.scaling.registerValue(point.highest);
    const auto last = info.scaling.registerValue(point.last);
    if (!lowest || !highest || !last)
        return std::nullopt;
    PastRow row;
    row.at = point.time;
    row.column = { *lowest, *highest, *last, 0, ColumnQuality::Good, false };
    if (info.scaling.factor < 0)
        std::swap(row.column.lowest, row.column.highest);
    // Which bits came and went is not kept: these are those that are sure.
    if (info.counts == Counts::Bits) {
        row.column.lowest = *lowest & *highest & *last;
        row.column.highest = *lowest | *highest | *last;
    }
    row.column.count = static_cast<quint16>(std::min<qint64>(point.count, 0xFFFF));
    row.column.hasGap = point.quality == journal::Quality::Stale;
    if (point.quality == journal::Quality::Failed)
        row.column.quality = ColumnQuality::Failed;
    return row;
}

QVector<PastRow> rowsOf(const journal::History &history, const TraceInfo &info, Moment until)
{
    QVector<PastRow> rows;
    for (const journal::HistoryPoint &point : history.points) {
        const auto row = rowOf(point, info);
        if (row && row->at < until)
            rows.append(*row);
    }
    // Rows come in the order in which they were written, and a clock may have been set back.
    std::stable_sort(rows.begin(), rows.end(),
                     [](const PastRow &a, const PastRow &b) { return a.at < b.at; });
    return rows;
}

} // namespace

JournalPast::JournalPast(const QString &path, const QString &line, QObject *parent)
    : QObject(parent)
    , m_path(path)
    , m_line(line)
{
    m_place.moveToThread(&m_thread);
    m_thread.start(QThread::LowPriority);
}

JournalPast::~JournalPast()
{
    m_isEnding = true;
    m_thread.quit();
    m_thread.wait();
}

void JournalPast::ask(const QVector<TraceInfo> &registers, Moment until)
{
    QMetaObject::invokeMethod(
        &m_place, [this, registers, until] { read(registers, until); }, Qt::QueuedConnection);
}

void JournalPast::read(const QVector<TraceInfo> &registers, Moment until)
{
    journal::Trouble trouble;
    const auto reader = journal::JournalReader::open(m_path, &trouble);
    for (const TraceInfo &info : registers) {
        if (reader && !m_isEnding)
            readRegister(*reader, info, until);
    }
    if (reader && !m_isEnding)
        readMarkers(*reader, until);
    const QString text = reader ? reader->trouble().text : trouble.text;
    QMetaObject::invokeMethod(
        this, [this, text] { Q_EMIT ended(text); }, Qt::QueuedConnection);
}

void JournalPast::readRegister(journal::JournalReader &reader, const TraceInfo &info, Moment until)
{
    for (std::size_t level = 0; level < historyLevels.size(); ++level) {
        const HistoryLevel &of = historyLevels.at(level);
        const Moment rowWidth = rowWidthFor(of);
        const Moment span = std::min(of.width * of.columns, longestPast);
        if (rowWidth == 0 || m_isEnding)
            continue;
        journal::HistoryQuery query;
        query.at = { m_line, info.key.station, info.key.regType, info.key.address };
        query.window = { until - span, until };
        query.mostRows = static_cast<int>(span / rowWidth);
        const auto history = reader.history(query);
        if (!history || history->width > of.width)
            continue;
        const QVector<PastRow> rows = rowsOf(*history, info, until);
        const auto tell = [this, key = info.key, level, width = history->width, rows] {
            Q_EMIT rowsRead(key, static_cast<int>(level), width, rows);
        };
        QMetaObject::invokeMethod(this, tell, Qt::QueuedConnection);
    }
}

void JournalPast::readMarkers(journal::JournalReader &reader, Moment until)
{
    journal::EventQuery query;
    query.window = { until - longestPast, until };
    query.kinds = { journal::EventKind::Fault, journal::EventKind::Write };
    query.line = m_line;
    query.most = mostEvents;
    QVector<Marker> markers;
    for (const journal::Event &event : reader.events(query).value_or(QVector<journal::Event>())) {
        const bool isFault = event.kind == journal::EventKind::Fault;
        if (isFault && event.code.value_or(0) == 0)
            continue;
        const auto kind = isFault ? Marker::Kind::Fault : Marker::Kind::Write;
        markers.prepend({ event.time, kind, event.station, event.text });
    }
    QMetaObject::invokeMethod(
        this, [this, markers] { Q_EMIT markersRead(markers); }, Qt::QueuedConnection);
}

void remember(TrendStore &store, JournalPast &past)
{
    QObject::connect(&store, &TrendStore::learned, &past,
                     [&store, &past](const QVector<TraceKey> &keys) {
                         QVector<TraceInfo> registers;
                         for (const TraceKey &key : keys)
                             registers.append(*store.find(key));
                         past.ask(registers, store.began());
                     });
    QObject::connect(
        &past, &JournalPast::rowsRead, &store,
        [&store](const TraceKey &key, int level, Moment rowWidth, const QVector<PastRow> &rows) {
            store.addPast(key, static_cast<std::size_t>(level), rowWidth, rows);
        });
    QObject::connect(&past, &JournalPast::markersRead, &store, &TrendStore::addPastMarkers);
}

} // namespace dx4::panel
