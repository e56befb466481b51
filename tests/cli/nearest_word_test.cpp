// SPDX-License-Identifier: MIT
// The word that somebody probably meant.
#include "cli/console/nearest_word.h"

#include <gtest/gtest.h>

using dx4::cli::nearestWord;

namespace {

QString among(const char *word)
{
    const QStringList valid { QStringLiteral("types"), QStringLiteral("stop"),
                              QStringLiteral("stats"), QStringLiteral("F"), QStringLiteral("CW") };
    return nearestWord(QString::fromLatin1(word), valid);
}

} // namespace

TEST(NearestWord, SwappedLettersAreOneChange)
{
    EXPECT_EQ(among("tpyes"), QStringLiteral("types"));
}

TEST(NearestWord, MissingLetterIsFound)
{
    EXPECT_EQ(among("stp"), QStringLiteral("stop"));
}

TEST(NearestWord, WrongCaseIsCloserThanAnotherLetter)
{
    EXPECT_EQ(among("f"), QStringLiteral("F"));
    EXPECT_EQ(among("cw"), QStringLiteral("CW"));
    EXPECT_EQ(nearestWord(QStringLiteral("fre"), { QStringLiteral("F"), QStringLiteral("FRE") }),
              QStringLiteral("FRE"));
}

TEST(NearestWord, NothingIsNearAStrangeWord)
{
    EXPECT_EQ(among("gateway"), QString());
    EXPECT_EQ(among("X"), QString());
}
