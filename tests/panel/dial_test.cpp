// SPDX-License-Identifier: MIT
// The dial of a drive.
#include "panel/widgets/dial.h"

#include <gtest/gtest.h>

using namespace dx4::panel;

namespace {

Shown hertz(double quantity, const char *number)
{
    Shown shown;
    shown.trust = Shown::Trust::Fresh;
    shown.quantity = quantity;
    shown.number = QLatin1String(number);
    shown.unit = QStringLiteral("Hz");
    return shown;
}

} // namespace

TEST(Dial, EndsAtTheFirstRoundNumberThatHoldsBothValues)
{
    Dial dial;

    dial.show(hertz(49.98, "49.98"), hertz(60.0, "60.00"));
    EXPECT_DOUBLE_EQ(dial.highest(), 60.0);

    dial.show(hertz(49.98, "49.98"), hertz(60.01, "60.01"));
    EXPECT_DOUBLE_EQ(dial.highest(), 120.0);

    dial.show(hertz(400.0, "400.00"), hertz(50.0, "50.00"));
    EXPECT_DOUBLE_EQ(dial.highest(), 400.0);

    dial.show(hertz(1200.0, "1200.00"), hertz(50.0, "50.00"));
    EXPECT_DOUBLE_EQ(dial.highest(), 2000.0);
}

TEST(Dial, AValueThatIsGoneDoesNotCount)
{
    Dial dial;
    Shown gone = hertz(300.0, "---");
    gone.trust = Shown::Trust::Gone;

    dial.show(gone, hertz(50.0, "50.00"));

    EXPECT_DOUBLE_EQ(dial.highest(), 60.0);
}

TEST(Dial, TellsTheSetValueToScreenReaders)
{
    Dial dial;

    dial.show(hertz(49.98, "49.98"), hertz(50.0, "50.00"));

    EXPECT_EQ(dial.accessibleName().toStdString(), "Set: 50.00 Hz");
}
