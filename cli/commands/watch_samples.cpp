// SPDX-License-Identifier: MIT
// All watched values at equal times, for spreadsheets.
#include "cli/commands/watch_view.h"

#include "cli/console/output.h"
#include "cli/registers/counters_text.h"
#include "host/link/notation.h"

#include <utility>

namespace dx4::cli {
namespace {

/// Samples that are caught up with after a request that took long. A gap beyond that is one of the
/// program, which was suspended, and stays a gap.
constexpr int mostAtOnce = 100;

/// "1:D 0", as the register is named on the command line.
QString keyOf(const WatchedValue &what)
{
    return filled("%1:%2 %3", what.station, what.regType,
                  host::addressText(what.regType, what.address));
}

/// "1:D 0 Output frequency (Hz)".
QString headOf(const WatchedValue &what)
{
    QString head = keyOf(what);
    if (!what.name.isEmpty())
        head += QLatin1Char(' ') + what.name;
    if (!what.scaling.unit.isEmpty())
        head += filled(" (%1)", what.scaling.unit);
    return head;
}

bool isGood(const host::Value &state)
{
    return state.known && !state.failed && !state.stale;
}

class SampleView : public RunningView {
public:
    SampleView(const WatchStyle &style, const QVector<WatchRow> &values)
        : RunningView(style)
        , m_every(*style.sample)
        , m_next(m_every)
    {
        if (isJson())
            return;
        m_form = WatchStyle::Form::Csv; // also where text is asked for
        QStringList heads { QStringLiteral("time") };
        for (const WatchRow &row : values)
            heads.append(headOf(row.what));
        printLine(csvLine(heads));
    }

    void values(WatchList &list, const host::CounterSet &, host::Duration now,
                host::Duration elapsed) override
    {
        if (elapsed < m_next)
            return;
        m_stamp.setNow(elapsed);
        list.lookAtAll(now);
        list.takeChanged();
        for (int taken = 0; m_next <= elapsed; m_next += m_every, ++taken) {
            if (taken < mostAtOnce && outputFlows())
                print(list);
            else
                ++m_unshown;
        }
        if (outputFlows())
            sayUnshown(elapsed);
    }

    void end(WatchList &, const host::CounterSet &counters, host::Duration,
             host::Duration elapsed) override
    {
        m_stamp.setNow(elapsed);
        sayUnshown(elapsed);
        if (isJson())
            printEvent("end", countersFacts(counters), elapsed);
    }

private:
    void print(const WatchList &list) const
    {
        if (isJson())
            return printEvent("sample", factsOf(list), m_next);
        QStringList cells { m_stamp.text(m_next) };
        for (const WatchRow &row : list.rows())
            cells.append(isGood(row.state) ? numberText(row) : QString());
        printLine(csvLine(cells));
    }

    /// Bits are a number here too: a spreadsheet takes no hexadecimal.
    static QString numberText(const WatchRow &row)
    {
        return row.what.bits ? QString::number(row.number()) : formatValue(row.what, row.number());
    }

    static Facts factsOf(const WatchList &list)
    {
        QJsonObject samples;
        for (const WatchRow &row : list.rows())
            samples.insert(keyOf(row.what),
                           isGood(row.state) ? QJsonValue(numberText(row).toDouble())
                                             : QJsonValue());
        return { { "values", samples } };
    }

    void sayUnshown(host::Duration elapsed)
    {
        printUnshown(std::exchange(m_unshown, 0), "sample", "samples", elapsed);
    }

    host::Duration m_every;
    host::Duration m_next; // moment of the next sample, since the start
    int m_unshown = 0;
};

} // namespace

std::unique_ptr<WatchView> sampleView(const WatchStyle &style, const QVector<WatchRow> &values)
{
    return std::make_unique<SampleView>(style, values);
}

} // namespace dx4::cli
