// SPDX-License-Identifier: MIT
// How the demonstration is shown: a live table, plain lines, or JSON.
#include "cli/commands/demo_view.h"

#include "cli/counters_text.h"
#include "cli/value_table.h"
#include "host/length.h"
#include "host/notation.h"

#include <QJsonDocument>
#include <QJsonObject>

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
             write.confirmed ? QStringLiteral("confirmed") : QStringLiteral("given up"));
}

QStringList headLines(const DemoSetting &setting)
{
    return { QStringLiteral("driver  %1").arg(setting.driver),
             QStringLiteral("line    %1, %2 bit/s, 8N1, simulated inverter, stations 1 and 2")
                 .arg(setting.device)
                 .arg(setting.speed),
             QStringLiteral("polls   %1 registers, merged into %2 block reads")
                 .arg(setting.registers)
                 .arg(setting.blocks) };
}

QString summaryText(const host::CounterSet &counters, host::Duration elapsed)
{
    return QStringLiteral("%1 in %2 s; %3 bytes sent, %4 received.")
        .arg(countersText(counters))
        .arg(inSeconds(elapsed), 0, 'f', 1)
        .arg(counters.total().bytesSent)
        .arg(counters.total().bytesReceived);
}

/// Draws the table over itself.
class LiveView : public DemoView {
public:
    LiveView(QTextStream &out, const Terminal &terminal)
        : m_out(out)
        , m_terminal(terminal)
    {
        m_out << QStringLiteral("\x1b[?25l"); // no cursor while drawing
    }
    ~LiveView() override
    {
        m_out << QStringLiteral("\x1b[?25h");
        m_out.flush();
    }

    void begin(const DemoSetting &setting) override
    {
        m_seconds = setting.seconds;
        m_out << headLines(setting).join(QLatin1Char('\n')) << "\n\n";
    }

    void write(const DemoWrite &write, host::Duration elapsed) override
    {
        m_lastWrite = QStringLiteral("%1  %2").arg(secondsText(elapsed), writeText(write));
    }

    void values(const WatchList &list, const host::CounterSet &counters, host::Duration now,
                host::Duration elapsed) override
    {
        if (now - m_drawnAt < redrawAfter)
            return;
        m_drawnAt = now;
        draw(list, counters, now, elapsed);
    }

    void end(const WatchList &list, const host::CounterSet &counters, host::Duration now,
             host::Duration elapsed) override
    {
        draw(list, counters, now, elapsed);
        m_out << '\n' << "Done: " << summaryText(counters, elapsed) << '\n';
    }

private:
    void draw(const WatchList &list, const host::CounterSet &counters, host::Duration now,
              host::Duration elapsed)
    {
        QStringList lines = tableLines(list.rows(), now, m_terminal);
        lines.append(QString());
        lines.append(QStringLiteral("%1 of %2 s  %3")
                         .arg(secondsText(elapsed))
                         .arg(m_seconds)
                         .arg(m_terminal.styled(countersText(counters), Terminal::Style::Dim)));
        lines.append(m_lastWrite);
        if (m_height > 0)
            m_out << QStringLiteral("\x1b[%1A").arg(m_height); // back up over the last drawing
        for (const QString &line : lines)
            m_out << line << QStringLiteral("\x1b[K\n");
        m_height = host::lengthOf(lines);
        m_out.flush();
    }

    QTextStream &m_out;
    Terminal m_terminal;
    QString m_lastWrite;
    host::Duration m_drawnAt { 0 };
    int m_height = 0;
    int m_seconds = 0;
};

/// One line per write and per second, and the table at the end.
class PlainView : public DemoView {
public:
    PlainView(QTextStream &out, const Terminal &terminal)
        : m_out(out)
        , m_terminal(terminal)
    {
    }

    void begin(const DemoSetting &setting) override
    {
        m_out << headLines(setting).join(QLatin1Char('\n')) << "\n\n";
        m_out.flush();
    }

