// SPDX-License-Identifier: MIT
// Events of a journal as a table for other programs.
#include "journal/csv.h"

#include <QDateTime>
#include <QIODevice>

namespace dx4::journal {
namespace {

constexpr int pageSize = 1000; // events that are held in memory at once

QString quoted(QString text)
{
    const bool isPlain = !text.contains(QLatin1Char(',')) && !text.contains(QLatin1Char('"'))
        && !text.contains(QLatin1Char('\n')) && !text.contains(QLatin1Char('\r'));
    if (isPlain)
        return text;
    text.replace(QLatin1Char('"'), QStringLiteral("\"\""));
    return QStringLiteral("\"%1\"").arg(text);
}

QString number(const std::optional<int> &value)
{
    return value ? QString::number(*value) : QString();
}

bool fail(QString *error, const QString &why)
{
    if (error)
        *error = why;
    return false;
}

} // namespace

QByteArray csvHeader()
{
    return QByteArrayLiteral(
        "id,start,time,kind,line,station,type,address,code,before,after,text\n");
}

QByteArray csvLine(const Event &event)
{
    const QDateTime time = QDateTime::fromMSecsSinceEpoch(event.time, Qt::UTC);
    const QStringList cells = {
        QString::number(event.id),
        QString::number(event.start),
        time.toString(Qt::ISODateWithMs),
        kindName(event.kind),
        quoted(event.line),
        event.station == 0 ? QString() : QString::number(event.station),
        event.regType,
        event.regType.isEmpty() ? QString() : QString::number(event.address),
        number(event.code),
        number(event.before),
        number(event.after),
        quoted(event.text),
    };
    return cells.join(QLatin1Char(',')).toUtf8() + '\n';
}

bool exportCsv(JournalReader &reader, EventQuery query, QIODevice &to, QString *error)
{
    query.isOldestFirst = true;
    query.most = pageSize;
    bool isWritten = to.write(csvHeader()) >= 0;
    for (bool isMore = true; isMore && isWritten;) {
        const auto events = reader.events(query);
        if (!events)
            return fail(error, reader.trouble().text);
        for (const Event &event : *events) {
            isWritten = isWritten && to.write(csvLine(event)) >= 0;
            query.after = event.id;
        }
        isMore = events->size() == pageSize;
    }
    return isWritten || fail(error, to.errorString());
}

} // namespace dx4::journal
