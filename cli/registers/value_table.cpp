// SPDX-License-Identifier: MIT
// Watched values as lines of text.
#include "cli/registers/value_table.h"

#include "host/base/length.h"
#include "host/link/notation.h"

#include <algorithm>

namespace dx4::cli {
namespace {

constexpr int valueWidth = 10;
constexpr int unitWidth = 7;
constexpr int shortestName = 8;

constexpr host::Duration freshly = std::chrono::seconds(1);

/// Widths of the columns, their gaps included; 0: not shown.
struct Widths {
    int station = 8;
    int name = 26;
    int address = 18;
    int age = 8;
    int places = 0; ///< characters of the value from its point on

    int all() const { return station + name + address + valueWidth + 1 + unitWidth + age; }
};

/// What goes first where there is no room is what says least of the value.
Widths widthsFor(int columns)
{
    Widths widths;
    if (widths.all() > columns)
        widths.address = 0;
    if (widths.all() > columns)
        widths.age = 0;
    if (widths.all() > columns)
        widths.station = 4;
    if (widths.all() > columns)
        widths.name = std::max(widths.name - (widths.all() - columns), shortestName);
    return widths;
}

QString cell(const QString &text, int width)
{
    return text.left(width - 1).leftJustified(width);
}

QString age(const host::Value &state)
{
    if (!state.known)
        return QStringLiteral("-");
    const auto tenths = state.age / std::chrono::milliseconds(100);
    return QStringLiteral("%1 s").arg(static_cast<double>(tenths) / 10.0, 0, 'f', 1);
}

/// The age's column, with "!" for a value that is not to be relied on.
QString ageCell(const host::Value &state, const Terminal &terminal)
{
    const bool stale = state.known && state.stale;
    const QString mark = stale ? QStringLiteral("!") : QString();
    const QString text = (age(state) + mark).rightJustified(Widths().age);
    return stale ? terminal.styled(text, Terminal::Style::Warning) : text;
}

QString valueText(const WatchRow &row)
{
    if (row.state.failed)
        return QStringLiteral("failed");
    return row.state.known ? formatValue(row.what, row.number()) : QStringLiteral("-");
}

/// Characters from the point on; 0 where there is none.
int placesOf(const WatchRow &row)
{
    if (!row.state.known || row.state.failed)
        return 0;
    const QString text = valueText(row);
    const auto point = text.indexOf(QLatin1Char('.'));
    return point < 0 ? 0 : static_cast<int>(text.size() - point);
}

/// The value with blanks behind it that bring its point below those of the others.
QString alignedValue(const WatchRow &row, int places)
{
    QString text = valueText(row);
    if (!row.state.known || row.state.failed)
        return text;
    const int width = std::min(host::lengthOf(text) + places - placesOf(row), valueWidth);
    return text.leftJustified(width);
}

/// The value's column with its mark: "*" where colour cannot tell that it changed.
QString valueCell(const WatchRow &row, host::Duration now, const Terminal &terminal,
                  const Widths &widths)
{
    const bool hasAge = widths.age > 0;
    const bool changed = row.changedAt && now - *row.changedAt < freshly;
    const bool stale = row.state.known && row.state.stale;
    QString mark = changed && !terminal.colour ? QStringLiteral("*") : QString();
    if (stale && !hasAge)
        mark = QStringLiteral("!");
    const QString unit = row.state.failed ? QString() : row.what.scaling.unit;
    const QString text = (mark + alignedValue(row, widths.places)).rightJustified(valueWidth)
        + QLatin1Char(' ') + unit.leftJustified(unitWidth, QLatin1Char(' '), true);
    if (row.state.failed)
        return terminal.styled(text, Terminal::Style::Failed);
    if (row.state.writePending)
        return terminal.styled(text, Terminal::Style::Warning);
    return changed ? terminal.styled(text, Terminal::Style::Changed) : text;
}

QString rowLine(const WatchRow &row, host::Duration now, const Terminal &terminal,
                const Widths &widths)
{
    const WatchedValue &what = row.what;
    const QString address = host::fullAddress(what.regType, what.address);
    const bool isNameless = widths.address == 0 && what.name.isEmpty();
    QString line = cell(QString::number(what.station), widths.station)
        + cell(isNameless ? address : what.name, widths.name);
    if (widths.address > 0)
        line += address.leftJustified(widths.address);
    line += valueCell(row, now, terminal, widths);
    return widths.age > 0 ? line + ageCell(row.state, terminal) : line;
}

/// The lines of a row: itself, and below it what its value says.
QStringList rowLines(const WatchRow &row, host::Duration now, const Terminal &terminal,
                     const Widths &widths)
{
    QStringList lines { rowLine(row, now, terminal, widths) };
    const bool isShown = row.state.known && !row.state.failed;
    const QString meaning = isShown ? meaningText(row.what, row.number()) : QString();
    if (!meaning.isEmpty()) {
        const QString text = QString(widths.station, QLatin1Char(' ')) + meaning;
        const int columns = std::min(terminal.columns, terminalColumns);
        lines.append(terminal.styled(text.left(columns), Terminal::Style::Dim));
    }
    return lines;
}

QString headLine(const Widths &widths)
{
    const bool isNarrow = widths.station < Widths().station;
    QString line =
        (isNarrow ? QStringLiteral("St") : QStringLiteral("Station")).leftJustified(widths.station)
        + QStringLiteral("Name").leftJustified(widths.name);
    if (widths.address > 0)
        line += QStringLiteral("Address").leftJustified(widths.address);
    line += QStringLiteral("Value").rightJustified(valueWidth);
    if (widths.age > 0)
        line += QStringLiteral("Age").rightJustified(1 + unitWidth + widths.age);
    return line;
}

QString shownLine(const Scroll &scroll, int count, int columns)
{
    const QString text =
        filled("rows %1-%2 of %3", scroll.first + 1, scroll.first + scroll.shown, count);
    const QString keys = text + QStringLiteral("; arrow and page keys move");
    return keys.size() <= columns ? keys : text;
}

QString moreLine(int hidden, int columns)
{
    const QString text = filled("... and %1 more; a higher window shows them", hidden);
    return text.size() <= columns ? text : filled("... and %1 more", hidden);
}

} // namespace

void Scroll::move(const Movement &movement, int count)
{
    const int page = std::max(shown, 1);
    if (movement.toStart)
        first = 0;
    if (movement.toEnd)
        first = count;
    first += movement.rows + movement.pages * page;
    first = std::max(std::min(first, count - page), 0);
}

QStringList tableLines(const QVector<WatchRow> &rows, host::Duration now, const Terminal &terminal,
                       int most, Scroll *scroll)
{
    Widths widths = widthsFor(std::min(terminal.columns, terminalColumns));
    const int count = host::lengthOf(rows);
    const int first = scroll ? scroll->first : 0;
    for (int row = first; row < count && row - first < most; ++row)
        widths.places = std::max(widths.places, placesOf(rows.at(row)));
    QStringList lines { terminal.styled(headLine(widths), Terminal::Style::Bold) };
    QVector<int> ends; // lines of the table with so many rows
    for (int row = first; row < count && host::lengthOf(lines) <= most; ++row) {
        lines += rowLines(rows.at(row), now, terminal, widths);
        ends.append(host::lengthOf(lines));
    }
    int shown = host::lengthOf(ends);
    const bool isWhole = first == 0 && shown == count && host::lengthOf(lines) <= most;
    while (!isWhole && shown > 0 && ends.at(shown - 1) >= most)
        --shown;
    if (scroll)
        scroll->shown = shown;
    if (isWhole)
        return lines;
    lines = lines.mid(0, shown > 0 ? ends.at(shown - 1) : 1);
    return lines << (scroll ? shownLine(*scroll, count, terminal.columns)
                            : moreLine(count - shown, terminal.columns));
}

} // namespace dx4::cli
