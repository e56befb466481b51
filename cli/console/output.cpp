// SPDX-License-Identifier: MIT
// Standard output: data, as lines of text or as one JSON object per line.
#include "cli/console/output.h"

#include "cli/console/terminal.h"
#include "host/base/length.h"
#include "host/base/whole_file.h"

#include <QJsonDocument>
#include <QVector>

#include <algorithm>

namespace dx4::cli {

void printLine(const QString &line)
{
    writeText(line + QLatin1Char('\n'));
}

void printLines(const QStringList &lines)
{
    for (const QString &line : lines)
        printLine(line);
}

QString jsonText(const QJsonObject &object)
{
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
}

bool canBeWritten(const QString &file, Failure *failure)
{
    QString error;
    if (host::canReplaceFile(file, &error))
        return true;
    return fail(failure, error, ExitFailed);
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

QString csvLine(const QStringList &cells)
{
    QStringList quoted;
    for (QString cell : cells) {
        const bool plain = !cell.contains(QLatin1Char(',')) && !cell.contains(QLatin1Char('"'))
            && !cell.contains(QLatin1Char('\n')) && !cell.contains(QLatin1Char('\r'));
        cell.replace(QLatin1Char('"'), QLatin1String("\"\""));
        quoted.append(plain ? cell : QLatin1Char('"') + cell + QLatin1Char('"'));
    }
    return quoted.join(QLatin1Char(','));
}

QStringList wrapped(const QStringList &words, const QString &indent)
{
    QStringList lines;
    QString line = indent;
    for (int i = 0; i < host::lengthOf(words); ++i) {
        const bool isLast = i + 1 == host::lengthOf(words);
        const QString word = isLast ? words.at(i) : words.at(i) + QLatin1Char(',');
        const bool isFirst = line == indent;
        if (!isFirst && line.size() + 1 + word.size() > terminalColumns) {
            lines.append(line);
            line = indent + word;
            continue;
        }
        line += isFirst ? word : QLatin1Char(' ') + word;
    }
    return words.isEmpty() ? QStringList() : lines << line;
}

QStringList indented(const QString &head, const QStringList &words)
{
    constexpr int headWidth = 10;
    QStringList lines = wrapped(words, QString(headWidth, QLatin1Char(' ')));
    if (!lines.isEmpty())
        lines.first().replace(0, headWidth, head.leftJustified(headWidth));
    return lines;
}

QString hex(unsigned value, int digits)
{
    return filled("0x%1",
                  QString::number(value, 16).toUpper().rightJustified(digits, QLatin1Char('0')));
}

} // namespace dx4::cli
