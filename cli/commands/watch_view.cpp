// SPDX-License-Identifier: MIT
// How watched registers are shown: a live table, plain lines, CSV or JSON.
#include "cli/commands/watch_view.h"

#include "cli/counters_text.h"
#include "cli/output.h"
#include "cli/value_output.h"
#include "cli/value_table.h"
#include "host/length.h"
#include "host/notation.h"

#include <QTextStream>

#include <cstdio>

namespace dx4::cli {
namespace {

constexpr host::Duration redrawAfter = std::chrono::milliseconds(100);

double inSeconds(host::Duration span)
{
    return std::chrono::duration<double>(span).count();
}

/// Draws the table over itself.
class LiveView : public WatchView {
public:
    LiveView(const Terminal &terminal, host::Duration staleAfter)
        : m_out(stdout)
        , m_terminal(terminal)
        , m_staleAfter(staleAfter)
    {
        m_out << QStringLiteral("\x1b[?25l"); // no cursor while drawing
    }
    ~LiveView() override
    {
        m_out << QStringLiteral("\x1b[?25h");
        m_out.flush();
    }

    void values(const WatchList &list, const host::CounterSet &counters, host::Duration now,
                host::Duration) override
    {
        if (m_drawnAt && now - *m_drawnAt < redrawAfter)
            return;
        draw(list, counters, now);
    }

    void end(const WatchList &list, const host::CounterSet &counters, host::Duration now,
             host::Duration) override
    {
        draw(list, counters, now);
    }

private:
    void draw(const WatchList &list, const host::CounterSet &counters, host::Duration now)
    {
        m_drawnAt = now;
        QStringList lines = tableLines(list.rows(), now, m_terminal, m_staleAfter);
        lines.append(QString());
        lines.append(m_terminal.styled(countersText(counters), Terminal::Style::Dim));
        if (m_height > 0)
            m_out << QStringLiteral("\x1b[%1A").arg(m_height); // back up over the last drawing
        for (const QString &line : lines)
            m_out << line << QStringLiteral("\x1b[K\n");
        m_height = host::lengthOf(lines);
        m_out.flush();
    }

    QTextStream m_out;
    Terminal m_terminal;
    host::Duration m_staleAfter;
    std::optional<host::Duration> m_drawnAt;
    int m_height = 0;
};

/// What was last said about a row.
struct Said {
    bool anything = false;
    bool failed = false;
    quint16 value = 0;
};

/// A line for every value that became another, failed or came back.
class LineView : public WatchView {
public:
    explicit LineView(Form form)
        : m_form(form)
    {
        if (form == Form::Csv)
            printLine(QStringLiteral("time,station,type,address,register,value,state"));
    }

    void values(const WatchList &list, const host::CounterSet &, host::Duration,
                host::Duration elapsed) override
    {
        m_said.resize(list.rows().size());
        for (int i = 0; i < host::lengthOf(list.rows()); ++i) {
            const WatchRow &row = list.rows().at(i);
            Said &said = m_said[i];
            const bool known = row.answeredAt || row.state.failed;
            const bool other = said.failed != row.state.failed
                || (!row.state.failed && said.value != row.state.value);
            if (!known || (said.anything && !other))
                continue;
            said = { true, row.state.failed, row.state.value };
            print(row, elapsed);
        }
    }

    void end(const WatchList &, const host::CounterSet &counters, host::Duration,
             host::Duration elapsed) override
    {
        if (m_form == Form::Json) {
            QJsonObject object = countersJson(counters);
            object.insert(QStringLiteral("event"), QStringLiteral("end"));
            object.insert(QStringLiteral("time"), inSeconds(elapsed));
            printJson(object);
        } else if (m_form == Form::Text) {
            printLine(countersText(counters));
        }
    }

private:
    void print(const WatchRow &row, host::Duration elapsed) const
    {
        const WatchedValue &what = row.what;
        const QString time = QString::number(inSeconds(elapsed), 'f', 3);
        const QString state = row.state.failed ? QStringLiteral("failed") : QStringLiteral("ok");
        if (m_form == Form::Json) {
            QJsonObject object = registerJson(what.station, what.regType, what.address);
            object.insert(QStringLiteral("event"), QStringLiteral("value"));
            object.insert(QStringLiteral("time"), inSeconds(elapsed));
            object.insert(QStringLiteral("value"), row.state.value);
            object.insert(QStringLiteral("state"), state);
            printJson(object);
        } else if (m_form == Form::Csv) {
            printLine(QStringList {
                time, QString::number(what.station), what.regType,
                host::addressText(what.regType, what.address),
                hex(static_cast<unsigned>(host::modbusRegister(what.regType, what.address)), 4),
                QString::number(row.state.value), state }
                          .join(QLatin1Char(',')));
        } else {
            const QString value = row.state.failed
                ? state
                : QStringLiteral("%1 %2").arg(formatValue(what, row.state.value), what.unit);
            printLine(
                QStringLiteral("%1 s  %2  %3  %4")
                    .arg(time.rightJustified(8))
                    .arg(what.station)
                    .arg(host::fullAddress(what.regType, what.address).leftJustified(16), value)
                    .trimmed());
        }
    }

    Form m_form;
    QVector<Said> m_said;
};

} // namespace

std::unique_ptr<WatchView> WatchView::create(Form form, const Terminal &terminal,
                                             host::Duration staleAfter)
{
    if (form == Form::Text && terminal.live)
        return std::make_unique<LiveView>(terminal, staleAfter);
    return std::make_unique<LineView>(form);
}

} // namespace dx4::cli
