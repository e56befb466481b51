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
        return {
            QString(),
            QStringLiteral("%1 of %2 s  %3").arg(secondsText(elapsed)).arg(m_seconds).arg(text),
            m_notice
        };
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
            printEvent("end", countersJson(counters), elapsed);
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
            return printEvent("value", rowJson(row), elapsed);
        case Form::Csv:
            return printLine(csvLine(rowCells(row, elapsed)));
        case Form::Text:
            return printLine(rowText(row, elapsed));
        }
    }

    static QJsonObject rowJson(const WatchRow &row)
    {
        const WatchedValue &what = row.what;
        QJsonObject object = registerJson(what.station, what.regType, what.address);
        object.insert(QStringLiteral("state"), stateText(row.state));
        if (row.state.known)
            describe(object, what, row.number());
        return object;
    }

    QStringList rowCells(const WatchRow &row, host::Duration elapsed) const
    {
        const WatchedValue &what = row.what;
        const bool known = row.state.known;
        const auto number = static_cast<unsigned>(host::modbusRegister(what.regType, what.address));
        return { m_stamp.text(elapsed),
                 QString::number(what.station),
                 what.regType,
                 host::addressText(what.regType, what.address),
                 hex(number, 4),
                 known ? numberText(what, row.number()) : QString(),
                 stateText(row.state),
                 what.name,
                 known ? formatValue(what, row.number()) : QString(),
                 what.scaling.unit,
                 known ? meaningText(what, row.number()) : QString() };
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
        return QStringLiteral("%1  %2  %3  %4  %5")
            .arg(m_stamp.column(elapsed))
            .arg(what.station)
            .arg(host::fullAddress(what.regType, what.address).leftJustified(16), shown, what.name)
            .trimmed();
    }

    std::vector<Row> m_rows;
    HeldChanges m_held;
};

} // namespace

void RunningView::printEvent(const char *event, QJsonObject object, host::Duration elapsed) const
{
    object.insert(QStringLiteral("event"), QString::fromLatin1(event));
    m_stamp.add(object, elapsed);
    printJson(object);
}

void RunningView::printUnshown(int count, const char *one, const char *many,
                               host::Duration elapsed) const
{
    if (count == 0)
        return;
    if (isJson())
        return printEvent("held", { { QStringLiteral("not_shown"), count } }, elapsed);
    const QString text =
        counted(static_cast<quint64>(count), one, many) + QStringLiteral(" not shown");
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
