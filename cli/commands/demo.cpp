// SPDX-License-Identifier: MIT
// dx4 demo: the driver polling and writing a simulated inverter, for everyone to see.
#include "cli/commands/commands.h"

#include "cli/commands/demo_view.h"
#include "cli/console/interrupt.h"
#include "cli/line/driver_file.h"
#include "cli/line/polling.h"
#include "cli/line/simulator_process.h"
#include "cli/line/watch_plan.h"
#include "cli/registers/register_names.h"
#include "host/base/length.h"

#include <QDir>
#include <QHash>

namespace dx4::cli {
namespace {

constexpr int lineSpeed = 19200; // bit/s

struct Options {
    int seconds = 8; ///< length of the show, 1 or more
    QString simulator; ///< path of dx4-sim; empty: looked for
    QString driver; ///< path of the driver's file; empty: looked for
    bool json = false; ///< one JSON object per line instead of the table
    bool trace = false; ///< frames are shown on standard error
};

// What is polled; the plan brings it into the order of the line.
const char polled[] = "1:D 0-4 1:D 6 1:SW 1:FU 1:F 0.5 1:F 8.2-8.3 1:F c.13 2:D 4 2:SW 2:FU";

constexpr int parameter(int group, int index)
{
    return group * 256 + index;
}

QVector<DemoWrite> demoWrites()
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

QString notFound(const char *what, const QStringList &tried, const char *option)
{
    return filled("%1 not found; looked for %2; name it with %3", what,
                  tried.join(QStringLiteral(", ")), option);
}

/// The show on an open session.
class Show {
public:
    Show(Session &session, const QVector<WatchedValue> &values, DemoView &view, int seconds)
        : m_session(session)
        , m_runtime(session.runtime())
        , m_view(view)
        , m_list(values, session.runtime())
        , m_writes(demoWrites())
        , m_length(std::chrono::seconds(seconds))
    {
        m_runtime.onOutcome([this](const host::WriteOutcome &outcome) { report(outcome); });
    }

    /// Plays it to the end that was asked for.
    PollEnd play()
    {
        m_start = m_session.line().now();
        PollSettings settings;
        settings.enough = [this] {
            makeDueWrites();
            return elapsed() >= m_length;
        };
        settings.afterStep = [this] { show(); };
        settings.onLine = [](const QString &) {};
        settings.patience = host::Duration { 0 }; // a simulator that ended does not come back
        const PollEnd end = poll(m_session, settings);
        stopMotor(end);
        m_view.end(m_list, m_runtime.counters(), m_session.line().now(), elapsed());
        return end;
    }

private:
    host::Duration elapsed() const { return m_session.line().now() - m_start; }

    void show()
    {
        const host::Duration now = m_session.line().now();
        m_list.follow(now);
        m_view.values(m_list, m_runtime.counters(), now, elapsed());
    }

    void makeDueWrites()
    {
        while (m_nextWrite < m_writes.size()
               && elapsed() * 100 >= m_length * m_writes.at(m_nextWrite).share)
            submit(m_writes.at(m_nextWrite++));
    }

    void submit(const DemoWrite &write)
    {
        m_underWay.insert(m_runtime.write({ 1, write.regType, write.address, write.values }),
                          write);
    }

    void report(const host::WriteOutcome &outcome)
    {
        if (m_underWay.contains(outcome.id))
            m_view.write(m_underWay.take(outcome.id),
                         QString::fromLatin1(host::writeEndName(outcome.end)), elapsed());
    }

    /// Nothing is left turning, also when the show was cut short.
    void stopMotor(PollEnd end)
    {
        if (end == PollEnd::Enough)
            m_runtime.run([this] { return m_underWay.isEmpty() || !m_session.line().isOpen(); });
        const bool isStopped = m_nextWrite == m_writes.size() && m_underWay.isEmpty();
        if (end == PollEnd::LineGone || isStopped || quitAsked())
            return;
        const bool confirmed = m_session.stop().unconfirmed.isEmpty();
        m_view.write(m_writes.constLast(),
                     confirmed ? QStringLiteral("confirmed") : QStringLiteral("timed out"),
                     elapsed());
        show();
    }

