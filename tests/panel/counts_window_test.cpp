// SPDX-License-Identifier: MIT
// The last minute of counters that grow, and their rows.
#include "made_up_view.h"

#include <QAbstractItemModelTester>

#include <gtest/gtest.h>

using namespace dx4::panel;
using namespace dx4::host;
using std::chrono::seconds;

namespace {

QStringList namesOf(const CountsModel &model)
{
    QStringList names;
    for (int row = 0; row < model.rowCount(); ++row)
        names.append(model.index(row, 0).data().toString());
    return names;
}

CountsRow row(const char *name, quint64 sent, quint64 crc = 0)
{
    CountsRow row;
    row.name = QString::fromLatin1(name);
    row.counts.requests = sent;
    row.counts.badCrc = crc;
    return row;
}

} // namespace

TEST(CountsWindow, TheBeginningIsTheLastMinuteWhileThereIsNoMore)
{
    MadeUpCounters counters;
    CountsWindow window;
    counters.count(1, ReplyCause::Good, 12);

    window.note(counters.after(seconds(3)));

    EXPECT_EQ(window.recent().total().requests, 12U);
    EXPECT_EQ(window.recent().span, seconds(3));
}

TEST(CountsWindow, AFaultOfLongAgoIsNotInTheLastMinute)
{
    MadeUpCounters counters;
    CountsWindow window;
    counters.count(1, ReplyCause::BadCrc, 7);
    for (int second = 1; second <= 90; ++second) {
        counters.count(1, ReplyCause::Good, 2);
        window.note(counters.after(seconds(second)));
    }

    const SpanCounts &recent = window.recent();

    EXPECT_EQ(recent.station(1).badCrc, 0U);
    EXPECT_GE(recent.span, seconds(60));
    EXPECT_LE(recent.span, seconds(66));
    EXPECT_EQ(recent.station(1).good, 2U * static_cast<quint64>(recent.span / seconds(1)));
    EXPECT_EQ(window.whole().station(1).badCrc, 7U);
    EXPECT_EQ(window.whole().station(1).good, 180U);
}

TEST(CountsWindow, EveryFigureIsTakenFromTheMinute)
{
    RequestCounts all;
    all.requests = 20;
    all.exceptions = { { 2, 5 }, { 6, 1 } };
    all.turnaround[3] = 9;
    all.busy = seconds(7);
    RequestCounts early;
    early.requests = 4;
    early.exceptions = { { 2, 3 } };
    early.turnaround[3] = 4;
    early.busy = seconds(2);
    const BlockKey block { 1, QStringLiteral("D"), 0, 2, false };

    const SpanCounts late =
        between({ { { block, early } }, seconds(10), 1 }, { { { block, all } }, seconds(30), 4 });

    const RequestCounts counts = late.station(1);
    EXPECT_EQ(counts.requests, 16U);
    EXPECT_EQ(exceptionsOf(counts), 3U);
    EXPECT_EQ(counts.turnaround[3], 5U);
    EXPECT_EQ(late.lineDowns, 3U);
    EXPECT_DOUBLE_EQ(late.load(), 0.25);
}

TEST(CountsWindow, ALineThatBeginsAnewBeginsANewMinute)
{
    MadeUpCounters old;
    CountsWindow window;
    old.count(1, ReplyCause::BadCrc, 9);
    window.note(old.after(seconds(50)));
    MadeUpCounters begun;
    begun.count(1, ReplyCause::Good, 2);

    window.note(begun.after(seconds(1)));

    EXPECT_EQ(window.recent().total().badCrc, 0U);
    EXPECT_EQ(window.recent().total().good, 2U);
}

TEST(CountsModel, HoldsWhatAModelPromises)
{
    CountsModel model;
    QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);

    model.setRows({ row("All", 4), row("1", 4) });
    model.setRows({ row("All", 5), row("1", 5) });
    model.setOld(true);
    model.setRows({ row("All", 5) });

    EXPECT_EQ(namesOf(model), QStringList { QStringLiteral("All") });
}

TEST(CountsModel, RowsThatCountOnStayWhereTheyAre)
{
    CountsModel model;
    model.setRows({ row("All", 4), row("1", 4) });
    int resets = 0;
    int changes = 0;
    QObject::connect(&model, &QAbstractItemModel::modelReset, [&] { ++resets; });
    QObject::connect(&model, &QAbstractItemModel::dataChanged, [&] { ++changes; });

    model.setRows({ row("All", 9), row("1", 9) });

    EXPECT_EQ(resets, 0);
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(model.index(1, CountsModel::SentColumn).data().toString().toStdString(), "9");
}

TEST(CountsModel, FailuresAreBadAsLongAsTheyAreNew)
{
    CountsModel model;
    model.setRows({ row("1", 40, 2) });
    const QModelIndex sent = model.index(0, CountsModel::SentColumn);
    const QModelIndex crc = model.index(0, CountsModel::CrcColumn);

    EXPECT_FALSE(sent.data(IsBadRole).toBool());
    EXPECT_TRUE(crc.data(IsBadRole).toBool());
    EXPECT_FALSE(crc.data(IsFaintRole).toBool());
    model.setOld(true);
    EXPECT_FALSE(crc.data(IsBadRole).toBool());
    EXPECT_TRUE(crc.data(IsFaintRole).toBool());
}

TEST(CountsModel, BlocksAreNamedByTheirRegisters)
{
    EXPECT_EQ(blockName({ 1, QStringLiteral("D"), 0, 8, false }).toStdString(), "read D 0-7");
    EXPECT_EQ(blockName({ 1, QStringLiteral("F"), 0, 1, false }).toStdString(), "read F 0.0");
    EXPECT_EQ(blockName({ 1, QStringLiteral("CW"), 0, 1, true }).toStdString(), "write CW");
}
