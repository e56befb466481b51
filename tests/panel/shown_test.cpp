// SPDX-License-Identifier: MIT
// What a screen may say of a register.
#include "panel/model/shown.h"

#include <gtest/gtest.h>

using namespace dx4::panel;
using dx4::host::RegisterValue;
using std::chrono::milliseconds;
using std::chrono::seconds;

namespace {

RegisterValue frequency(quint16 value)
{
    RegisterValue known;
    known.scaling.factor = 0.01;
    known.scaling.decimals = 2;
    known.scaling.unit = QStringLiteral("Hz");
    known.state.known = true;
    known.state.value = value;
    return known;
}

std::string textOf(const Shown &shown)
{
    return shown.fullText().toStdString();
}

} // namespace

TEST(Shown, AValueHasItsUnitAndDecimals)
{
    const RegisterValue value = frequency(4998);

    const Shown shown = showQuantity(&value, seconds(0), QLocale::c());

    EXPECT_EQ(textOf(shown), "49.98 Hz");
    EXPECT_EQ(shown.trust, Shown::Trust::Fresh);
}

TEST(Shown, AGermanReaderSeesADecimalCommaAndNoGroups)
{
    RegisterValue value = frequency(50000);
    value.scaling.factor = 0.1;

    const Shown shown = showQuantity(&value, seconds(0), QLocale(QLocale::German));

    EXPECT_EQ(textOf(shown), "5000,00 Hz");
}

TEST(Shown, AValueIsFreshUntilFiveSeconds)
{
    const RegisterValue value = frequency(4998);

    const Shown shown = showQuantity(&value, milliseconds(4999), QLocale::c());

    EXPECT_EQ(shown.trust, Shown::Trust::Fresh);
    EXPECT_EQ(textOf(shown), "49.98 Hz");
}

TEST(Shown, AValueOfFiveSecondsIsOldAndTellsItsAge)
{
    RegisterValue value = frequency(4998);
    value.state.age = seconds(3);

    const Shown shown = showQuantity(&value, seconds(2), QLocale::c());

    EXPECT_EQ(shown.trust, Shown::Trust::Old);
    EXPECT_EQ(textOf(shown), "49.98 Hz, 5 s old");
}

TEST(Shown, AValueOfThirtySecondsIsDashes)
{
    const RegisterValue value = frequency(4998);

    const Shown shown = showQuantity(&value, seconds(30), QLocale::c());

    EXPECT_EQ(shown.trust, Shown::Trust::Gone);
    EXPECT_EQ(textOf(shown), "---");
}

TEST(Shown, AValueOfALineThatBrokeIsOldAtOnce)
{
    RegisterValue value = frequency(4998);
    value.state.stale = true;

    const Shown shown = showQuantity(&value, seconds(1), QLocale::c());

    EXPECT_EQ(shown.trust, Shown::Trust::Old);
    EXPECT_EQ(textOf(shown), "49.98 Hz, 1 s old");
}

TEST(Shown, WhatWasNeverReadIsDashes)
{
    const RegisterValue value;

    EXPECT_EQ(textOf(showQuantity(&value, seconds(0), QLocale::c())), "---");
    EXPECT_EQ(textOf(showQuantity(nullptr, seconds(0), QLocale::c())), "---");
}

TEST(Shown, AFailedReadAndAnOpenWriteAreMarked)
{
    RegisterValue value = frequency(100);
    value.state.failed = true;
    value.state.writePending = true;

    const Shown shown = showQuantity(&value, seconds(0), QLocale::c());

    EXPECT_EQ(textOf(shown), "1.00 Hz, read failed, not confirmed");
}

TEST(Shown, StatesAreWordsAndAnUnknownBitItsNumber)
{
    RegisterValue value = frequency(0x0203);
    const QMap<int, QString> states { { 0, QStringLiteral("ready") },
                                      { 1, QStringLiteral("running") } };

    EXPECT_EQ(textOf(showStates(&value, seconds(0), states)), "ready, running, bit 9");

    value.state.value = 0;

    EXPECT_EQ(textOf(showStates(&value, seconds(0), states)), "0");
}

TEST(Shown, AFaultIsItsWordAndAnUnknownCodeItsNumber)
{
    RegisterValue value = frequency(17);
    const QMap<int, QString> faults { { 17, QStringLiteral("door open") } };

    EXPECT_EQ(textOf(showFault(&value, seconds(0), faults)), "door open");

    value.state.value = 99;

    EXPECT_EQ(textOf(showFault(&value, seconds(0), faults)), "99");
}

TEST(Shown, WordsOfAStateAreAsOldAsItsNumber)
{
    const RegisterValue value = frequency(1);

    EXPECT_EQ(textOf(showStates(&value, seconds(6), {})), "bit 0, 6 s old");
    EXPECT_EQ(textOf(showFault(&value, seconds(31), {})), "---");
}
