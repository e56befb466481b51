// SPDX-License-Identifier: MIT
// How watched registers are shown: a live table, plain lines, CSV or JSON.
#include "cli/commands/watch_view.h"

#include "cli/console/held_changes.h"
#include "cli/console/live_table.h"
#include "cli/console/output.h"
#include "cli/registers/counters_text.h"
#include "cli/registers/value_output.h"
#include "cli/registers/value_table.h"
#include "host/base/length.h"
#include "host/link/notation.h"

#include <optional>
#include <vector>

namespace dx4::cli {
namespace {

constexpr host::Duration redrawAfter = std::chrono::milliseconds(100);

/// Draws the table over itself.
class LiveView : public WatchView {
public:
    LiveView(const Terminal &terminal, int seconds)
        : m_terminal(terminal)
        , m_seconds(seconds)
    {
    }

    void values(WatchList &list, const host::CounterSet &counters, host::Duration now,
                host::Duration elapsed) override
    {
        if (!m_drawnAt || now - *m_drawnAt >= redrawAfter)
            end(list, counters, now, elapsed);
    }

    void line(const QString &text) override { m_notice = text; }

    void end(WatchList &list, const host::CounterSet &counters, host::Duration now,
             host::Duration elapsed) override
    {
        m_drawnAt = now;
        m_terminal.measure();
        const QStringList foot = m_seconds > 0 ? progress(counters, elapsed) : footOf(counters);
        const int room = LiveTable::room(m_terminal, host::lengthOf(foot));
        m_scroll.move(m_table.keys().take(), host::lengthOf(list.rows()));
        list.look(m_scroll.first, room, now);
        Scroll *scroll = m_table.keys().areThere() ? &m_scroll : nullptr;
        m_table.draw(tableLines(list.rows(), now, m_terminal, room, scroll), foot);
        list.takeChanged();
    }

private:
    QStringList progress(const host::CounterSet &counters, host::Duration elapsed) const
    {
        const QString text = m_terminal.styled(countersText(counters), Terminal::Style::Dim);
        return { QString(), filled("%1 of %2 s  %3", secondsText(elapsed), m_seconds, text),
                 m_notice };
    }

    QStringList footOf(const host::CounterSet &counters) const
    {
        QStringList foot { QString() };
        for (const QString &line : m_terminal.folded(countersText(counters)))
            foot << m_terminal.styled(line, Terminal::Style::Dim);
        for (const QString &line : m_terminal.folded(m_notice))
            foot << m_terminal.styled(line, Terminal::Style::Warning);
        return foot;
    }

    LiveTable m_table;
    Scroll m_scroll;
    Terminal m_terminal;
    int m_seconds; // of a show; 0: it is none
    QString m_notice;
    std::optional<host::Duration> m_drawnAt;
};

QString stateText(const host::Value &state)
{
    if (state.failed)
        return QStringLiteral("failed");
    return state.stale ? QStringLiteral("stale") : QStringLiteral("ok");
}

/// A line for every value that became another, failed, grew stale or came back.
class LineView : public RunningView {
public:
    using Form = WatchStyle::Form;

    explicit LineView(const WatchStyle &style)
        : RunningView(style)
    {
        if (m_form == Form::Csv)
            printLine(QStringLiteral(
                "time,station,type,address,register,value,state,name,scaled,unit,meaning"));
    }

    void values(WatchList &list, const host::CounterSet &, host::Duration,
                host::Duration elapsed) override
    {
        m_stamp.setNow(elapsed);
        m_rows.resize(static_cast<std::size_t>(list.rows().size()));
        const QVector<int> changed = list.takeChanged();
        for (const int row : changed)
            hold(list.rows().at(row), row, elapsed);
        say(list, elapsed);
    }

