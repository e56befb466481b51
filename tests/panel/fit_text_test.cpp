// SPDX-License-Identifier: MIT
// Texts that are longer than their place.
#include "panel/widgets/fit_text.h"

#include <QFont>

#include <gtest/gtest.h>

using namespace dx4::panel;

namespace {

struct Fitting {
    int widthOf(const char *text) const { return metrics.horizontalAdvance(QLatin1String(text)); }

    int dots() const { return metrics.horizontalAdvance(QChar(0x2026)) + 2; }

    std::string fit(const char *text, int width, int lines) const
    {
        return fittingText(metrics, QLatin1String(text), width, lines).toStdString();
    }

    QFontMetrics metrics { QFont() };
};

} // namespace

TEST(FittingText, StaysAsItIsWhereThereIsRoom)
{
    const Fitting text;

    EXPECT_EQ(text.fit("ready, running", text.widthOf("ready, running"), 1), "ready, running");
}

TEST(FittingText, IsBrokenBetweenWords)
{
    const Fitting text;

    EXPECT_EQ(text.fit("ready, running, warm", text.widthOf("ready, running,"), 2),
              "ready, running,\nwarm");
}

TEST(FittingText, EndsInDotsWhereTheLastLineIsShort)
{
    const Fitting text;

    EXPECT_EQ(text.fit("one two three four", text.widthOf("three f") + text.dots(), 2),
              "one two\nthree f\u2026");
}

TEST(FittingText, AWordThatIsWiderThanItsLineIsCut)
{
    const Fitting text;

    EXPECT_EQ(text.fit("overvoltage then", text.widthOf("overv") + text.dots(), 2),
              "overv\u2026\nthen");
}
