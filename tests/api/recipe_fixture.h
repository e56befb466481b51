// SPDX-License-Identifier: MIT
// A link whose host requests recipe transfers by the two bytes of its block.
#pragma once

#include "cycle_fixture.h"

class RecipeTransfers : public CycleFixture {
protected:
    RecipeTransfers() { init("1#0#0#1#10"); }

    void requestWrite(unsigned char value = 1) { hostBlock[60115] = value; }
    void requestRead(unsigned char value = 1) { hostBlock[60116] = value; }

    /// Brings a recipe read of "F" 16, count 3, onto the line.
    void beginRead()
    {
        state.rcpSendVars = { recipeVar(1, 1, "F", 16, 3, 0) };
        requestRead();
        nextFrame();
    }

    /// Answers it with the values 0x1234, 0x5678, 0x9ABC.
    int answerRead() { return reply("01 03 06 12 34 56 78 9A BC 69 43"); }
};
