// SPDX-License-Identifier: MIT
// dx4 demo: the driver polling and writing a simulated inverter, for everyone to see.
#include "cli/commands/demo.h"

#include "cli/commands/demo_view.h"
#include "cli/driver_file.h"
#include "cli/interrupt.h"
#include "cli/register_names.h"
#include "cli/simulator_process.h"
#include "host/length.h"
#include "host/serial_line.h"

#include <QDir>

#include <cstdio>

namespace dx4::cli {
namespace {

constexpr int lineSpeed = 19200; // bit/s
constexpr unsigned char readFunction = 3;

constexpr int parameter(int group, int index)
{
    return group * 256 + index;
}

/// A write of the show, made once `share` hundredths of its length have passed.
struct PlannedWrite {
    int share;
    QString regType;
    int address;
    QVector<quint16> values;
    QString meaning;
};

QVector<WatchedValue> demoValues()
{
    const QString f = QStringLiteral("F");
    const QString d = QStringLiteral("D");
    const QString sw = QStringLiteral("SW");
    const QString fu = QStringLiteral("FU");
    return {
        namedValue(1, d, 0),
        namedValue(1, d, 1),
        namedValue(1, d, 2),
        namedValue(1, d, 3),
        namedValue(1, d, 4),
        namedValue(1, d, 6),
        namedValue(1, sw, 0),
        namedValue(1, fu, 0),
        namedValue(1, f, parameter(0, 5)),
        namedValue(1, f, parameter(8, 2)),
        namedValue(1, f, parameter(8, 3)),
        namedValue(1, f, parameter(10, 13)),
        namedValue(2, d, 4),
        namedValue(2, sw, 0),
        namedValue(2, fu, 0),
    };
}

QVector<PlannedWrite> demoWrites()
{
    const QString f = QStringLiteral("F");
    const QString fre = QStringLiteral("FRE");
    const QString cw = QStringLiteral("CW");
    return {
        { 10, f, parameter(8, 2), { 20, 15 }, QStringLiteral("ramps of 2.0 s and 1.5 s") },
        { 10, f, parameter(10, 13), { 1234 }, QStringLiteral("parameter 1234") },
        { 15, fre, 0, { 3000 }, QStringLiteral("set frequency 30.00 Hz") },
        { 15, cw, 0, { runWord }, QStringLiteral("run") },
        { 45, fre, 0, { 5000 }, QStringLiteral("set frequency 50.00 Hz") },
        { 50, f, parameter(0, 5), { 77 }, QStringLiteral("parameter 77") },
        { 75, cw, 0, { stopWord }, QStringLiteral("stop") },
    };
}

int complain(const QString &what)
{
    QTextStream(stderr) << "dx4 demo: " << what << '\n';
    return 1;
}

QString notFound(const char *what, const QStringList &tried, const char *option)
{
    return QStringLiteral("%1 not found; looked for %2; name it with %3")
        .arg(QString::fromLatin1(what), tried.join(QStringLiteral(", ")),
             QString::fromLatin1(option));
}

/// The show on a line that is open and a driver that is loaded.
class Show {
public:
    Show(host::Link &link, host::Line &line, DemoView &view, int seconds)
        : m_link(link)
        , m_line(line)
        , m_exchange(line)
        , m_cycle(link, m_exchange)
        , m_view(view)
        , m_list(demoValues())
        , m_writes(demoWrites())
        , m_length(std::chrono::seconds(seconds))
    {
    }

    /// Plays it; gives whether everything was answered.
    bool play(DemoSetting setting)
    {
        setting.registers = host::lengthOf(m_list.rows());
        setting.blocks = host::lengthOf(m_link.poll(m_list.addresses()));
        m_view.begin(setting);
        m_start = m_line.now();
        while (elapsed() < m_length && m_line.isOpen() && !shouldEnd()) {
            makeDueWrites();
            takeStep();
        }
        stopMotor();
        m_view.end(m_list, m_cycle.counters(), m_line.now(), elapsed());
        const bool hadTime = !shouldEnd();
        return m_line.isOpen() && m_cycle.counters().total().giveUps == 0
            && (m_cycle.counters().reads().good > 0 || !hadTime);
    }

private:
    host::Duration elapsed() const { return m_line.now() - m_start; }

