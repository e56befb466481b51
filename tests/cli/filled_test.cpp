// SPDX-License-Identifier: MIT
// Texts whose places are filled in.
#include "cli/console/filled.h"

#include <gtest/gtest.h>

using dx4::cli::filled;

TEST(Filled, LeavesAPlaceThatAPartBringsAlone)
{
    const QString text = filled("%1 is of station %2, not %3", QStringLiteral("%2.txt"), 7, "1");

    EXPECT_EQ(text.toStdString(), "%2.txt is of station 7, not 1");
}

TEST(Filled, FillsAPlaceAsOftenAsItStands)
{
    EXPECT_EQ(filled("%1 and %1", 3).toStdString(), "3 and 3");
}
