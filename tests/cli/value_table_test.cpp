// SPDX-License-Identifier: MIT
// Watched values as lines of text.
#include "cli/register_names.h"
#include "cli/value_table.h"

#include <gtest/gtest.h>

using namespace dx4::cli;
using std::chrono::seconds;

namespace {

WatchRow answered(quint16 value, dx4::host::Duration at)
{
    WatchRow row { namedValue(247, QStringLiteral("D"), 4), {}, at, {} };
    row.state.value = value;
    return row;
}

QString lineOf(const WatchRow &row, dx4::host::Duration now)
{
    return tableLines({ row }, now, Terminal(), seconds(5)).at(1);
}

} // namespace

TEST(ValueTable, LinesFitEightyColumns)
{
    WatchRow row { namedValue(247, QStringLiteral("F"), 8 * 256), {}, seconds(1), seconds(9999) };
    row.state.value = 65535;

    for (const QString &line : tableLines({ row }, seconds(9999), Terminal(), seconds(5)))
        EXPECT_LE(line.size(), 80) << line.toStdString();
}

TEST(ValueTable, ChangeIsMarkedForASecond)
{
    WatchRow row = answered(566, seconds(10));
    row.changedAt = seconds(9);

    EXPECT_FALSE(lineOf(row, seconds(10)).contains(QLatin1String("*566")));
    row.changedAt = seconds(10);
    EXPECT_TRUE(lineOf(row, seconds(10)).contains(QLatin1String("*566")));
}

TEST(ValueTable, OldValueIsMarkedAsStale)
{
    const WatchRow row = answered(566, seconds(10));

    EXPECT_TRUE(lineOf(row, seconds(14)).endsWith(QLatin1String("4.0 s")));
    EXPECT_TRUE(lineOf(row, seconds(15)).endsWith(QLatin1String("5.0 s!")));
}

TEST(ValueTable, FailedReadSaysSo)
{
    WatchRow row = answered(566, seconds(10));
    row.state.failed = true;

    EXPECT_TRUE(lineOf(row, seconds(11)).contains(QLatin1String("failed")));
    EXPECT_FALSE(lineOf(row, seconds(11)).contains(QLatin1String("566")));
}

TEST(ValueTable, RegisterThatWasNeverReadHasNeitherValueNorAge)
{
    const WatchRow row { plainValue(1, QStringLiteral("SW"), 0), {}, {}, {} };

    EXPECT_EQ(lineOf(row, seconds(1)).simplified(), QStringLiteral("1 SW 0 (0x2000) - -"));
}
