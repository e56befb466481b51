// SPDX-License-Identifier: MIT
// Which registers of which station a user means.
#include "cli/registers/values.h"

#include <gtest/gtest.h>

using namespace dx4::cli;

namespace {

/// "station text" of each run, between bars.
QString split(const QStringList &words)
{
    Failure failure;
    const auto runs = splitTargets(words, 1, &failure);
    if (!runs)
        return failure.text;
    QStringList texts;
    for (const TargetText &run : *runs)
        texts.append(QStringLiteral("%1 %2").arg(run.station).arg(run.text));
    return texts.join(QLatin1Char('|'));
}

} // namespace

TEST(Targets, TypeBeginsARunAndAddressBelongsToIt)
{
    EXPECT_EQ(split({ QStringLiteral("F"), QStringLiteral("c.13"), QStringLiteral("SW") }),
              QStringLiteral("1 F c.13|1 SW"));
}

TEST(Targets, OneWordIsEnough)
{
    EXPECT_EQ(split({ QStringLiteral("Fc.13"), QStringLiteral("D0-9"), QStringLiteral("F8.2") }),
              QStringLiteral("1 F c.13|1 D 0-9|1 F 8.2"));
}

TEST(Targets, QuotedWordsAreTheSame)
{
    EXPECT_EQ(split({ QStringLiteral("F c.13"), QStringLiteral("D 4") }),
              QStringLiteral("1 F c.13|1 D 4"));
}

TEST(Targets, StationStandsInFront)
{
    EXPECT_EQ(split({ QStringLiteral("247:D"), QStringLiteral("4"), QStringLiteral("D"),
                      QStringLiteral("5") }),
              QStringLiteral("247 D 4|1 D 5"));
}

TEST(Targets, StationsBeyondTheLineAreRefused)
{
    EXPECT_EQ(split({ QStringLiteral("248:SW") }),
              QStringLiteral("no station 248; stations are 1 to 247"));
    EXPECT_EQ(split({ QStringLiteral("0:SW") }),
              QStringLiteral("no station 0; stations are 1 to 247"));
}

TEST(Targets, AddressWithoutATypeIsRefused)
{
    EXPECT_EQ(split({ QStringLiteral("c.13") }),
              QStringLiteral("\"c.13\" names no register type; write \"F c.13\" or \"2:D 4\""));
}

TEST(Targets, LongRunIsCutAtTheBlockSize)
{
    const Target run { 2, QStringLiteral("D"), 4, 17 };

    const QVector<Target> cut = pieces(run, 16);

    ASSERT_EQ(cut.size(), 2);
    EXPECT_EQ(cut.at(0).address, 4);
    EXPECT_EQ(cut.at(0).count, 16);
    EXPECT_EQ(cut.at(1).address, 20);
    EXPECT_EQ(cut.at(1).count, 1);
}
