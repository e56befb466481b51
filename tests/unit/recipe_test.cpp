// SPDX-License-Identifier: MIT
// One recipe record turned into a variable.
#include "korvane_dx4/recipe.h"

#include "korvane_dx4.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace {

class RecipeVariable : public ::testing::Test {
protected:
    RecipeVariable()
        : buffer(1024, 0)
    {
        buffer[2] = 0x0F0F;
        buffer[3] = 0x1234;
        buffer[4] = 0xABCD;
        buffer[5] = 0x5A5A;
        driver.recipeBuffer = buffer.data();
        recipe.linkId = 1;
        recipe.station = 2;
        recipe.regType = QStringLiteral("FRE");
        recipe.address = 4;
        recipe.count = 2;
        recipe.bufferOffset = 3;
        std::fill_n(variable.data, 1024, static_cast<unsigned char>(0xEE));
    }

    ~RecipeVariable() override { driver.recipeBuffer = nullptr; }

    long zeros(int from, int to) const
    {
        return std::count(variable.data + from, variable.data + to, 0);
    }

    std::vector<unsigned short> buffer;
    _RCP_VAR_PRO recipe;
    VARIABLE variable;
};

TEST_F(RecipeVariable, TakesStationTypeAddressAndCount)
{
    rcpAddrToVar(recipe, variable, 0);

    EXPECT_EQ(variable.station, 2);
    EXPECT_EQ(variable.regType.toStdString(), "FRE");
    EXPECT_EQ(variable.address, 4);
    EXPECT_EQ(variable.count, 2);
}

TEST_F(RecipeVariable, KeepsItsKind)
{
    variable.varKind = 42;

    rcpAddrToVar(recipe, variable, 1);

    EXPECT_EQ(variable.varKind, 42);
}

TEST_F(RecipeVariable, WithoutDataIsZeroWhateverTheCount)
{
    recipe.count = 100000;

    rcpAddrToVar(recipe, variable, 0);

    EXPECT_EQ(zeros(0, 1024), 1024);
    EXPECT_EQ(variable.count, 100000);
}

TEST_F(RecipeVariable, WithDataTakesTheUnitsFromItsOffsetOn)
{
    rcpAddrToVar(recipe, variable, 1);

    EXPECT_EQ(variable.data[0], 0x34);
    EXPECT_EQ(variable.data[1], 0x12);
    EXPECT_EQ(variable.data[2], 0xCD);
    EXPECT_EQ(variable.data[3], 0xAB);
    EXPECT_EQ(zeros(4, 1024), 1020);
}

TEST_F(RecipeVariable, AnyFlagButZeroAsksForData)
{
    rcpAddrToVar(recipe, variable, -1);

    EXPECT_EQ(variable.data[0], 0x34);
}

TEST_F(RecipeVariable, OfCount0CopiesNothing)
{
    recipe.count = 0;

    rcpAddrToVar(recipe, variable, 1);

    EXPECT_EQ(zeros(0, 1024), 1024);
}

TEST_F(RecipeVariable, OfANegativeCountCopiesNothing)
{
    recipe.count = -1;

    rcpAddrToVar(recipe, variable, 1);

    EXPECT_EQ(zeros(0, 1024), 1024);
    EXPECT_EQ(variable.count, -1);
}

TEST_F(RecipeVariable, WithoutABufferCopiesNothing)
{
    driver.recipeBuffer = nullptr;

    rcpAddrToVar(recipe, variable, 1);

    EXPECT_EQ(zeros(0, 1024), 1024);
}

TEST_F(RecipeVariable, Of512RegistersFillsTheData)
{
    std::fill(buffer.begin(), buffer.end(), static_cast<unsigned short>(0xBBAA));
    recipe.count = 512;

    rcpAddrToVar(recipe, variable, 1);

    EXPECT_EQ(std::count(variable.data, variable.data + 1024, 0xAA), 512);
    EXPECT_EQ(variable.data[1023], 0xBB);
    EXPECT_EQ(variable.count, 512);
}

TEST_F(RecipeVariable, Of513RegistersStopsAtTheEndOfTheData)
{
    std::fill(buffer.begin(), buffer.end(), static_cast<unsigned short>(0xBBAA));
    recipe.count = 513;

    rcpAddrToVar(recipe, variable, 1);

    EXPECT_EQ(variable.data[1023], 0xBB);
    EXPECT_EQ(variable.count, 513);
}

TEST_F(RecipeVariable, OfTheLargestCountStopsAtTheEndOfTheData)
{
    std::fill(buffer.begin(), buffer.end(), static_cast<unsigned short>(0xBBAA));
    recipe.count = 2147483647;

    rcpAddrToVar(recipe, variable, 1);

    EXPECT_EQ(variable.data[1023], 0xBB);
}

} // namespace
