// SPDX-License-Identifier: MIT
// A line with the reference host at work on it, as the commands that need one have it.
#include "cli/line/session.h"

#include "cli/console/interrupt.h"
#include "cli/console/output.h"
#include "cli/console/standard_streams.h"
#include "cli/line/driver_file.h"
#include "cli/line/interruptible_line.h"
#include "cli/line/tracing_line.h"
#include "cli/registers/reply_text.h"
#include "cli/registers/values.h"
#include "host/frames/verdict_text.h"
#include "host/line/port_list.h"
#include "host/line/serial_line.h"
#include "host/link/notation.h"
#include "host/recording/recording_line.h"
#include "host/runtime/config_runtime.h"

#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>

namespace dx4::cli {
namespace {

using Step = host::Runtime::Step;

QString whereText(const Target &target)
{
    return filled("station %1, %2", target.station,
                  host::fullAddress(target.regType, target.address));
}

QString triesText(int tries)
{
    return tries > 1 ? filled(" after %1 tries", tries) : QString();
}

host::Plan planOf(const Target &target)
{
    host::Plan plan;
    plan.blocks = { host::wanted(target.station, target.regType, target.address, target.count) };
    return plan;
}

} // namespace

void addStop(QVector<host::StopCommand> &stops, const host::StopCommand &added)
{
    if (std::none_of(stops.cbegin(), stops.cend(),
                     [&](const auto &stop) { return stop.station == added.station; }))
        stops.append(added);
}

Session::Session(const LineOptions &options, const SessionWishes &wishes)
    : m_options(options)
    , m_port(std::make_unique<host::SerialLine>(options.plant.line))
    , m_recorder(wishes.ring ? std::make_unique<host::RecordingLine>(*m_port, *wishes.ring)
                             : nullptr)
    , m_tracer(options.trace
                   ? std::make_unique<TracingLine>(m_recorder ? *m_recorder : *m_port, writeTrace)
                   : nullptr)
    , m_line(std::make_unique<InterruptibleLine>(m_tracer         ? *m_tracer
                                                     : m_recorder ? *m_recorder
                                                                  : *m_port))
{
}

Session::~Session() = default;

std::unique_ptr<Session> Session::open(const LineOptions &options, Failure *failure,
                                       const SessionWishes &wishes)
{
    if (options.plant.line.port.isEmpty()) {
        *failure = {
            ExitUsage,
            QStringLiteral(
                "no serial port; name it with --port or in DX4_PORT; \"dx4 line\" lists them")
        };
        return nullptr;
    }
    auto plugin = loadDriver(options.driver, failure);
    if (!plugin)
        return nullptr;
    watchForInterrupt();
    std::unique_ptr<Session> session(new Session(options, wishes));
    QString error;
    if (!session->m_line->open(&error)) {
        const bool isThere = QFileInfo::exists(host::portDevice(options.plant.line.port));
        *failure = { ExitLine,
                     filled("cannot open %1%2", error,
                            isThere ? "" : "; \"dx4 line\" lists the ports") };
        return nullptr;
    }
    host::RuntimeSettings settings = host::runtimeSettings(options.plant);
    for (const host::StopCommand &stop : wishes.stops)
        addStop(settings.stops, stop);
    settings.staleAfter = wishes.staleAfter;
    settings.pause = pauseFor;
    session->m_stops = settings.stops;
    session->m_runtime =
        std::make_unique<host::Runtime>(std::move(plugin), *session->m_line, settings);
    session->m_runtime->onNotice(
        [told = session.get()](const QString &text) { told->tellNotice(text); });
    host::setExtraGaps(session->m_runtime->guard(), options.plant);
    return session;
}

host::Line &Session::line()
{
    return *m_line;
}

host::ReplyVerdict Session::verdict() const
{
    const host::ExchangeReport &report = m_runtime->report();
    // Nothing of the station's own came, but others were heard.
    const bool foreignAlone =
        report.verdict.cause == host::ReplyCause::Silence && report.foreignFrames > 0;
    return foreignAlone ? host::ReplyVerdict { host::ReplyCause::ForeignStation, 0 }
                        : report.verdict;
}

int Session::requests(bool writes) const
{
    const host::CounterSet &counters = m_runtime->counters();
    return static_cast<int>((writes ? counters.writes() : counters.reads()).requests);
}

Failure Session::failureOf(Step step, const Target &target, int tries) const
{
    const QString where = whereText(target);
    if (step == Step::LineDown)
        return { ExitLine, filled("%1: %2 broke", where, m_options.plant.line.port) };
    if (step == Step::Idle)
        return { ExitNoReply, filled("%1: not asked, as the station is silent", where) };
    return { causeCode(verdict()),
             filled("%1: %2%3", where, host::verdictText(verdict()), triesText(tries)) };
}

/// Steps until the request of this piece is answered or given up.
bool Session::settle(const Target &target, Failure *failure)
{
    const int before = requests(false);
    while (!shouldEnd()) {
        giveWayIfAsked();
        const Step taken = m_runtime->step();
        if (taken == Step::Served)
            return true;
        const bool passedOver = taken == Step::Idle && m_runtime->isLeftAlone(target.station);
        if (taken == Step::Retry || (taken == Step::Idle && !passedOver))
            continue;
        *failure = failureOf(taken, target, requests(false) - before);
        return false;
    }
    return fail(failure, QStringLiteral("interrupted"), ExitInterrupted);
}

std::optional<QVector<quint16>> Session::read(const Target &target, Failure *failure)
{
    QVector<quint16> values;
    for (const Target &piece : pieces(target, m_options.plant.link.blockSize)) {
        m_runtime->setPlan(planOf(piece));
        if (!settle(piece, failure))
            return std::nullopt;
        values +=
            m_runtime->link().values(piece.station, piece.regType, piece.address, piece.count);
    }
    m_runtime->setPlan({});
    return values;
}

bool Session::hear(int station, Failure *failure)
{
    const Target status { station, QStringLiteral("SW"), 0, 1 };
    if (read(status, failure))
        return true;
    m_runtime->setPlan({});
    return failure->code == ExitRefused;
}

Failure Session::failureOf(const host::WriteOutcome &outcome, const Target &target, int tries) const
{
    const QString where = whereText(target);
    switch (outcome.end) {
    case host::WriteEnd::Rejected:
    case host::WriteEnd::TimedOut:
        return failureOf(m_line->isOpen() ? Step::GivenUp : Step::LineDown, target, tries);
    case host::WriteEnd::NotTaken:
        return { ExitDiffers, filled("%1: echoed, but the station holds another value", where) };
    case host::WriteEnd::Refused:
        if (outcome.refusal == host::Refusal::NotConnected)
            return failureOf(m_line->isOpen() ? Step::Idle : Step::LineDown, target, tries);
        break;
    case host::WriteEnd::Confirmed:
    case host::WriteEnd::Replaced:
        break;
    }
    return { ExitUsage, outcome.text };
}

QVector<WriteResult> Session::write(const Target &target, const QVector<quint16> &values,
                                    const WriteManner &manner, Failure *failure)
{
    QVector<WriteResult> results;
    for (const Target &piece : pieces(target, m_options.plant.link.blockSize)) {
        const int readsBefore = requests(false);
        const int writesBefore = requests(true);
        const int id = m_runtime->write({ piece.station, piece.regType, piece.address,
                                          values.mid(piece.address - target.address, piece.count),
                                          manner.always, manner.readBack });
        std::optional<host::WriteOutcome> ended;
        m_runtime->onOutcome([&ended, id](const host::WriteOutcome &outcome) {
            if (outcome.id == id)
                ended = outcome;
        });
        m_runtime->run([this, &ended] {
            giveWayIfAsked();
            return ended || shouldEnd();
        });
        m_runtime->onOutcome({});
        const int writes = requests(true) - writesBefore;
        const bool isConfirmed = ended && ended->end == host::WriteEnd::Confirmed;
        if (piece.regType == QLatin1String("CW"))
            noteCommand(piece, values.constFirst(), isConfirmed, ended ? ended->sent : writes > 0);
        if (isConfirmed) {
            results.append({ piece, *ended });
            continue;
        }
        const int tries = writes > 0 ? writes : requests(false) - readsBefore;
        const QString maybe = filled("interrupted, %1 may have been written", whereText(piece));
        *failure = ended ? failureOf(*ended, piece, tries) : Failure { ExitInterrupted, maybe };
        break;
    }
    return results;
}

void Session::noteCommand(const Target &target, quint16 word, bool confirmed, bool sent)
{
    const bool isStop = std::any_of(m_stops.cbegin(), m_stops.cend(), [&](const auto &stop) {
        return stop.station == target.station && stop.controlWord == word;
    });
    if (isStop && confirmed)
        m_mayTurn.erase(target.station);
    else if (isStop || sent)
        m_mayTurn.insert(target.station);
}

host::StopReport Session::stop()
{
    m_line->waitInFull(); // the signal that led here must not cut this short
    host::StopReport report = m_runtime->stop(m_options.plant.stop.confirmWithin);
    for (const host::StopCommand &stop : std::as_const(m_stops)) {
        if (report.unconfirmed.contains(stop.station))
            m_mayTurn.insert(stop.station);
        else
            m_mayTurn.erase(stop.station);
    }
    return report;
}

bool Session::stopSafely()
{
    if (quitAsked())
        noteUnstopped();
    bool isConfirmed = true;
    if (!m_stops.isEmpty() && !quitAsked()) {
        const host::StopReport report = stop();
        isConfirmed = report.unconfirmed.isEmpty();
        for (const host::StopCommand &stop : std::as_const(m_stops)) {
            if (!report.unconfirmed.contains(stop.station))
                note(filled("station %1 stopped", stop.station));
        }
        if (!isConfirmed)
            note(report.text);
    }
    warnOfMotors();
    return isConfirmed;
}

void Session::noteUnstopped()
{
    for (const host::StopCommand &stop : std::as_const(m_stops))
        m_mayTurn.insert(stop.station);
}

void Session::warnOfMotors()
{
    for (const int station : m_mayTurn)
        note(filled("the motor of station %1 may still turn; stop it with: %2", station,
                    stopCommand(station)));
}

QString Session::stopCommand(int station) const
{
    static const QRegularExpression plain(QStringLiteral("^[A-Za-z0-9_./:=+-]+$"));
    QStringList words { QStringLiteral("dx4"), QStringLiteral("stop") };
    words << m_options.given << QStringLiteral("--port") << m_options.plant.line.port
          << QStringLiteral("--station") << QString::number(station);
    for (QString &word : words) {
        if (!plain.match(word).hasMatch())
            word = QLatin1Char('\'') + word.replace(QLatin1Char('\''), QLatin1String("'\\''"))
                + QLatin1Char('\'');
    }
    return words.join(QLatin1Char(' '));
}

void Session::tellNotice(const QString &text) const
{
    if (m_onNotice)
        m_onNotice(text);
    else if (m_options.json)
        printJson({ { "event", QStringLiteral("notice") }, { "text", text } });
    else
        note(text);
}

void Session::giveWayIfAsked()
{
    if (!suspendAsked())
        return;
    const bool wasOpen = m_line->isOpen();
    m_line->close(); // another program may want to stop the drives
    note(filled("suspended; %1 is free, drives go on as they are", m_options.plant.line.port));
    const std::set<int> before = m_mayTurn;
    noteUnstopped();
    warnOfMotors();
    m_mayTurn = before;
    suspendIfAsked();
    // Where the port is gone or taken by now the runtime sees a line that broke.
    if (wasOpen)
        m_line->open(nullptr);
}

} // namespace dx4::cli
