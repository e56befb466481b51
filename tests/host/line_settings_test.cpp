// SPDX-License-Identifier: MIT
// Character times and the gap between frames.
#include "host/line/line_settings.h"

#include <gtest/gtest.h>

using dx4::host::GapRule;
using dx4::host::LineSettings;
using dx4::host::Parity;

TEST(LineSettings, ACharacterHasTenBitsWithoutParityAndOneStopBit)
{
    LineSettings settings;
    settings.speed = 10000;

    EXPECT_EQ(settings.characterTime().count(), 1000);
}

TEST(LineSettings, ParityAndASecondStopBitAddABitEach)
{
    LineSettings settings;
    settings.speed = 10000;
    settings.parity = Parity::Even;
    settings.stopBits = 2;

    EXPECT_EQ(settings.characterTime().count(), 1200);
}

TEST(LineSettings, BytesFollowEachOtherWithoutAGap)
{
    LineSettings settings;
    settings.speed = 10000;

    EXPECT_EQ(settings.wireTime(8).count(), 8000);
    EXPECT_EQ(settings.wireTime(0).count(), 0);
    EXPECT_EQ(settings.wireTime(-3).count(), 0);
}

TEST(LineSettings, AFrameIsRoundedUpAsAWholeNotCutAtEachCharacter)
{
    LineSettings settings;
    settings.speed = 115200;
    LineSettings withParity = settings;
    withParity.parity = Parity::Even;

    EXPECT_EQ(settings.characterTime().count(), 87); // 86.8
    EXPECT_EQ(settings.wireTime(245).count(), 21268); // 21267.4
    EXPECT_EQ(withParity.characterTime().count(), 96); // 95.5
    EXPECT_EQ(withParity.wireTime(245).count(), 23395); // 23394.1
    EXPECT_EQ(settings.wireTime(1152).count(), 100000);
}

TEST(LineSettings, TheGapIsThreeAndAHalfCharactersUpTo19200)
{
    LineSettings settings;
    settings.speed = 10000;
    LineSettings fastest;
    fastest.speed = 19200;

    EXPECT_EQ(settings.silentGap().count(), 3500);
    EXPECT_EQ(fastest.silentGap().count(), 1823); // 1822.9
}

TEST(LineSettings, TheGapIsFixedAbove19200)
{
    LineSettings settings;
    settings.speed = 19201;
    LineSettings faster;
    faster.speed = 115200;

    EXPECT_EQ(settings.silentGap().count(), 1750);
    EXPECT_EQ(faster.silentGap().count(), 1750);
}

TEST(LineSettings, TheGapIsThreeAndAHalfCharactersAtAnySpeedWhereThatWasAskedFor)
{
    LineSettings settings;
    settings.speed = 115200;
    settings.gap = GapRule::Characters;
    LineSettings slow = settings;
    slow.speed = 10000;

    EXPECT_EQ(settings.silentGap().count(), 304); // 303.8
    EXPECT_EQ(slow.silentGap().count(), 3500);
}
