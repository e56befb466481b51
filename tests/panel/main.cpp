// SPDX-License-Identifier: MIT
// Tests with widgets on a screen in memory.
#include "panel_fixture.h"

#include <gtest/gtest.h>

int main(int argc, char **argv)
{
    ::testing::InitGoogleTest(&argc, argv);
    const ScreenInMemory screen(argc, argv);
    return RUN_ALL_TESTS();
}
