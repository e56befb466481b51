// SPDX-License-Identifier: MIT
// Watched values as lines of text.
#include "cli/value_table.h"

#include "host/notation.h"

namespace dx4::cli {
namespace {

constexpr int stationWidth = 7;
constexpr int nameWidth = 25;
constexpr int addressWidth = 18;
constexpr int valueWidth = 10;
constexpr int unitWidth = 7;
constexpr int ageWidth = 8;
constexpr host::Duration freshly = std::chrono::seconds(1);

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
    const QString text = (age(state) + mark).rightJustified(ageWidth);
    return stale ? terminal.styled(text, Terminal::Style::Warning) : text;
}

QString valueText(const WatchRow &row)
{
    if (row.state.failed)
        return QStringLiteral("failed");
    return row.state.known ? formatValue(row.what, row.state.value) : QStringLiteral("-");
}

/// The value's column with its mark: "*" where colour cannot tell that it changed.
QString valueCell(const WatchRow &row, host::Duration now, const Terminal &terminal)
{
    const bool changed = row.changedAt && now - *row.changedAt < freshly;
    const QString mark = changed && !terminal.colour ? QStringLiteral("*") : QString();
    const QString unit = row.state.failed ? QString() : row.what.scaling.unit;
    const QString text = (mark + valueText(row)).rightJustified(valueWidth) + QLatin1Char(' ')
        + unit.leftJustified(unitWidth, QLatin1Char(' '), true);
    if (row.state.failed)
        return terminal.styled(text, Terminal::Style::Failed);
    if (row.state.writePending)
        return terminal.styled(text, Terminal::Style::Warning);
    return changed ? terminal.styled(text, Terminal::Style::Changed) : text;
}

QString rowLine(const WatchRow &row, host::Duration now, const Terminal &terminal)
{
    const WatchedValue &what = row.what;
    return QString::number(what.station).leftJustified(stationWidth + 1)
        + what.name.leftJustified(nameWidth, QLatin1Char(' '), true) + QLatin1Char(' ')
        + host::fullAddress(what.regType, what.address).leftJustified(addressWidth)
        + valueCell(row, now, terminal) + ageCell(row.state, terminal);
}

QString headLine()
{
    return QStringLiteral("Station").leftJustified(stationWidth + 1)
        + QStringLiteral("Name").leftJustified(nameWidth + 1)
        + QStringLiteral("Address").leftJustified(addressWidth)
        + QStringLiteral("Value").rightJustified(valueWidth)
        + QStringLiteral("Age").rightJustified(1 + unitWidth + ageWidth);
}

} // namespace

QStringList tableLines(const QVector<WatchRow> &rows, host::Duration now, const Terminal &terminal)
{
    QStringList lines { terminal.styled(headLine(), Terminal::Style::Bold) };
    for (const WatchRow &row : rows)
        lines.append(rowLine(row, now, terminal));
    return lines;
}

} // namespace dx4::cli
