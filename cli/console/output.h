// SPDX-License-Identifier: MIT
// Standard output: data, as lines of text or as one JSON object per line.
#pragma once

#include "cli/console/exit_code.h"
#include "cli/console/facts.h"
#include "cli/console/standard_streams.h"

namespace dx4::cli {

/// Writes a line and hands it on at once, so that a reader at the other end of a pipe sees it.
void printLine(const QString &line);
void printLines(const QStringList &lines);

/// The object as it is printed.
QString jsonText(const QJsonObject &object);

/// Whether a file can be written, asked before there is anything to lose; leaves the file alone.
bool canBeWritten(const QString &file, Failure *failure);

/// Rows of cells under their heads, each column as wide as its longest cell, two blanks between.
///
/// @param rows  the heads first; every row has as many cells
/// @param rightAligned  numbers of the columns with numbers in them
QStringList columns(const QVector<QStringList> &rows, const QVector<int> &rightAligned = {});

/// "1 block", "2 blocks".
template <typename Count> QString counted(Count count, const char *one, const char *many)
{
    return filled("%1 %2", count, count == 1 ? one : many);
}

/// A row of a CSV file; cells with commas, quotes or line ends in quotes.
QString csvLine(const QStringList &cells);

/// Words joined by commas into lines no wider than a terminal, each with `indent` in front.
QStringList wrapped(const QStringList &words, const QString &indent);

/// The same behind a head of ten columns, "failures  2 silence, 1 wrong CRC".
QStringList indented(const QString &head, const QStringList &words);

/// "0x00FF", with at least `digits` digits.
QString hex(unsigned value, int digits);

} // namespace dx4::cli
