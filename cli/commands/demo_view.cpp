// SPDX-License-Identifier: MIT
// How the demonstration is shown: a live table, plain lines, or JSON.
#include "cli/commands/demo_view.h"

#include "cli/console/live_table.h"
#include "cli/console/output.h"
#include "cli/registers/counters_text.h"
#include "cli/registers/value_table.h"
#include "host/base/length.h"
#include "host/link/notation.h"

#include <QJsonObject>

#include <optional>
#include <vector>

namespace dx4::cli {
namespace {

constexpr host::Duration redrawAfter = std::chrono::milliseconds(100);
constexpr host::Duration plainLineAfter = std::chrono::seconds(1);

double inSeconds(host::Duration span)
{
    return std::chrono::duration<double>(span).count();
}

QString secondsText(host::Duration span)
{
    return QStringLiteral("%1 s").arg(inSeconds(span), 5, 'f', 1);
}

QString writeText(const DemoWrite &write)
{
    return QStringLiteral("wrote %1  %2, %3")
        .arg(host::fullAddress(write.regType, write.address).leftJustified(16), write.meaning,
             write.outcome);
}

/// The end of a path that is too long for its line.
QString shortened(const QString &path)
{
    constexpr int room = terminalColumns - 8;
    const QString dots = QStringLiteral("...");
    return path.size() <= room ? path : dots + path.right(room - host::lengthOf(dots));
}

QStringList headLines(const DemoSetting &setting)
{
    return { QStringLiteral("driver  %1").arg(shortened(setting.driver)),
             QStringLiteral("line    %1, %2 bit/s, 8N1, simulated inverter, stations 1 and 2")
                 .arg(setting.device)
                 .arg(setting.speed),
             QStringLiteral("polls   %1 registers, merged into %2 block reads")
                 .arg(setting.registers)
                 .arg(setting.blocks) };
}

QStringList summaryLines(const host::CounterSet &counters, host::Duration elapsed)
{
    const host::RequestCounts total = counters.total();
    return { QStringLiteral("Done: %1 in %2 s;")
                 .arg(countersText(counters))
                 .arg(inSeconds(elapsed), 0, 'f', 1),
             QStringLiteral("      %1 bytes sent, %2 received.")
                 .arg(total.bytesSent)
                 .arg(total.bytesReceived) };
}

/// Draws the table over itself.
class LiveView : public DemoView {
public:
    explicit LiveView(const Terminal &terminal)
        : m_terminal(terminal)
    {
    }

    void begin(const DemoSetting &setting) override
    {
        m_seconds = setting.seconds;
        printLines(headLines(setting));
        printLine(QString());
    }

    void write(const DemoWrite &write, host::Duration elapsed) override
    {
        m_lastWrite = QStringLiteral("%1  %2").arg(secondsText(elapsed), writeText(write));
    }

    void values(WatchList &list, const host::CounterSet &counters, host::Duration now,
                host::Duration elapsed) override
    {
        if (now - m_drawnAt < redrawAfter)
            return;
        m_drawnAt = now;
        draw(list, counters, now, elapsed);
    }

    void end(WatchList &list, const host::CounterSet &counters, host::Duration now,
             host::Duration elapsed) override
    {
        draw(list, counters, now, elapsed);
        printLine(QString());
        printLines(summaryLines(counters, elapsed));
    }

private:
    void draw(WatchList &list, const host::CounterSet &counters, host::Duration now,
              host::Duration elapsed)
    {
        const QString progress =
            QStringLiteral("%1 of %2 s  %3")
                .arg(secondsText(elapsed))
                .arg(m_seconds)
                .arg(m_terminal.styled(countersText(counters), Terminal::Style::Dim));
        m_terminal.measure();
        const QStringList foot { QString(), progress, m_lastWrite };
        const int room = LiveTable::room(m_terminal, host::lengthOf(foot));
        m_scroll.move(m_table.keys().take(), host::lengthOf(list.rows()));
        Scroll *scroll = m_table.keys().areThere() ? &m_scroll : nullptr;
        m_table.draw(tableLines(list.rows(), now, m_terminal, room, scroll), foot);
    }

    LiveTable m_table;
    Scroll m_scroll;
    Terminal m_terminal;
    QString m_lastWrite;
    host::Duration m_drawnAt { 0 };
    int m_seconds = 0;
};

/// One line per write and per second, and the table at the end.
class PlainView : public DemoView {
public:
    explicit PlainView(const Terminal &terminal)
        : m_terminal(terminal)
    {
    }

    void begin(const DemoSetting &setting) override
    {
        printLines(headLines(setting));
        printLine(QString());
    }

