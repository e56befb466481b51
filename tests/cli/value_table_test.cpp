// SPDX-License-Identifier: MIT
// Watched values as lines of text.
#include "cli/registers/register_names.h"
#include "cli/registers/value_table.h"

#include <gtest/gtest.h>

using namespace dx4::cli;
using std::chrono::seconds;

namespace {

WatchRow answered(quint16 value, dx4::host::Duration age)
{
    WatchRow row { namedValue(247, QStringLiteral("D"), 4), {}, {} };
    row.state.value = value;
    row.state.known = true;
    row.state.age = age;
    return row;
}

QString lineOf(const WatchRow &row, dx4::host::Duration now = seconds(100))
{
    return tableLines({ row }, now, Terminal()).at(1);
}

} // namespace

TEST(ValueTable, LinesFitEightyColumns)
{
    WatchRow row = answered(65535, seconds(99999));
    row.what.name = QString(60, QLatin1Char('x'));
    row.what.scaling.unit = QStringLiteral("revolutions");
    row.state.stale = true;
    row.changedAt = seconds(100);

    const auto lines = tableLines({ row }, seconds(100), Terminal());

    ASSERT_EQ(lines.size(), 2);
    for (const QString &line : lines)
        EXPECT_LE(line.size(), 80) << line.toStdString();
}

TEST(ValueTable, ChangeIsMarkedForASecond)
{
    WatchRow row = answered(566, seconds(0));
    row.changedAt = seconds(9);

    EXPECT_FALSE(lineOf(row, seconds(10)).contains(QLatin1String("*566")));
    row.changedAt = seconds(10);
    EXPECT_TRUE(lineOf(row, seconds(10)).contains(QLatin1String("*566")));
}

TEST(ValueTable, StaleValueIsMarked)
{
    WatchRow row = answered(566, seconds(4));

    EXPECT_EQ(lineOf(row).simplified(),
              QStringLiteral("247 DC link voltage D 4 (0xD004) 566 V 4.0 s"));
    row.state.stale = true;
    EXPECT_EQ(lineOf(row).simplified(),
              QStringLiteral("247 DC link voltage D 4 (0xD004) 566 V 4.0 s!"));
}

TEST(ValueTable, NarrowLinesKeepNameAndValue)
{
    Terminal narrow;
    narrow.columns = 40;
    WatchRow row = answered(566, seconds(4));
    row.state.stale = true;
    WatchRow nameless = answered(7, seconds(0));
    nameless.what = plainValue(2, QStringLiteral("D"), 4);

    const QStringList lines = tableLines({ row, nameless }, seconds(100), narrow);

    EXPECT_EQ(lines.at(0), QStringLiteral("St  Name                   Value"));
    EXPECT_EQ(lines.at(1), QStringLiteral("247 DC link voltage         !566 V      "));
    EXPECT_EQ(lines.at(2), QStringLiteral("2   D 4 (0xD004)               7        "));
}

TEST(ValueTable, RowsBeyondTheWindowAreCounted)
{
    const QVector<WatchRow> rows(6, answered(566, seconds(0)));

    const QStringList lines = tableLines(rows, seconds(100), Terminal(), 5);

    EXPECT_EQ(lines.size(), 5);
    EXPECT_EQ(lines.at(4), QStringLiteral("... and 3 more; a higher window shows them"));
}

TEST(ValueTable, FailedReadSaysSo)
{
    WatchRow row = answered(566, seconds(1));
    row.state.failed = true;

    EXPECT_TRUE(lineOf(row).contains(QLatin1String("failed")));
    EXPECT_FALSE(lineOf(row).contains(QLatin1String("566")));
}

TEST(ValueTable, RegisterThatWasNeverReadHasNeitherValueNorAge)
{
    const WatchRow row { plainValue(1, QStringLiteral("SW"), 0), {}, {} };

    EXPECT_EQ(lineOf(row).simplified(), QStringLiteral("1 SW 0 (0x2000) - -"));
}

TEST(ValueTable, PointsStandBelowEachOther)
{
    WatchRow whole = answered(566, seconds(0));
    WatchRow fine = answered(4660, seconds(0));
    fine.what.scaling.factor = 0.01;
    fine.what.scaling.decimals = 2;
    WatchRow coarse = answered(421, seconds(0));
    coarse.what.scaling.factor = 0.1;
    coarse.what.scaling.decimals = 1;

    const QStringList lines = tableLines({ whole, fine, coarse }, seconds(100), Terminal());

    const auto point = lines.at(2).indexOf(QLatin1Char('.'));
    EXPECT_EQ(lines.at(3).indexOf(QLatin1Char('.')), point);
    EXPECT_EQ(lines.at(1).indexOf(QLatin1String("566")) + 3, point);
}

TEST(ScrollKeys, SequencesThatComeInPiecesAreOneKey)
{
    QByteArray bytes("x\x1b[6");

    EXPECT_EQ(movementOf(bytes).pages, 0);
    bytes += "~\x1b[A\x1b[A";
    const Movement movement = movementOf(bytes);
    EXPECT_EQ(movement.pages, 1);
    EXPECT_EQ(movement.rows, -2);
    EXPECT_TRUE(bytes.isEmpty());
}

TEST(ScrollKeys, JumpDropsWhatWasTypedBeforeIt)
{
    QByteArray bytes("\x1b[B\x1b[H\x1b[B");

    const Movement movement = movementOf(bytes);

    EXPECT_TRUE(movement.toStart);
    EXPECT_EQ(movement.rows, 1);
}