    void makeDueWrites()
    {
        while (m_nextWrite < m_writes.size()
               && elapsed() * 100 >= m_length * m_writes.at(m_nextWrite).share)
            queue(m_writes.at(m_nextWrite++));
    }

    void queue(const PlannedWrite &write)
    {
        m_link.write(1, write.regType, write.address, write.values);
        m_underWay.append(write);
    }

    void takeStep()
    {
        const host::Cycle::Step step = m_cycle.step();
        const host::Duration now = m_line.now();
        m_list.follow(m_link, m_cycle, step, now);
        reportWrite(step);
        m_view.values(m_list, m_cycle.counters(), now, elapsed());
    }

    /// The driver serves writes in the order in which they were queued.
    void reportWrite(host::Cycle::Step step)
    {
        const bool settled =
            step == host::Cycle::Step::Served || step == host::Cycle::Step::GivenUp;
        if (!settled || m_cycle.request().frame[1] == readFunction || m_underWay.isEmpty())
            return;
        const PlannedWrite write = m_underWay.takeFirst();
        const bool confirmed = step == host::Cycle::Step::Served;
        m_view.write({ 1, write.regType, write.address, host::lengthOf(write.values), write.meaning,
                       confirmed },
                     elapsed());
    }

    /// Nothing is left turning, also when the show was cut short.
    void stopMotor()
    {
        const bool stopIsPlanned = m_nextWrite < m_writes.size();
        if (stopIsPlanned)
            queue(m_writes.constLast());
        while (!m_underWay.isEmpty() && m_line.isOpen())
            takeStep();
    }

    host::Link &m_link;
    host::Line &m_line;
    host::LineExchange m_exchange;
    host::Cycle m_cycle;
    DemoView &m_view;
    WatchList m_list;
    QVector<PlannedWrite> m_writes;
    QVector<PlannedWrite> m_underWay;
    int m_nextWrite = 0;
    host::Duration m_length;
    host::Duration m_start { 0 };
};

host::LineSettings demoLine(const QString &device)
{
    host::LineSettings settings;
    settings.port = device;
    settings.speed = lineSpeed;
    return settings;
}

} // namespace

int runDemo(const DemoOptions &options)
{
    const host::DriverFile driver = host::locateDriver(options.driver);
    if (driver.path.isEmpty())
        return complain(notFound("the driver libkorvane_dx4.so", driver.tried, "--driver"));
    const SimulatorFile simulator = locateSimulator(options.simulator);
    if (simulator.path.isEmpty())
        return complain(notFound("the simulator dx4-sim", simulator.tried, "--sim"));

    QString error;
    auto plugin = host::Plugin::load(driver.path, host::Plugin::Instance::Shared, &error);
    if (!plugin)
        return complain(error);
    SimulatorProcess inverter;
    if (!inverter.start(simulator.path, QStringLiteral("1,2"), lineSpeed, &error))
        return complain(error);
    host::SerialLine line(demoLine(inverter.device()));
    if (!line.open(&error))
        return complain(error);

    watchForInterrupt();
    host::Link link(std::move(plugin), host::LinkSettings());
    QTextStream out(stdout);
    const auto view = DemoView::create(out, Terminal::detect(), options.json);
    DemoSetting setting;
    setting.driver = QDir::current().relativeFilePath(driver.path);
    setting.device = inverter.device();
    setting.speed = lineSpeed;
    setting.seconds = options.seconds;
    Show show(link, line, *view, options.seconds);
    if (show.play(setting))
        return 0;
    return complain(line.isOpen() ? QStringLiteral("not every request was answered")
                                  : QStringLiteral("the line to the simulator broke"));
}

void addDemo(CommandLine &line)
{
    Command command = line.add("demo", "poll and write a simulated inverter");
    const auto options = std::make_shared<DemoOptions>();
    command.number("--seconds", options->seconds, "length of the show", 1, 3600);
    command.text("--sim", options->simulator, "program of the simulator, dx4-sim", "FILE");
    addDriverOption(command, options->driver);
    command.flag("--json", options->json, "print one JSON object per line");
    command.example(QStringLiteral("dx4 demo --seconds 3"), QStringLiteral("a short show"));
    command.action([options] { return runDemo(*options); });
}

} // namespace dx4::cli
