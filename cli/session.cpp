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

constexpr int lastStation = 247;
constexpr int largestBlock = 123; // registers

QString whereText(const Target &target)
{
    return QStringLiteral("station %1, %2")
        .arg(target.station)
        .arg(host::fullAddress(target.regType, target.address));
}

} // namespace

void addLineOptions(Command &command, LineOptions &options)
{
    if (options.port.isEmpty())
        options.port = qEnvironmentVariable("DX4_PORT");
    command.text("--port", options.port, "serial port; else the variable DX4_PORT", "DEVICE");
    command.number("--speed", options.speed, "of the line, bit/s", 300, 921600);
    command.choice("--format", options.format, "data bits, parity, stop bits",
                   { QStringLiteral("8N1"), QStringLiteral("8N2"), QStringLiteral("8E1"),
                     QStringLiteral("8E2"), QStringLiteral("8O1"), QStringLiteral("8O2") });
    command.number("--station", options.station, "of addresses that name none", 1, lastStation);
    command.number("--timeout", options.timeout, "ms until a reply must begin", 1, 60000);
    command.number("--retries", options.retries, "repetitions of a failed request", 0, 100);
    command.number("--block", options.block, "most registers of one request", 1, largestBlock);
    command.flag("--json", options.json, "print one JSON object per line");
    addDriverOption(command, options.driver);
}

host::LineSettings lineSettings(const LineOptions &options)
{
    host::LineSettings settings;
    settings.port = options.port;
    settings.speed = options.speed;
    const QChar parity = options.format.at(1);
    if (parity == QLatin1Char('E'))
        settings.parity = host::Parity::Even;
    if (parity == QLatin1Char('O'))
        settings.parity = host::Parity::Odd;
    settings.stopBits = options.format.endsWith(QLatin1Char('2')) ? 2 : 1;
    settings.responseTimeout = std::chrono::milliseconds(options.timeout);
    return settings;
}

host::LinkSettings linkSettings(const LineOptions &options)
{
    host::LinkSettings settings;
    settings.retryLimit = options.retries + 1; // the driver counts the first try too
    settings.blockSize = options.block;
    return settings;
}

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
    const quint64 before = m_cycle->counters().requests;
    while (!shouldEnd()) {
        const Step taken = step();
        if (taken == Step::Served)
            return true;
        if (taken == Step::Idle || taken == Step::Retry)
            continue;
        const auto tries = static_cast<int>(m_cycle->counters().requests - before);
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

} // namespace dx4::cli