    void end(WatchList &list, const host::CounterSet &counters, host::Duration now,
             host::Duration elapsed) override
    {
        list.lookAtAll(now);
        values(list, counters, now, elapsed);
        m_held.drop();
        printUnshown(m_held.takeUnshown(), "change", "changes", elapsed);
        if (isJson())
            printEvent("end", countersFacts(counters), elapsed);
        else if (m_form == Form::Text)
            printLine(countersText(counters));
    }

private:
    struct Row {
        std::optional<host::Value> said;
        quint32 number = 0; // that was said
        host::Duration changedAt { 0 }; // since the start
    };

    static bool isOther(const Row &before, const WatchRow &row)
    {
        const std::optional<host::Value> &said = before.said;
        const host::Value &now = row.state;
        return !said || before.number != row.number() || said->failed != now.failed
            || said->stale != now.stale;
    }

    void hold(const WatchRow &row, int number, host::Duration elapsed)
    {
        if (!row.state.known && !row.state.failed)
            return;
        m_rows[static_cast<std::size_t>(number)].changedAt = elapsed;
        m_held.add(number);
    }

    /// Says what there is to say as long as it is taken, and then how much was passed over.
    void say(const WatchList &list, host::Duration elapsed)
    {
        m_held.say([this, &list](int number) {
            Row &row = m_rows[static_cast<std::size_t>(number)];
            const WatchRow &shown = list.rows().at(number);
            if (!isOther(row, shown))
                return false;
            row.said = shown.state;
            row.number = shown.number();
            print(shown, row.changedAt);
            return true;
        });
        printUnshown(m_held.takeUnshown(), "change", "changes", elapsed);
    }

    void print(const WatchRow &row, host::Duration elapsed) const
    {
        switch (m_form) {
        case Form::Json:
            return printEvent("value", factsOf(row), elapsed);
        case Form::Csv:
            return printLine(
                csvLine(QStringList { m_stamp.text(elapsed) } + cellsOf(factsOf(row))));
        case Form::Text:
            return printLine(rowText(row, elapsed));
        }
    }

    static Facts factsOf(const WatchRow &row)
    {
        const WatchedValue &what = row.what;
        Facts facts =
            valueFacts(what, row.state.known ? std::optional(row.number()) : std::nullopt);
        facts.insert(1, { "state", stateText(row.state) });
        return registerFacts(what.station, what.regType, what.address) + facts;
    }

    QString rowText(const WatchRow &row, host::Duration elapsed) const
    {
        const WatchedValue &what = row.what;
        const QString state = stateText(row.state);
        const QString meaning = meaningText(what, row.number());
        QString shown = quantityText(what, row.number());
        if (!meaning.isEmpty())
            shown += QStringLiteral("  ") + meaning;
        if (row.state.failed)
            shown = state;
        else if (row.state.stale)
            shown += QStringLiteral("  ") + state;
        return filled("%1  %2  %3  %4  %5", m_stamp.column(elapsed), what.station,
                      host::fullAddress(what.regType, what.address).leftJustified(16), shown,
                      what.name)
            .trimmed();
    }

    std::vector<Row> m_rows;
    HeldChanges m_held;
};

} // namespace

void RunningView::printEvent(const char *event, const Facts &facts, host::Duration elapsed) const
{
    printJson(Facts { { "event", QLatin1String(event) } } + m_stamp.facts(elapsed) + facts);
}

void RunningView::printUnshown(int count, const char *one, const char *many,
                               host::Duration elapsed) const
{
    if (count == 0)
        return;
    if (isJson())
        return printEvent("held", { { "not_shown", count } }, elapsed);
    const QString text = counted(count, one, many) + QStringLiteral(" not shown");
    if (m_form == WatchStyle::Form::Text)
        return printLine(text);
    note(text); // a table has no place for it
}

std::unique_ptr<WatchView> WatchView::create(const WatchStyle &style, const Terminal &terminal,
                                             const QVector<WatchRow> &values)
{
    if (style.sample)
        return sampleView(style, values);
    const bool isTable = style.form == WatchStyle::Form::Text && terminal.live;
    return isTable ? std::unique_ptr<WatchView>(std::make_unique<LiveView>(terminal, style.seconds))
                   : std::make_unique<LineView>(style);
}

} // namespace dx4::cli