    void write(const DemoWrite &write, host::Duration elapsed) override
    {
        m_out << secondsText(elapsed) << "  " << writeText(write) << '\n';
        m_out.flush();
    }

    void values(const WatchList &list, const host::CounterSet &, host::Duration,
                host::Duration elapsed) override
    {
        if (elapsed < m_nextLine)
            return;
        m_nextLine += plainLineAfter;
        QStringList shown;
        for (const WatchRow &row : list.rows()) {
            if (row.what.station == 1 && row.answeredAt
                && (row.what.regType != QLatin1String("F") && !row.what.unit.isEmpty()))
                shown.append(formatValue(row.what, row.state.value) + QLatin1Char(' ')
                             + row.what.unit);
        }
        m_out << secondsText(elapsed) << "  reads " << shown.join(QStringLiteral(", ")) << '\n';
        m_out.flush();
    }

    void end(const WatchList &list, const host::CounterSet &counters, host::Duration now,
             host::Duration elapsed) override
    {
        m_out << '\n';
        for (const QString &line : tableLines(list.rows(), now, m_terminal))
            m_out << line << '\n';
        m_out << '\n' << "Done: " << summaryText(counters, elapsed) << '\n';
    }

private:
    QTextStream &m_out;
    Terminal m_terminal;
    host::Duration m_nextLine = plainLineAfter;
};

/// One object per line: the setting, each changed value, each write, the counters.
class JsonView : public DemoView {
public:
    explicit JsonView(QTextStream &out)
        : m_out(out)
    {
    }

    void begin(const DemoSetting &setting) override
    {
        print({ { QStringLiteral("event"), QStringLiteral("start") },
                { QStringLiteral("driver"), setting.driver },
                { QStringLiteral("device"), setting.device },
                { QStringLiteral("speed"), setting.speed },
                { QStringLiteral("registers"), setting.registers },
                { QStringLiteral("blocks"), setting.blocks } });
    }

    void write(const DemoWrite &write, host::Duration elapsed) override
    {
        print({ { QStringLiteral("event"), QStringLiteral("write") },
                { QStringLiteral("time"), inSeconds(elapsed) },
                { QStringLiteral("station"), write.station },
                { QStringLiteral("address"), host::fullAddress(write.regType, write.address) },
                { QStringLiteral("count"), write.count },
                { QStringLiteral("meaning"), write.meaning },
                { QStringLiteral("confirmed"), write.confirmed } });
    }

    void values(const WatchList &list, const host::CounterSet &, host::Duration now,
                host::Duration elapsed) override
    {
        for (const WatchRow &row : list.rows()) {
            const bool first = row.answeredAt == now && !row.changedAt;
            if (row.changedAt == now || first)
                value(row, elapsed);
        }
    }

    void end(const WatchList &, const host::CounterSet &counters, host::Duration,
             host::Duration elapsed) override
    {
        print({ { QStringLiteral("event"), QStringLiteral("end") },
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
        print(
            { { QStringLiteral("event"), QStringLiteral("value") },
              { QStringLiteral("time"), inSeconds(elapsed) },
              { QStringLiteral("station"), row.what.station },
              { QStringLiteral("address"), host::fullAddress(row.what.regType, row.what.address) },
              { QStringLiteral("name"), row.what.name },
              { QStringLiteral("raw"), row.state.value },
              { QStringLiteral("value"), formatValue(row.what, row.state.value) },
              { QStringLiteral("unit"), row.what.unit } });
    }

    void print(const QJsonObject &object)
    {
        m_out << QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact)) << '\n';
        m_out.flush();
    }

    QTextStream &m_out;
};

} // namespace

std::unique_ptr<DemoView> DemoView::create(QTextStream &out, const Terminal &terminal, bool json)
{
    if (json)
        return std::make_unique<JsonView>(out);
    if (terminal.live)
        return std::make_unique<LiveView>(out, terminal);
    return std::make_unique<PlainView>(out, terminal);
}

} // namespace dx4::cli
