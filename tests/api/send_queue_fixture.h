// SPDX-License-Identifier: MIT
// A link with blocks of ten registers and the two request bytes of its host.
#pragma once

#include "cycle_fixture.h"

class SendQueue : public CycleFixture {
protected:
    SendQueue() { init("1#0#0#3#10"); }

    void pollTwo() { merge({ keyAddress(1, "D", 0, 1), keyAddress(1, "D", 5, 1) }); }
    void requestRecipeWrite(unsigned char value = 1) { hostBlock[60115] = value; }
    void requestRecipeRead(unsigned char value = 1) { hostBlock[60116] = value; }
};
