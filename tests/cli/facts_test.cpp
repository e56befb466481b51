// SPDX-License-Identifier: MIT
// Facts as JSON and as cells.
#include "cli/console/facts.h"

#include <gtest/gtest.h>

using dx4::cli::cellsOf;
using dx4::cli::Facts;
using dx4::cli::jsonOf;
using dx4::cli::valueIf;

TEST(Facts, AreWithoutWhatIsNotThereInJsonAndEmptyAsACell)
{
    const Facts facts { { "count", 2 }, { "name", valueIf(false, QStringLiteral("pump")) } };

    EXPECT_EQ(jsonOf(facts), (QJsonObject { { QStringLiteral("count"), 2 } }));
    EXPECT_EQ(cellsOf(facts), (QStringList { QStringLiteral("2"), QString() }));
}

TEST(Facts, AreShownByTheirTextWhereThatIsAnother)
{
    const Facts facts { { "register", 8192, QStringLiteral("0x2000") } };

    EXPECT_EQ(jsonOf(facts).value(QStringLiteral("register")).toInt(), 8192);
    EXPECT_EQ(cellsOf(facts), QStringList { QStringLiteral("0x2000") });
}
