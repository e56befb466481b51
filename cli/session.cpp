// SPDX-License-Identifier: MIT
// A line with the reference host at work on it, as the commands that need one have it.
#include "cli/session.h"

#include "cli/driver_file.h"
#include "cli/interrupt.h"
#include "cli/interruptible_line.h"
#include "cli/reply_text.h"
#include "cli/values.h"
#include "host/config_runtime.h"
#include "host/notation.h"
#include "host/recording_line.h"
#include "host/serial_line.h"

#include <algorithm>

namespace dx4::cli {
namespace {

using Step = host::Runtime::Step;

QString whereText(const Target &target)
{
    return QStringLiteral("station %1, %2")
        .arg(target.station)
        .arg(host::fullAddress(target.regType, target.address));
}

QString triesText(int tries)
{
    return tries > 1 ? QStringLiteral(" after %1 tries").arg(tries) : QString();
}

host::Plan planOf(const Target &target)
{
    host::Plan plan;
    plan.addresses = { host::wanted(target.station, target.regType, target.address, target.count) };
    return plan;
}

/// Stops of the configuration and those that a command adds; one per station.
QVector<host::StopCommand> allStops(const host::RuntimeSettings &settings,
                                    const QVector<host::StopCommand> &added)
{
    QVector<host::StopCommand> stops = settings.stops;
    for (const host::StopCommand &command : added) {
        const bool known = std::any_of(stops.cbegin(), stops.cend(), [&](const auto &stop) {
            return stop.station == command.station;
        });
        if (!known)
            stops.append(command);
    }
    return stops;
}

} // namespace

Session::Session(const LineOptions &options, const SessionWishes &wishes)
    : m_options(options)
    , m_port(std::make_unique<host::SerialLine>(options.plant.line))
    , m_recorder(wishes.ring ? std::make_unique<host::RecordingLine>(*m_port, *wishes.ring)
                             : nullptr)
    , m_line(std::make_unique<InterruptibleLine>(m_recorder ? *m_recorder : *m_port))
{
}

Session::~Session() = default;

std::unique_ptr<Session> Session::open(const LineOptions &options, Failure *failure,
                                       const SessionWishes &wishes)
{
    if (options.plant.line.port.isEmpty()) {
        *failure = { ExitUsage,
                     QStringLiteral("no serial port; name it with --port or in DX4_PORT; "
                                    "\"dx4 line\" lists them") };
        return nullptr;
    }
    auto plugin = loadDriver(options.driver, host::Plugin::Instance::Shared, failure);
    if (!plugin)
        return nullptr;
    watchForInterrupt();
    std::unique_ptr<Session> session(new Session(options, wishes));
    QString error;
    if (!session->m_line->open(&error)) {
        *failure = { ExitLine, QStringLiteral("cannot open %1").arg(error) };
        return nullptr;
    }
    host::RuntimeSettings settings = host::runtimeSettings(options.plant);
    settings.stops = allStops(settings, wishes.stops);
    settings.staleAfter = wishes.staleAfter;
    settings.pause = pauseFor;
    session->m_stops = settings.stops;
    session->m_runtime =
        std::make_unique<host::Runtime>(std::move(plugin), *session->m_line, settings);
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
        return { ExitLine, QStringLiteral("%1: %2 broke").arg(where, m_options.plant.line.port) };
    if (step == Step::Idle)
        return { ExitNoReply,
                 QStringLiteral("%1: not asked, as the station is silent").arg(where) };
    return { causeCode(verdict()),
             QStringLiteral("%1: %2%3").arg(where, causeText(verdict()), triesText(tries)) };
}

/// Steps until the request of this piece is answered or given up.
bool Session::settle(const Target &target, Failure *failure)
{
    const int before = requests(false);
    while (!shouldEnd()) {
        const Step taken = m_runtime->step();
        if (taken == Step::Served)
            return true;
        const bool passedOver = taken == Step::Idle && m_runtime->isLeftAlone(target.station);
        if (taken == Step::Retry || (taken == Step::Idle && !passedOver))
            continue;
        *failure = failureOf(taken, target, requests(false) - before);
        return false;
    }
    *failure = { ExitInterrupted, QStringLiteral("interrupted") };
    return false;
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
        return { ExitDiffers,
                 QStringLiteral("%1: echoed, but the station holds another value").arg(where) };
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
        m_runtime->run([&ended] { return ended || shouldEnd(); });
        m_runtime->onOutcome({});
        if (ended && ended->end == host::WriteEnd::Confirmed) {
            results.append({ piece, *ended });
            continue;
        }
        const int writes = requests(true) - writesBefore;
        const int tries = writes > 0 ? writes : requests(false) - readsBefore;
        const QString maybe =
            QStringLiteral("interrupted, %1 may have been written").arg(whereText(piece));
        *failure = ended ? failureOf(*ended, piece, tries) : Failure { ExitInterrupted, maybe };
        break;
    }
    return results;
}

host::StopReport Session::stop()
{
    m_line->waitInFull(); // the signal that led here must not cut this short
    return m_runtime->stop(m_options.plant.stop.confirmWithin);
}

bool Session::stopSafely(const QString &command)
{
    if (m_stops.isEmpty())
        return true;
    const host::StopReport report = stop();
    for (const host::StopCommand &stop : std::as_const(m_stops)) {
        if (!report.unconfirmed.contains(stop.station))
            note(command, QStringLiteral("station %1 stopped").arg(stop.station));
    }
    if (!report.unconfirmed.isEmpty())
        note(command, report.text);
    return report.unconfirmed.isEmpty();
}

} // namespace dx4::cli