    void write(const DemoWrite &write, host::Duration elapsed) override
    {
        printLine(secondsText(elapsed) + QStringLiteral("  ") + writeText(write));
    }

    void values(WatchList &list, const host::CounterSet &, host::Duration,
                host::Duration elapsed) override
    {
        if (elapsed < m_nextLine)
            return;
        m_nextLine += plainLineAfter;
        QStringList shown;
        for (const WatchRow &row : list.rows()) {
            if (row.what.station == 1 && row.state.known && row.what.regType != QLatin1String("F")
                && !row.what.scaling.unit.isEmpty())
                shown.append(quantityText(row.what, row.number()));
        }
        printLine(QStringLiteral("%1  reads %2")
                      .arg(secondsText(elapsed), shown.join(QStringLiteral(", "))));
    }

    void end(WatchList &list, const host::CounterSet &counters, host::Duration now,
             host::Duration elapsed) override
    {
        printLine(QString());
        printLines(tableLines(list.rows(), now, m_terminal));
        printLine(QString());
        printLines(summaryLines(counters, elapsed));
    }

private:
    Terminal m_terminal;
    host::Duration m_nextLine = plainLineAfter;
};

/// One object per line: the setting, each changed value, each write, the counters.
class JsonView : public DemoView {
public:
    void begin(const DemoSetting &setting) override
    {
        printJson({ { QStringLiteral("event"), QStringLiteral("start") },
                    { QStringLiteral("driver"), setting.driver },
                    { QStringLiteral("device"), setting.device },
                    { QStringLiteral("speed"), setting.speed },
                    { QStringLiteral("registers"), setting.registers },
                    { QStringLiteral("blocks"), setting.blocks } });
    }

    void write(const DemoWrite &write, host::Duration elapsed) override
    {
        printJson({ { QStringLiteral("event"), QStringLiteral("write") },
                    { QStringLiteral("time"), inSeconds(elapsed) },
                    { QStringLiteral("station"), write.station },
                    { QStringLiteral("address"), host::fullAddress(write.regType, write.address) },
                    { QStringLiteral("count"), write.count },
                    { QStringLiteral("meaning"), write.meaning },
                    { QStringLiteral("outcome"), write.outcome } });
    }

    void values(WatchList &list, const host::CounterSet &, host::Duration,
                host::Duration elapsed) override
    {
        m_said.resize(static_cast<std::size_t>(list.rows().size()));
        for (std::size_t i = 0; i < m_said.size(); ++i) {
            const WatchRow &row = list.rows().at(static_cast<int>(i));
            // What is not taken is said with the value that it has then.
            if (!row.state.known || m_said[i] == row.state.value || !outputFlows())
                continue;
            m_said[i] = row.state.value;
            value(row, elapsed);
        }
    }

    void end(WatchList &, const host::CounterSet &counters, host::Duration,
             host::Duration elapsed) override
    {
        printJson(
            { { QStringLiteral("event"), QStringLiteral("end") },
              { QStringLiteral("time"), inSeconds(elapsed) },
              { QStringLiteral("reads"), static_cast<qint64>(counters.reads().good) },
              { QStringLiteral("writes"), static_cast<qint64>(counters.writes().good) },
              { QStringLiteral("retries"), static_cast<qint64>(counters.total().retries) },
              { QStringLiteral("givenUp"), static_cast<qint64>(counters.total().giveUps) },
              { QStringLiteral("bytesSent"), static_cast<qint64>(counters.total().bytesSent) },
              { QStringLiteral("bytesReceived"),
                static_cast<qint64>(counters.total().bytesReceived) } });
    }

private:
    void value(const WatchRow &row, host::Duration elapsed)
    {
        printJson(
            { { QStringLiteral("event"), QStringLiteral("value") },
              { QStringLiteral("time"), inSeconds(elapsed) },
              { QStringLiteral("station"), row.what.station },
              { QStringLiteral("address"), host::fullAddress(row.what.regType, row.what.address) },
              { QStringLiteral("name"), row.what.name },
              { QStringLiteral("raw"), row.state.value },
              { QStringLiteral("value"), formatValue(row.what, row.number()) },
              { QStringLiteral("meaning"), meaningText(row.what, row.number()) },
              { QStringLiteral("unit"), row.what.scaling.unit } });
    }

    std::vector<std::optional<quint16>> m_said; // last printed value, by row
};

} // namespace

std::unique_ptr<DemoView> DemoView::create(const Terminal &terminal, bool json)
{
    if (json)
        return std::make_unique<JsonView>();
    if (terminal.live)
        return std::make_unique<LiveView>(terminal);
    return std::make_unique<PlainView>(terminal);
}

} // namespace dx4::cli
