// SPDX-License-Identifier: MIT
// What happened on a line, per station and block: one set for every user of the host.
#include "host/exchange/counters.h"

#include "host/link/notation.h"
#include "register_tables.h"
#include "wire/function_code.h"

#include <QJsonArray>

#include <algorithm>

namespace dx4::host {
namespace {

constexpr int functionByte = 1;
constexpr int probeBytes = 8;

qint64 number(quint64 count)
{
    return static_cast<qint64>(count);
}

double milliseconds(Duration span)
{
    return static_cast<double>(span.count()) / 1000.0;
}

size_t turnaroundClass(Duration delay)
{
    const auto bound = std::find_if(turnaroundBounds.begin(), turnaroundBounds.end(),
                                    [&](int ms) { return delay <= std::chrono::milliseconds(ms); });
    return static_cast<size_t>(bound - turnaroundBounds.begin());
}

/// The counter that a cause belongs to; exceptions have their codes besides.
quint64 &counterOf(RequestCounts &counts, const ReplyVerdict &verdict)
{
    switch (verdict.cause) {
    case ReplyCause::Good:
        return counts.good;
    case ReplyCause::Silence:
        return counts.timeouts;
    case ReplyCause::Truncated:
        return counts.truncated;
    case ReplyCause::BadCrc:
        return counts.badCrc;
    case ReplyCause::ForeignStation:
        return counts.foreign;
    case ReplyCause::WrongFunction:
    case ReplyCause::WrongByteCount:
    case ReplyCause::WrongEcho:
        return counts.wrongReplies;
    case ReplyCause::Exception:
        break;
    }
    return counts.exceptions[verdict.exceptionCode];
}

/// What came and went around a request.
void countBesides(RequestCounts &counts, const ExchangeReport &report, Duration held)
{
    counts.lateReplies += static_cast<quint64>(report.lateReplies);
    counts.echoProbes += static_cast<quint64>(report.echoProbes);
    counts.clearingReads += static_cast<quint64>(report.clearingReads);
    counts.busy += held;
}

QJsonObject exceptionsJson(const std::map<int, quint64> &exceptions)
{
    QJsonObject json;
    for (const auto &[code, count] : exceptions)
        json.insert(QString::number(code), number(count));
    return json;
}

QJsonArray turnaroundJson(const RequestCounts &counts)
{
    QJsonArray json;
    for (size_t i = 0; i < counts.turnaround.size(); ++i) {
        QJsonObject row;
        if (i < turnaroundBounds.size())
            row.insert(QStringLiteral("up_to_ms"), turnaroundBounds[i]);
        row.insert(QStringLiteral("count"), number(counts.turnaround[i]));
        json.append(row);
    }
    return json;
}

} // namespace

BlockKey blockOf(const FRAME_PRO &request)
{
    return { request.var.station, request.var.regType, request.var.address, request.var.count,
             request.frame[functionByte] != ReadHoldingRegisters };
}

void RequestCounts::add(const RequestCounts &other)
{
    requests += other.requests;
    good += other.good;
    timeouts += other.timeouts;
    truncated += other.truncated;
    badCrc += other.badCrc;
    foreign += other.foreign;
    wrongReplies += other.wrongReplies;
    for (const auto &[code, count] : other.exceptions)
        exceptions[code] += count;
    retries += other.retries;
    giveUps += other.giveUps;
    notAsked += other.notAsked;
    withheld += other.withheld;
    lateReplies += other.lateReplies;
    echoes += other.echoes;
    echoProbes += other.echoProbes;
    clearingReads += other.clearingReads;
    junkBytes += other.junkBytes;
    bytesSent += other.bytesSent;
    bytesReceived += other.bytesReceived;
    for (size_t i = 0; i < turnaround.size(); ++i)
        turnaround[i] += other.turnaround[i];
    busy += other.busy;
}

QJsonObject RequestCounts::toJson() const
{
    return {
        { QStringLiteral("requests"), number(requests) },
        { QStringLiteral("good"), number(good) },
        { QStringLiteral("timeouts"), number(timeouts) },
        { QStringLiteral("truncated"), number(truncated) },
        { QStringLiteral("bad_crc"), number(badCrc) },
        { QStringLiteral("foreign"), number(foreign) },
        { QStringLiteral("wrong_replies"), number(wrongReplies) },
        { QStringLiteral("exceptions"), exceptionsJson(exceptions) },
        { QStringLiteral("retries"), number(retries) },
        { QStringLiteral("give_ups"), number(giveUps) },
        { QStringLiteral("not_asked"), number(notAsked) },
        { QStringLiteral("withheld"), number(withheld) },
        { QStringLiteral("late_replies"), number(lateReplies) },
        { QStringLiteral("echoes"), number(echoes) },
        { QStringLiteral("echo_probes"), number(echoProbes) },
        { QStringLiteral("clearing_reads"), number(clearingReads) },
        { QStringLiteral("junk_bytes"), number(junkBytes) },
        { QStringLiteral("bytes_sent"), number(bytesSent) },
        { QStringLiteral("bytes_received"), number(bytesReceived) },
        { QStringLiteral("turnaround"), turnaroundJson(*this) },
        { QStringLiteral("busy_ms"), milliseconds(busy) },
    };
}

void CounterSet::countWithheld(const FRAME_PRO &request, const ExchangeReport &report,
                               Duration held)
{
    RequestCounts &counts = m_blocks[blockOf(request)];
    ++counts.withheld;
    countBesides(counts, report, held);
}

void CounterSet::countExchange(const FRAME_PRO &request, const ExchangeReport &report,
                               Duration held)
{
    RequestCounts &counts = m_blocks[blockOf(request)];
    ++counts.requests;
    ++counterOf(counts, report.verdict);
    countBesides(counts, report, held);
    counts.junkBytes += static_cast<quint64>(report.junkBytes);
    counts.echoes += report.echoStripped ? 1U : 0U;
    counts.bytesSent += static_cast<quint64>(request.sendLength);
    counts.bytesReceived += static_cast<quint64>(report.bytesHeard);
    const ReplyCause cause = report.verdict.cause;
    if (cause == ReplyCause::Good || cause == ReplyCause::Exception)
        ++counts.turnaround[turnaroundClass(report.answerDelay)];
    ++m_attempts;
    if (cause == ReplyCause::Good)
        countEnd(request);
}

void CounterSet::countGiveUp(const FRAME_PRO &request)
{
    ++m_blocks[blockOf(request)].giveUps;
    countEnd(request);
}

void CounterSet::countNotAsked(const FRAME_PRO &request)
{
    ++m_blocks[blockOf(request)].notAsked;
    ++m_attempts;
    countEnd(request);
}

void CounterSet::countEnd(const FRAME_PRO &request)
{
    if (!blockOf(request).isWrite)
        ++m_endedReads;
}

void CounterSet::countProbe(int station, const ExchangeReport &report, Duration held)
{
    FRAME_PRO probe;
    probe.frame[functionByte] = ReadHoldingRegisters;
    probe.sendLength = probeBytes;
    probe.var.station = station;
    probe.var.regType = REG_LIST[TypeSw];
    probe.var.count = 1;
    countExchange(probe, report, held);
}

RequestCounts CounterSet::block(const BlockKey &key) const
{
    const auto found = m_blocks.find(key);
    return found == m_blocks.end() ? RequestCounts {} : found->second;
}

template <typename Wanted> RequestCounts CounterSet::sumOf(Wanted wanted) const
{
    RequestCounts sum;
    for (const auto &[key, counts] : m_blocks) {
        if (wanted(key))
            sum.add(counts);
    }
    return sum;
}

RequestCounts CounterSet::station(int station) const
{
    return sumOf([station](const BlockKey &key) { return key.station == station; });
}

RequestCounts CounterSet::reads() const
{
    return sumOf([](const BlockKey &key) { return !key.isWrite; });
}

RequestCounts CounterSet::writes() const
{
    return sumOf([](const BlockKey &key) { return key.isWrite; });
}

RequestCounts CounterSet::total() const
{
    return sumOf([](const BlockKey &) { return true; });
}

double CounterSet::lineLoad(Duration since, Duration now) const
{
    if (now <= since)
        return 0.0;
    return static_cast<double>(total().busy.count()) / static_cast<double>((now - since).count());
}

QJsonObject CounterSet::toJson(Duration since, Duration now) const
{
    std::map<int, QJsonArray> blocks;
    for (const auto &[key, counts] : m_blocks) {
        QJsonObject row = counts.toJson();
        row.insert(QStringLiteral("address"),
                   key.regType + QLatin1Char(' ') + addressText(key.regType, key.address));
        row.insert(QStringLiteral("count"), key.count);
        row.insert(QStringLiteral("kind"),
                   key.isWrite ? QStringLiteral("write") : QStringLiteral("read"));
        blocks[key.station].append(row);
    }
    QJsonArray stations;
    for (const auto &[number, rows] : blocks)
        stations.append(QJsonObject { { QStringLiteral("station"), number },
                                      { QStringLiteral("total"), station(number).toJson() },
                                      { QStringLiteral("blocks"), rows } });
    const QJsonObject line { { QStringLiteral("load"), lineLoad(since, now) },
                             { QStringLiteral("elapsed_ms"), milliseconds(now - since) },
                             { QStringLiteral("line_downs"), number(m_lineDowns) } };
    return { { QStringLiteral("line"), line },
             { QStringLiteral("total"), total().toJson() },
             { QStringLiteral("stations"), stations } };
}

} // namespace dx4::host
