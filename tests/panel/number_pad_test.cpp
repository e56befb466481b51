// SPDX-License-Identifier: MIT
// Numbers typed with fingers.
#include "panel/widgets/number_pad.h"

#include <QTest>

#include <gtest/gtest.h>

using namespace dx4::panel;

namespace {

struct Pad {
    Pad()
    {
        page.resize(800, 352);
        page.show();
        pad.ask(QStringLiteral("Hz"), 400.0);
    }

    void type(const char *keys)
    {
        for (const char *key = keys; *key != 0; ++key)
            pad.type(QLatin1Char(*key));
    }

    QWidget page;
    NumberPad pad { QStringLiteral("Set frequency"), [] { return dx4::host::Duration(0); }, &page };
};

} // namespace

TEST(NumberPad, GivesWhatWasTyped)
{
    Pad pad;

    pad.type("42.5");

    EXPECT_EQ(pad.pad.number(), 42.5);
}

TEST(NumberPad, TakesNothingAboveItsLimit)
{
    Pad pad;

    pad.type("400.1");

    EXPECT_EQ(pad.pad.number(), std::nullopt);
}

TEST(NumberPad, TakesOneDecimalMarkAndNoLetters)
{
    Pad pad;

    pad.type(".1.2x.3");

    EXPECT_EQ(pad.pad.number(), 1.23);
}

TEST(NumberPad, DeletesTheLastDigit)
{
    Pad pad;

    pad.type("50");
    pad.pad.erase();

    EXPECT_EQ(pad.pad.number(), 5.0);
}

TEST(NumberPad, OpensEmptyEachTime)
{
    Pad pad;
    pad.type("50");

    pad.pad.close();
    pad.pad.ask(QStringLiteral("Hz"), 400.0);

    EXPECT_EQ(pad.pad.number(), std::nullopt);
}

TEST(NumberPad, KeysOfAKeyboardTypeAsWell)
{
    Pad pad;

    QTest::keyClicks(&pad.pad, QStringLiteral("12"));
    QTest::keyClick(&pad.pad, Qt::Key_Backspace);

    EXPECT_EQ(pad.pad.number(), 1.0);
}
