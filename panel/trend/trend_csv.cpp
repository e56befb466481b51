// SPDX-License-Identifier: MIT
// What a window shows as a table for other programs.
#include "panel/trend/trend_csv.h"

#include <QDateTime>
#include <QIODevice>
#include <QStringList>

#include <algorithm>
#include <limits>

namespace dx4::panel {
namespace {

QString quoted(QString text)
{
    const bool isPlain = !text.contains(QLatin1Char(',')) && !text.contains(QLatin1Char('"'))
        && !text.contains(QLatin1Char('\n'));
    if (isPlain)
        return text;
    text.replace(QLatin1Char('"'), QStringLiteral("\"\""));
    return QStringLiteral("\"%1\"").arg(text);
}

QByteArray headerOf(const QVector<TraceReading> &traces)
{
    QStringList cells { QStringLiteral("time") };
    for (const TraceReading &trace : traces) {
        QString name = QStringLiteral("%1 %2").arg(trace.drive, trace.name);
        if (!trace.isBit() && !trace.scaling.unit.isEmpty())
            name += QStringLiteral(" [%1]").arg(trace.scaling.unit);
        for (const char *what : { "lowest", "highest", "last", "changes", "quality" })
            cells.append(quoted(name + QLatin1Char(' ') + QLatin1String(what)));
    }
    return cells.join(QLatin1Char(',')).toUtf8() + '\n';
}

QString qualityOf(const Column &column)
{
    const QString quality =
        column.quality == ColumnQuality::Failed ? QStringLiteral("failed") : QStringLiteral("good");
    return column.hasGap ? quality + QStringLiteral("+gap") : quality;
}

QStringList cellsOf(const TraceReading &trace, const Column &column)
{
    const QString count = QString::number(column.count);
    if (trace.isBit()) {
        const BitSeen seen = bitIn(trace, column);
        const int last = (column.last >> trace.choice.bit) & 1;
        return { QString::number(seen.clear ? 0 : 1), QString::number(seen.set ? 1 : 0),
                 QString::number(last), count, qualityOf(column) };
    }
    const Quantities of = quantitiesOf(trace, column);
    const auto text = [&](double quantity) {
        return QString::number(quantity, 'f', trace.scaling.decimals);
    };
    return { text(of.lowest), text(of.highest), text(of.last), count, qualityOf(column) };
}

/// A line of the table; empty where no trace knows anything.
QByteArray lineOf(const QVector<TraceReading> &traces, Moment at, Moment shift)
{
    QStringList cells {
        QDateTime::fromMSecsSinceEpoch(at + shift, Qt::UTC).toString(Qt::ISODateWithMs)
    };
    bool isAnyKnown = false;
    for (const TraceReading &trace : traces) {
        const Column *column = columnAt(trace, at);
        isAnyKnown = isAnyKnown || column;
        cells += column ? cellsOf(trace, *column)
                        : QStringList { QString(), QString(), QString(), QString(), QString() };
    }
    return isAnyKnown ? cells.join(QLatin1Char(',')).toUtf8() + '\n' : QByteArray();
}

} // namespace

bool writeTrendCsv(const QVector<TraceReading> &traces, Moment shift, QIODevice &to, QString *error)
{
    Moment begin = std::numeric_limits<Moment>::max();
    Moment end = 0;
    Moment width = 1;
    for (const TraceReading &trace : traces) {
        if (trace.run.columns.empty())
            continue;
        begin = std::min(begin, trace.run.begin);
        end = std::max(end, trace.run.beginOf(trace.run.columns.size()));
        width = trace.run.width;
    }
    bool isWritten = to.write(headerOf(traces)) >= 0;
    for (Moment at = begin; at < end && isWritten; at += width) {
        const QByteArray line = lineOf(traces, at, shift);
        isWritten = to.write(line) == line.size();
    }
    if (!isWritten && error)
        *error = to.errorString();
    return isWritten;
}

} // namespace dx4::panel
