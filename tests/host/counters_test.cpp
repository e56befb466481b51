// SPDX-License-Identifier: MIT
// What the counters make of exchanges: every figure, per block and added up.
#include "host/exchange/counters.h"

#include <QJsonArray>

#include <gtest/gtest.h>

using namespace dx4::host;
using std::chrono::milliseconds;

namespace {

FRAME_PRO requestOf(int station, int function, int address)
{
    FRAME_PRO request;
    request.frame[1] = static_cast<unsigned char>(function);
    request.sendLength = function == 3 ? 8 : 11;
    request.var.station = station;
    request.var.regType = QStringLiteral("F");
    request.var.address = address;
    request.var.count = 2;
    return request;
}

ExchangeReport reportOf(ReplyCause cause)
{
    ExchangeReport report;
    report.verdict.cause = cause;
    report.bytesHeard = 9;
    report.junkBytes = 5;
    report.lateReplies = 2;
    report.echoStripped = true;
    report.echoProbes = 3;
    report.clearingReads = 4;
    report.answerDelay = milliseconds(7);
    return report;
}

BlockKey blockAt(int station, int address, bool isWrite = false)
{
    return { station, QStringLiteral("F"), address, 2, isWrite };
}

/// What a JSON object says of a name; -1 for nothing.
int figure(const QJsonObject &json, const char *name)
{
    return json.value(QLatin1String(name)).toInt(-1);
}

/// Two blocks of one station and one of another, each with the same exchange.
class Counters : public ::testing::Test {
protected:
    Counters()
    {
        for (const FRAME_PRO &request :
             { requestOf(1, 3, 0), requestOf(1, 3, 5), requestOf(2, 16, 0) })
            counters.countExchange(request, reportOf(ReplyCause::Good), milliseconds(20));
    }

    CounterSet counters;
};

struct CauseRow {
    const char *name;
    ReplyCause cause;
};

void PrintTo(const CauseRow &row, std::ostream *out)
{
    *out << row.name;
}

class CountersOfCauses : public ::testing::TestWithParam<CauseRow> { };

} // namespace

TEST_F(Counters, AddUpEveryFigureOfTheirBlocks)
{
    const RequestCounts sum = counters.total();

    EXPECT_EQ(sum.requests, 3U);
    EXPECT_EQ(sum.good, 3U);
    EXPECT_EQ(sum.lateReplies, 6U);
    EXPECT_EQ(sum.echoes, 3U);
    EXPECT_EQ(sum.echoProbes, 9U);
    EXPECT_EQ(sum.clearingReads, 12U);
    EXPECT_EQ(sum.junkBytes, 15U);
    EXPECT_EQ(sum.bytesSent, 8U + 8U + 11U);
    EXPECT_EQ(sum.bytesReceived, 27U);
    EXPECT_EQ(sum.turnaround.at(3), 3U);
    EXPECT_EQ(sum.busy, milliseconds(60));
}

TEST_F(Counters, OfAStationLeaveOutTheOthers)
{
    EXPECT_EQ(counters.station(1).bytesSent, 16U);
    EXPECT_EQ(counters.station(2).bytesSent, 11U);
    EXPECT_EQ(counters.station(3).requests, 0U);
}

TEST_F(Counters, OfReadsAndWritesAreApart)
{
    EXPECT_EQ(counters.reads().bytesReceived, 18U);
    EXPECT_EQ(counters.writes().bytesReceived, 9U);
    EXPECT_EQ(counters.block(blockAt(1, 5)).requests, 1U);
    EXPECT_EQ(counters.block(blockAt(2, 0, true)).requests, 1U);
    EXPECT_EQ(counters.block(blockAt(2, 0)).requests, 0U);
}

TEST_F(Counters, WhatBecameOfRequestsIsAddedUpToo)
{
    const FRAME_PRO read = requestOf(1, 3, 0);
    const FRAME_PRO other = requestOf(2, 3, 0);
    for (const FRAME_PRO &request : { read, other }) {
        counters.countRetry(request);
        counters.countGiveUp(request);
        counters.countNotAsked(request);
        counters.countWithheld(request, reportOf(ReplyCause::Silence), milliseconds(1));
    }

    const RequestCounts sum = counters.total();

    EXPECT_EQ(sum.retries, 2U);
    EXPECT_EQ(sum.giveUps, 2U);
    EXPECT_EQ(sum.notAsked, 2U);
    EXPECT_EQ(sum.withheld, 2U);
    EXPECT_EQ(sum.requests, 3U) << "what was withheld is no request";
    EXPECT_EQ(sum.busy, milliseconds(62));
    EXPECT_EQ(counters.attempts(), 3U + 2U);
    EXPECT_EQ(counters.endedReads(), 2U + 2U + 2U) << "answered, given up, not asked";
}