    Session &m_session;
    host::Runtime &m_runtime;
    DemoView &m_view;
    WatchList m_list;
    QVector<DemoWrite> m_writes;
    QHash<int, DemoWrite> m_underWay; // by id
    int m_nextWrite = 0;
    host::Duration m_length;
    host::Duration m_start { 0 };
};

LineOptions demoLine(const Options &options, const QString &device)
{
    LineOptions line;
    line.driver = options.driver;
    line.json = options.json;
    line.trace = options.trace;
    line.station = 1;
    line.plant.line.port = device;
    line.plant.line.speed = lineSpeed;
    return line;
}

/// What went wrong in a show; ExitDone where nothing did.
Failure judge(const host::CounterSet &counters, PollEnd end)
{
    if (end == PollEnd::LineGone)
        return { ExitLine, QStringLiteral("the line to the simulator broke") };
    const bool hadTime = end == PollEnd::Enough;
    if (counters.total().giveUps > 0 || (counters.reads().good == 0 && hadTime))
        return { ExitNoReply, QStringLiteral("not every request was answered") };
    if (end == PollEnd::Asked && interrupted())
        return { ExitInterrupted, QStringLiteral("interrupted") };
    return { ExitDone, QString() };
}

int showOn(const Options &options, const LineOptions &line, const QString &driver)
{
    Failure failure;
    const QStringList words { QString::fromLatin1(polled) };
    const auto plan = makePlan(words, line, &failure);
    if (!plan)
        return complain(failure);
    SessionWishes wishes;
    wishes.stops = { { 1, stopWord } };
    const auto session = Session::open(line, &failure, wishes);
    if (!session)
        return complain(failure);
    session->runtime().setPlan(*plan);
    const host::DriverApi &api = session->runtime().link().api();
    const auto targets = parseTargets(words, 1, ReadAccess, api, &failure);
    const QVector<WatchedValue> values = RegisterNames(line.plant, api, true).of(*targets);
    DemoSetting setting;
    setting.driver = QDir::current().relativeFilePath(driver);
    setting.device = line.plant.line.port;
    setting.speed = lineSpeed;
    setting.registers = plan->wantedRegisters;
    setting.blocks = host::lengthOf(plan->blocks);
    setting.seconds = options.seconds;
    {
        DemoView view(setting, Terminal::detect(options.trace), options.json);
        failure = judge(session->runtime().counters(),
                        Show(*session, values, view, options.seconds).play());
    }
    return failure.code == ExitDone ? ExitDone : complain(failure);
}

int runDemo(const Options &options)
{
    const host::DriverFile driver = host::locateDriver(options.driver);
    if (driver.path.isEmpty())
        return complain(
            { ExitFailed, notFound("the driver libkorvane_dx4.so", driver.tried, "--driver") });
    const SimulatorFile simulator = locateSimulator(options.simulator);
    if (simulator.path.isEmpty())
        return complain(
            { ExitFailed, notFound("the simulator dx4-sim", simulator.tried, "--sim") });
    QString error;
    SimulatorProcess inverter;
    if (!inverter.start(simulator.path, QStringLiteral("1,2"), lineSpeed, &error))
        return complain({ ExitFailed, error });
    return showOn(options, demoLine(options, inverter.device()), driver.path);
}

} // namespace

void describeDemo(Command &command)
{
    Options &options = command.action(runDemo);
    command.number("--seconds", options.seconds, "length of the show", 1, 3600);
    command.text("--sim", options.simulator, "program of the simulator, dx4-sim", "FILE");
    addDriverOption(command, options.driver);
    command.flag("--json", options.json, "print one JSON object per line");
    addTraceOption(command, options.trace);
    command.example("dx4 demo --seconds 3", "a short show");
}

} // namespace dx4::cli
