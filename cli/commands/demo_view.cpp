// SPDX-License-Identifier: MIT
// How the demonstration is shown: a live table, plain lines, or JSON.
#include "cli/commands/demo_view.h"

#include "cli/console/output.h"
#include "cli/registers/counters_text.h"
#include "cli/registers/value_table.h"
#include "host/base/length.h"
#include "host/link/notation.h"

#include <optional>
#include <vector>

namespace dx4::cli {
namespace {

constexpr host::Duration plainLineAfter = std::chrono::seconds(1);

/// The end of a path that is too long for its line.
QString shortened(const QString &path)
{
    constexpr int room = terminalColumns - 8;
    const QString dots = QStringLiteral("...");
    return path.size() <= room ? path : dots + path.right(room - host::lengthOf(dots));
}

QStringList summaryLines(const host::CounterSet &counters, host::Duration elapsed)
{
    const host::RequestCounts total = counters.total();
    return { QStringLiteral("Done: %1 in %2 s;")
                 .arg(countersText(counters))
                 .arg(inSeconds(elapsed), 0, 'f', 1),
             filled("      %1 bytes sent, %2 received.", total.bytesSent, total.bytesReceived) };
}

/// One line per write and per second, and the table at the end.
class PlainView : public WatchView {
public:
    explicit PlainView(const Terminal &terminal)
        : m_terminal(terminal)
    {
    }

    void line(const QString &text) override { printLine(text); }

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
        printLine(filled("%1  reads %2", secondsText(elapsed), shown.join(QStringLiteral(", "))));
    }

    void end(WatchList &list, const host::CounterSet &, host::Duration now, host::Duration) override
    {
        printLine(QString());
        printLines(tableLines(list.rows(), now, m_terminal));
    }

private:
    Terminal m_terminal;
    host::Duration m_nextLine = plainLineAfter;
};

/// An object for each changed value, and the counters.
class JsonView : public RunningView {
public:
    JsonView()
        : RunningView({ WatchStyle::Form::Json })
    {
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
        printEvent("end", sumFacts(counters), elapsed);
    }

private:
    void value(const WatchRow &row, host::Duration elapsed)
    {
        printEvent("value",
                   { { "station", row.what.station },
                     { "address", host::fullAddress(row.what.regType, row.what.address) },
                     { "name", row.what.name },
                     { "raw", row.state.value },
                     { "value", formatValue(row.what, row.number()) },
                     { "meaning", meaningText(row.what, row.number()) },
                     { "unit", row.what.scaling.unit } },
                   elapsed);
    }

    std::vector<std::optional<quint16>> m_said; // last printed value, by row
};

} // namespace

DemoView::DemoView(const DemoSetting &setting, const Terminal &terminal, bool json)
    : m_json(json)
{
    WatchStyle style;
    style.seconds = setting.seconds;
    if (json)
        m_values = std::make_unique<JsonView>();
    else if (terminal.live)
        m_values = WatchView::create(style, terminal, {});
    else
        m_values = std::make_unique<PlainView>(terminal);
    print(json,
          { { "event", QStringLiteral("start") },
            { "driver", setting.driver, shortened(setting.driver) },
            { "device", setting.device },
            { "speed", setting.speed },
            { "registers", setting.registers },
            { "blocks", setting.blocks } },
          "driver  {driver}\n"
          "line    {device}, {speed} bit/s, 8N1, simulated inverter, stations 1 and 2\n"
          "polls   {registers} registers, merged into {blocks} block reads\n");
}

void DemoView::write(const DemoWrite &write, const QString &outcome, host::Duration elapsed)
{
    const QString address = host::fullAddress(write.regType, write.address);
    if (!m_json)
        return m_values->line(filled("%1  wrote %2  %3, %4", secondsText(elapsed),
                                     address.leftJustified(16), write.meaning, outcome));
    printJson({ { "event", QStringLiteral("write") },
                { "time", inSeconds(elapsed) },
                { "station", 1 },
                { "address", address },
                { "count", host::lengthOf(write.values) },
                { "meaning", write.meaning },
                { "outcome", outcome } });
}

void DemoView::values(WatchList &list, const host::CounterSet &counters, host::Duration now,
                      host::Duration elapsed)
{
    m_values->values(list, counters, now, elapsed);
}

void DemoView::end(WatchList &list, const host::CounterSet &counters, host::Duration now,
                   host::Duration elapsed)
{
    m_values->end(list, counters, now, elapsed);
    if (m_json)
        return;
    printLine(QString());
    printLines(summaryLines(counters, elapsed));
}

} // namespace dx4::cli