TEST_F(Counters, ExceptionsAreCountedByTheirCodeAndHaveATurnaround)
{
    ExchangeReport refused = reportOf(ReplyCause::Exception);
    refused.verdict.exceptionCode = 4;
    for (int station : { 1, 2 })
        counters.countExchange(requestOf(station, 3, 0), refused, milliseconds(20));

    const RequestCounts sum = counters.total();

    EXPECT_EQ(sum.exceptions, (std::map<int, quint64> { { 4, 2 } }));
    EXPECT_EQ(sum.turnaround.at(3), 5U);
    EXPECT_EQ(counters.endedReads(), 2U) << "a refused read may be repeated";
    EXPECT_EQ(sum.toJson().value(QStringLiteral("exceptions")).toObject(),
              (QJsonObject { { QStringLiteral("4"), 2 } }));
}

TEST_F(Counters, TellEveryFigureByItsName)
{
    const FRAME_PRO read = requestOf(1, 3, 0);
    counters.countRetry(read);
    counters.countGiveUp(read);
    counters.countNotAsked(read);
    counters.countWithheld(read, ExchangeReport(), milliseconds(0));

    const QJsonObject json = counters.total().toJson();

    EXPECT_EQ(figure(json, "requests"), 3);
    EXPECT_EQ(figure(json, "good"), 3);
    EXPECT_EQ(figure(json, "timeouts"), 0);
    EXPECT_EQ(figure(json, "truncated"), 0);
    EXPECT_EQ(figure(json, "bad_crc"), 0);
    EXPECT_EQ(figure(json, "foreign"), 0);
    EXPECT_EQ(figure(json, "wrong_replies"), 0);
    EXPECT_EQ(figure(json, "retries"), 1);
    EXPECT_EQ(figure(json, "give_ups"), 1);
    EXPECT_EQ(figure(json, "not_asked"), 1);
    EXPECT_EQ(figure(json, "withheld"), 1);
    EXPECT_EQ(figure(json, "late_replies"), 6);
    EXPECT_EQ(figure(json, "echoes"), 3);
    EXPECT_EQ(figure(json, "echo_probes"), 9);
    EXPECT_EQ(figure(json, "clearing_reads"), 12);
    EXPECT_EQ(figure(json, "junk_bytes"), 15);
    EXPECT_EQ(figure(json, "bytes_sent"), 27);
    EXPECT_EQ(figure(json, "bytes_received"), 27);
    EXPECT_EQ(json.value(QStringLiteral("busy_ms")).toDouble(), 60.0);
}

TEST_F(Counters, TellTheirTurnaroundsInElevenClasses)
{
    const QJsonArray classes =
        counters.total().toJson().value(QStringLiteral("turnaround")).toArray();

    ASSERT_EQ(classes.size(), 11);
    EXPECT_EQ(figure(classes.at(0).toObject(), "up_to_ms"), 1);
    EXPECT_EQ(figure(classes.at(3).toObject(), "up_to_ms"), 10);
    EXPECT_EQ(figure(classes.at(3).toObject(), "count"), 3);
    EXPECT_EQ(figure(classes.at(9).toObject(), "up_to_ms"), 1000);
    EXPECT_EQ(figure(classes.at(10).toObject(), "up_to_ms"), -1) << "all that is above";
    EXPECT_EQ(figure(classes.at(10).toObject(), "count"), 0);
}

TEST(CountersOfTurnarounds, PutABoundIntoTheClassThatItBounds)
{
    const std::pair<int, size_t> classes[] = { { 0, 0 },         { 1000, 0 },   { 1001, 1 },
                                               { 10'000, 3 },    { 10'001, 4 }, { 1'000'000, 9 },
                                               { 1'000'001, 10 } };
    for (const auto &[microseconds, expected] : classes) {
        CounterSet counters;
        ExchangeReport report;
        report.verdict.cause = ReplyCause::Good;
        report.answerDelay = Duration(microseconds);

        counters.countExchange(requestOf(1, 3, 0), report, milliseconds(20));

        EXPECT_EQ(counters.total().turnaround.at(expected), 1U) << microseconds << " us";
    }
}

