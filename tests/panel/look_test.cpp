// SPDX-License-Identifier: MIT
// Whether everything can be read, in the light and in the dark.
#include "panel/widgets/look.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

using namespace dx4::panel;

namespace {

/// Every text colour with the grounds that it stands on.
std::vector<std::pair<QColor, QColor>> pairsOf(const Look &look)
{
    return { { look.text, look.window },           { look.text, look.card },
             { look.faded, look.window },          { look.faded, look.card },
             { look.warning, look.window },        { look.warning, look.card },
             { look.buttonText, look.button },     { look.faint, look.window },
             { look.faint, look.button },          { look.accentText, look.accent },
             { look.faultText, look.faultGround }, { look.stopText, look.stop } };
}

} // namespace

TEST(Look, ContrastIsThatOfTheGuidelines)
{
    EXPECT_NEAR(contrast(QColor(0, 0, 0), QColor(255, 255, 255)), 21.0, 0.001);
    EXPECT_NEAR(contrast(QColor(255, 255, 255), QColor(0x76, 0x76, 0x76)), 4.54, 0.01);
}

TEST(Look, EveryTextStandsOutFromItsGroundInTheLight)
{
    for (const auto &[text, ground] : pairsOf(lightLook())) {
        EXPECT_GE(contrast(text, ground), 4.5)
            << text.name().toStdString() << " on " << ground.name().toStdString();
    }
}

TEST(Look, EveryTextStandsOutFromItsGroundInTheDark)
{
    for (const auto &[text, ground] : pairsOf(darkLook())) {
        EXPECT_GE(contrast(text, ground), 4.5)
            << text.name().toStdString() << " on " << ground.name().toStdString();
    }
}

TEST(Look, TheDesktopDecidesBetweenLightAndDark)
{
    EXPECT_EQ(lookOf(paletteOf(darkLook())).text, darkLook().text);
    EXPECT_EQ(lookOf(paletteOf(lightLook())).text, lightLook().text);
}
