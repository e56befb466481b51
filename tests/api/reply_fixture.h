// SPDX-License-Identifier: MIT
// A link with a retry limit of 3 and one read on the line.
#pragma once

#include "cycle_fixture.h"

class Replies : public CycleFixture {
protected:
    Replies() { init("1#0#0#3#10"); }

    void requestCyclicRead(int address, int count)
    {
        merge({ keyAddress(1, "D", address, count) });
        nextFrame();
    }

    void requestConditionRead(int address, int count)
    {
        readOnce(1, "D", address, count);
        nextFrame();
    }
};
