// SPDX-License-Identifier: MIT
// A line with the driver at work on it, as the commands that need one have it.
#include "cli/session.h"

#include "cli/driver_file.h"
#include "cli/interrupt.h"
#include "cli/reply_text.h"
#include "cli/values.h"
#include "host/notation.h"
#include "host/recording_line.h"

namespace dx4::cli {
namespace {

QString whereText(const Target &target)
{
    return QStringLiteral("station %1, %2")
        .arg(target.station)
        .arg(host::fullAddress(target.regType, target.address));
}

} // namespace

Session::Session(const LineOptions &options, host::FrameRing *ring)
    : m_options(options)
    , m_line(std::make_unique<host::SerialLine>(lineSettings(options)))
    , m_recorder(ring ? std::make_unique<host::RecordingLine>(*m_line, *ring) : nullptr)
    , m_usedLine(m_recorder ? m_recorder.get() : m_line.get())
    , m_exchange(std::make_unique<host::GuardedExchange>(*m_usedLine))
{
}

std::unique_ptr<Session> Session::open(const LineOptions &options, Failure *failure,
                                       host::FrameRing *ring)
{
    if (options.port.isEmpty()) {
        *failure = { ExitUsage,
                     QStringLiteral("no serial port; name it with --port or in DX4_PORT; "
                                    "\"dx4 line\" lists them") };
        return nullptr;
    }
    auto plugin = loadDriver(options.driver, host::Plugin::Instance::Shared, failure);
    if (!plugin)
        return nullptr;
    std::unique_ptr<Session> session(new Session(options, ring));
    QString error;
    if (!session->m_line->open(&error)) {
        *failure = { ExitLine, QStringLiteral("cannot open %1").arg(error) };
        return nullptr;
    }
    session->m_link = std::make_unique<host::Link>(std::move(plugin), linkSettings(options));
    session->m_cycle = std::make_unique<host::Cycle>(*session->m_link, *session->m_exchange);
    watchForInterrupt();
    return session;
}

host::ReplyVerdict Session::verdict() const
{
    const host::ExchangeReport &report = m_exchange->report();
    // Nothing of the station's own came, but others were heard.
    const bool foreignAlone =
        report.verdict.cause == host::ReplyCause::Silence && report.foreignFrames > 0;
    return foreignAlone ? host::ReplyVerdict { host::ReplyCause::ForeignStation, 0 }
                        : report.verdict;
}

Failure Session::failureOf(host::Cycle::Step step, const Target &target, int tries) const
{
    const QString where = whereText(target);
    if (step == host::Cycle::Step::LineDown)
        return { ExitLine, QStringLiteral("%1: the line %2 broke").arg(where, m_options.port) };
    const QString often = tries > 1 ? QStringLiteral(" after %1 tries").arg(tries) : QString();
    return { causeCode(verdict()),
             QStringLiteral("%1: %2%3").arg(where, causeText(verdict()), often) };
}

/// Steps until the request of this piece is answered or given up.
bool Session::settle(const Target &target, Failure *failure)
{
    using Step = host::Cycle::Step;
    const quint64 before = m_cycle->counters().total().requests;
    while (m_stopping || !shouldEnd()) {
        const Step taken = step();
        if (taken == Step::Served)
            return true;
        if (taken == Step::Idle || taken == Step::Retry)
            continue;
        const auto tries = static_cast<int>(m_cycle->counters().total().requests - before);
        *failure = failureOf(taken, target, tries);
        return false;
    }
    *failure = { ExitInterrupted, QStringLiteral("interrupted") };
    return false;
}

std::optional<QVector<quint16>> Session::read(const Target &target, Failure *failure)
{
    QVector<quint16> values;
    for (const Target &piece : pieces(target, m_options.block)) {
        m_link->poll({ host::wanted(piece.station, piece.regType, piece.address, piece.count) });
        if (!settle(piece, failure))
            return std::nullopt;
        values += m_link->values(piece.station, piece.regType, piece.address, piece.count);
    }
    return values;
}

bool Session::write(const Target &target, const QVector<quint16> &values, Failure *failure)
{
    m_link->poll({}); // nothing but the write on the line
    int first = 0;
    for (const Target &piece : pieces(target, m_options.block)) {
        m_link->write(piece.station, piece.regType, piece.address, values.mid(first, piece.count));
        first += piece.count;
        if (!settle(piece, failure))
            return false;
    }
    return true;
}

bool Session::stopSafely(const QString &command)
{
    if (!m_options.stopWord)
        return true;
    bool confirmed = true;
    m_stopping = true; // the signal that led here must not end this too
    for (const int station : m_options.stations) {
        Failure failure;
        const Target word { station, QStringLiteral("CW"), 0, 1 };
        if (write(word, { *m_options.stopWord }, &failure)) {
            note(command, QStringLiteral("station %1 stopped").arg(station));
            continue;
        }
        failure.text += QStringLiteral("; the motor may still turn");
        complain(command, failure);
        confirmed = false;
    }
    m_stopping = false;
    return confirmed;
}

} // namespace dx4::cli
