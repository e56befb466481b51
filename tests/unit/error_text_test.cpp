// SPDX-License-Identifier: MIT
// The error line of the frame at the head.
#include "korvane_dx4/error_text.h"

#include "driver_state.h"

namespace {

class ErrorLine : public DriverState {
protected:
    static std::string lineFor(const VARIABLE &var, int received)
    {
        FRAME_PRO head;
        head.var = var;
        driver.sendFrames = { head, FRAME_PRO() };
        return getErrorInfo(QByteArray(received, 'x')).toStdString();
    }
};

} // namespace

TEST_F(ErrorLine, EndsWithZeroWhenNothingCame)
{
    EXPECT_EQ(lineFor(variableOf(1, "D", 5, 2), 0), "1#D5(2)(0)");
}

TEST_F(ErrorLine, PrintsAParameterPacked)
{
    EXPECT_EQ(lineFor(variableOf(3, "F", 258, 1), 7), "3#F258(1)(7)");
    EXPECT_EQ(lineFor(variableOf(1, "F", 2573, 1), 7), "1#F2573(1)(7)");
}

TEST_F(ErrorLine, RunsTypeAndAddressTogether)
{
    EXPECT_EQ(lineFor(variableOf(1, "FU", 0, 1), 7), "1#FU0(1)(7)");
}

TEST_F(ErrorLine, KeepsMinusSigns)
{
    EXPECT_EQ(lineFor(variableOf(-1, "D", -5, -2), 7), "-1#D-5(-2)(7)");
}

TEST_F(ErrorLine, PrintsTheExtremes)
{
    EXPECT_EQ(lineFor(variableOf(-2147483647 - 1, "D", 2147483647, 2147483647), 1024),
              "-2147483648#D2147483647(2147483647)(1024)");
}

TEST_F(ErrorLine, FillsPlaceholdersOfTheTypeInTheirTurn)
{
    EXPECT_EQ(lineFor(variableOf(7, "%1", 5, 2), 0), "7#52(0)(%5)");
    EXPECT_EQ(lineFor(variableOf(7, "%9", 5, 2), 0), "7#%95(2)(0)");
}
