// SPDX-License-Identifier: MIT
// What a window shows of one register.
#include "panel/trend/trace_reading.h"

#include "panel/model/shown.h"

#include <QCoreApplication>

#include <algorithm>

namespace dx4::panel {
namespace {

bool isSet(quint16 word, int bit)
{
    return ((word >> bit) & 1) != 0;
}

} // namespace

Quantities quantitiesOf(const TraceReading &trace, const Column &column)
{
    const host::Scaling &scaling = trace.scaling;
    const double lowest = scaling.quantity(column.lowest);
    const double highest = scaling.quantity(column.highest);
    return { std::min(lowest, highest), std::max(lowest, highest), scaling.quantity(column.last) };
}

std::optional<std::pair<double, double>> rangeOf(const TraceReading &trace)
{
    std::optional<std::pair<double, double>> range;
    for (const Column &column : trace.run.columns) {
        if (!column.isKnown())
            continue;
        const Quantities of = quantitiesOf(trace, column);
        if (!range)
            range = { of.lowest, of.highest };
        range->first = std::min(range->first, of.lowest);
        range->second = std::max(range->second, of.highest);
    }
    return range;
}

BitSeen bitIn(const TraceReading &trace, const Column &column)
{
    const int bit = trace.choice.bit;
    return { !isSet(column.lowest, bit), isSet(column.highest, bit) };
}

const Column *columnAt(const TraceReading &trace, Moment at)
{
    const ColumnRun &run = trace.run;
    if (at < run.begin)
        return nullptr;
    const auto index = static_cast<std::size_t>((at - run.begin) / run.width);
    if (index >= run.columns.size() || !run.columns[index].isKnown())
        return nullptr;
    return &run.columns[index];
}

std::optional<double> quantityAt(const TraceReading &trace, Moment at)
{
    const Column *column = trace.isBit() ? nullptr : columnAt(trace, at);
    if (!column)
        return std::nullopt;
    return trace.scaling.quantity(column->last);
}

QString textAt(const TraceReading &trace, Moment at, const QLocale &locale)
{
    const Column *column = columnAt(trace, at);
    if (!column)
        return Shown::dashes();
    if (trace.isBit())
        return isSet(column->last, trace.choice.bit)
            ? QCoreApplication::translate("dx4::panel::TraceReading", "on")
            : QCoreApplication::translate("dx4::panel::TraceReading", "off");
    return quantityText(trace, trace.scaling.quantity(column->last), locale);
}

QString quantityText(const TraceReading &trace, double quantity, const QLocale &locale)
{
    QLocale plain = locale;
    plain.setNumberOptions(QLocale::OmitGroupSeparator);
    const QString number = plain.toString(quantity, 'f', trace.scaling.decimals);
    return trace.scaling.unit.isEmpty() ? number : number + QLatin1Char(' ') + trace.scaling.unit;
}

} // namespace dx4::panel