TEST(CountersOfEchoes, CountThoseThatWereStripped)
{
    CounterSet counters;
    ExchangeReport report = reportOf(ReplyCause::Good);
    report.echoStripped = false;

    counters.countExchange(requestOf(1, 3, 0), report, milliseconds(20));

    EXPECT_EQ(counters.total().echoes, 0U);
}

TEST_F(Counters, TellTheShareOfTheTimeThatTheLineWasHeld)
{
    EXPECT_EQ(counters.lineLoad(milliseconds(100), milliseconds(220)), 0.5);
    EXPECT_EQ(counters.lineLoad(milliseconds(100), milliseconds(100)), 0.0);
    EXPECT_EQ(counters.lineLoad(milliseconds(100), milliseconds(99)), 0.0);
}

TEST_F(Counters, TellTheLineItsStationsAndTheirBlocks)
{
    counters.countLineDown();
    counters.countProbe(2, reportOf(ReplyCause::Silence), milliseconds(60));

    const QJsonObject json = counters.toJson(milliseconds(100), milliseconds(340));

    const QJsonObject line = json.value(QStringLiteral("line")).toObject();
    EXPECT_EQ(line.value(QStringLiteral("load")).toDouble(), 0.5);
    EXPECT_EQ(line.value(QStringLiteral("elapsed_ms")).toDouble(), 240.0);
    EXPECT_EQ(figure(line, "line_downs"), 1);
    const QJsonArray stations = json.value(QStringLiteral("stations")).toArray();
    ASSERT_EQ(stations.size(), 2);
    const QJsonObject second = stations.at(1).toObject();
    EXPECT_EQ(figure(second, "station"), 2);
    EXPECT_EQ(figure(second.value(QStringLiteral("total")).toObject(), "requests"), 2);
    const QJsonArray blocks = second.value(QStringLiteral("blocks")).toArray();
    ASSERT_EQ(blocks.size(), 2);
    EXPECT_EQ(blocks.at(0).toObject().value(QStringLiteral("kind")).toString(),
              QStringLiteral("write"));
    const QJsonObject probes = blocks.at(1).toObject();
    EXPECT_EQ(probes.value(QStringLiteral("address")).toString(), QStringLiteral("SW 0"));
    EXPECT_EQ(probes.value(QStringLiteral("kind")).toString(), QStringLiteral("read"));
    EXPECT_EQ(figure(probes, "count"), 1);
    EXPECT_EQ(figure(probes, "bytes_sent"), 8);
    EXPECT_EQ(figure(probes, "timeouts"), 1);
}

TEST_P(CountersOfCauses, StandUnderTheNameOfTheirCause)
{
    CounterSet counters;
    for (int station : { 1, 2 })
        counters.countExchange(requestOf(station, 3, 0), reportOf(GetParam().cause),
                               milliseconds(20));

    const QJsonObject json = counters.total().toJson();

    EXPECT_EQ(figure(json, GetParam().name), 2);
    EXPECT_EQ(figure(json, "requests"), 2);
    EXPECT_EQ(figure(json, "good"), 0);
    EXPECT_EQ(counters.total().turnaround.at(3), 0U) << "no answer, no turnaround";
    EXPECT_EQ(counters.endedReads(), 0U);
}

INSTANTIATE_TEST_SUITE_P(Rows, CountersOfCauses,
                         ::testing::Values(CauseRow { "timeouts", ReplyCause::Silence },
                                           CauseRow { "truncated", ReplyCause::Truncated },
                                           CauseRow { "bad_crc", ReplyCause::BadCrc },
                                           CauseRow { "foreign", ReplyCause::ForeignStation },
                                           CauseRow { "wrong_replies", ReplyCause::WrongEcho }),
                         [](const auto &row) { return std::string(row.param.name); });

TEST_F(Counters, EachBlockIsListedOnce)
{
    const auto &blocks = counters.blocks();

    EXPECT_EQ(blocks.size(), 3U);
    EXPECT_EQ(blocks.at(blockAt(1, 5)).requests, 1U);
}
