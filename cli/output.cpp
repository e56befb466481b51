// SPDX-License-Identifier: MIT
// Standard output: data, as lines of text or as one JSON object per line.
#include "cli/output.h"

#include "host/length.h"

#include <QJsonDocument>
#include <QTextStream>
#include <QVector>

#include <algorithm>
#include <cstdio>

namespace dx4::cli {

void printLine(const QString &line)
{
    QTextStream(stdout) << line << '\n';
}

void printLines(const QStringList &lines)
{
    QTextStream out(stdout);
    for (const QString &line : lines)
        out << line << '\n';
}

void printJson(const QJsonObject &object)
{
    printLine(jsonText(object));
}

QString jsonText(const QJsonObject &object)
{
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
}

QStringList columns(const QVector<QStringList> &rows, const QVector<int> &rightAligned)
{
    QVector<int> widths;
    for (const QStringList &row : rows) {
        for (int i = 0; i < host::lengthOf(row); ++i) {
            if (i == host::lengthOf(widths))
                widths.append(0);
            widths[i] = std::max(widths.at(i), host::lengthOf(row.at(i)));
        }
    }
    QStringList lines;
    for (const QStringList &row : rows) {
        QStringList cells;
        for (int i = 0; i < host::lengthOf(row); ++i) {
            cells.append(rightAligned.contains(i) ? row.at(i).rightJustified(widths.at(i))
                                                  : row.at(i).leftJustified(widths.at(i)));
        }
        QString line = cells.join(QStringLiteral("  "));
        while (line.endsWith(QLatin1Char(' ')))
            line.chop(1);
        lines.append(line);
    }
    return lines;
}

QString hex(unsigned value, int digits)
{
    return QStringLiteral("0x%1").arg(
        QString::number(value, 16).toUpper().rightJustified(digits, QLatin1Char('0')));
}

} // namespace dx4::cli
