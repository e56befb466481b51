// SPDX-License-Identifier: MIT
// What goes on the line next.
#include "driver_api.h"
#include "frames/frame_queue.h"
#include "frames/record_copy.h"
#include "korvane_dx4/call_watch.h"
#include "korvane_dx4/frame_select.h"
#include "korvane_dx4/recipe.h"
#include "korvane_dx4/recipe_request.h"

using namespace dx4;

namespace {

// Served since the last cyclic read: below these bounds writes and condition reads go first.
constexpr int writeBound = 5;
constexpr int conditionReadBound = 3;

bool recipeTransferWaits()
{
    return driver.rcpIndex >= 0 && driver.rcpIndex < driver.rcpSendVars.size();
}

// Deliberate: with a request byte raised and no transfer left, what was served last is served again
// until the host clears the byte.
void serveAgain()
{
    switch (driver.phase) {
    case PhaseWrite:
    case PhaseRecipeWrite:
        getWriteFrame(driver.curVar);
        break;
    case PhaseConditionRead:
    case PhaseCyclicRead:
    case PhaseRecipeRead:
        getReadFrame(driver.curVar);
        break;
    default:
        break;
    }
}

void serveRecipeWrite()
{
    if (!recipeTransferWaits())
        return serveAgain();
    rcpAddrToVar(driver.rcpSendVars.at(driver.rcpIndex), driver.curVar, 1);
    driver.phase = PhaseRecipeWrite;
    getWriteFrame(driver.curVar);
}

void serveRecipeRead()
{
    if (!recipeTransferWaits())
        return serveAgain();
    rcpAddrToVar(driver.rcpSendVars.at(driver.rcpIndex), driver.curVar, 0);
    driver.phase = PhaseRecipeRead;
    getReadFrame(driver.curVar);
}

void serveWrite()
{
    copyVariable(driver.curVar, driver.writeList.constFirst());
    driver.phase = PhaseWrite;
    ++driver.tryCount;
    getWriteFrame(driver.curVar);
}

void serveConditionRead()
{
    copyVariable(driver.curVar, driver.conditionList.constFirst());
    driver.phase = PhaseConditionRead;
    ++driver.tryCount;
    getReadFrame(driver.curVar);
}

void serveCyclicRead()
{
    copyVariable(driver.curVar, driver.readList.constFirst());
    driver.phase = PhaseCyclicRead;
    driver.tryCount = 0;
    getReadFrame(driver.curVar);
}

// Deliberate: reached even while writes wait with their bound used up; the next call serves them.
void goIdle()
{
    driver.tryCount = 0;
    driver.phase = PhaseIdle;
    dropFrames();
}

// The order of priority; the first rule that applies.
void serveLists()
{
    const bool writeIsDue = !driver.writeList.isEmpty() && driver.tryCount < writeBound;
    const bool conditionReadIsDue =
        !driver.conditionList.isEmpty() && driver.tryCount < conditionReadBound;
    if (writeIsDue)
        return serveWrite();
    if (conditionReadIsDue)
        return serveConditionRead();
    if (driver.readList.isEmpty())
        return goIdle();
    serveCyclicRead();
}

void startNextRequest()
{
    switch (requestedRecipe()) {
    case RecipeRequest::Write:
        return serveRecipeWrite();
    case RecipeRequest::Read:
        return serveRecipeRead();
    default:
        return serveLists();
    }
}

} // namespace

int intf_getSendFrame(FRAME_PRO &out)
{
    [[maybe_unused]] const CallWatch watch("intf_getSendFrame");
    if (driver.sendFrames.isEmpty())
        startNextRequest();
    if (driver.sendFrames.isEmpty())
        return NothingToSend; // also when an encoder refused what was chosen
    copyFrame(out, driver.sendFrames.constFirst());
    return FrameReady;
}
