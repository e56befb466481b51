// SPDX-License-Identifier: MIT
// Closes the request just served.
#include "korvane_dx4/cycle_end.h"

#include "korvane_dx4.h"
#include "korvane_dx4/change_report.h"
#include "korvane_dx4/data_areas.h"
#include "korvane_dx4/recipe_request.h"
#include "korvane_dx4/request_list.h"
#include "korvane_dx4/writes.h"
#include "result_codes.h"
#include "wire/wrap.h"

using namespace dx4;

namespace {

constexpr int outcomeLink = -1;
constexpr int outcomeStation = -1;
constexpr int outcomeServed = 0;
constexpr int outcomeFailed = -1;

bool hasFailed()
{
    return driver.lastFailed == 1;
}

// Deliberate: the reply handler has settled the frame's registers already; this settles those of
// the head, which is another write while a raised recipe byte has an earlier one served again.
void closeWrite()
{
    if (driver.writeList.isEmpty())
        return;
    settleWrite(rangeOf(driver.writeList.constFirst()),
                hasFailed() ? WriteOutcome::Failed : WriteOutcome::Confirmed);
    removeHeadRequest(driver.writeList);
}

// Deliberate: a failed condition read takes all that wait with it, those of the callback included.
void closeConditionRead()
{
    if (driver.conditionList.isEmpty())
        return;
    const bool isLastQueued =
        sameRegisters(driver.conditionList.constFirst(), headOf(driver.conditionVar));
    if (isLastQueued) {
        notifyHost(outcomeLink, outcomeStation, QLatin1String("-1"),
                   hasFailed() ? outcomeFailed : outcomeServed);
    }
    if (hasFailed())
        driver.conditionList.clear();
    else
        removeHeadRequest(driver.conditionList);
}

// Moving the head shifts every entry, with Qt 5 only once the room behind the end is used up. Above
// this length an entry of its own at the end is cheaper, whose place the head takes.
constexpr int longList = 512;

void closeCyclicRead()
{
    const int count = static_cast<int>(driver.readList.size());
    if (count < 2)
        return;
    if (count < longList)
        return driver.readList.move(0, count - 1);
    driver.readList.append(VARIABLE());
    driver.readList.swapItemsAt(0, count);
    driver.readList.removeFirst();
}

void closeRecipeTransfer(int flagPosition)
{
    if (driver.lastFailed == 0) {
        driver.rcpIndex = wrapAdd(driver.rcpIndex, 1);
        if (driver.rcpIndex < driver.rcpSendVars.size())
            return;
    }
    driver.rcpIndex = 0;
    clearRecipeRequest(flagPosition);
}

} // namespace

void dealListWhenFinish()
{
    switch (driver.phase) {
    case PhaseWrite:
        return closeWrite();
    case PhaseConditionRead:
        return closeConditionRead();
    case PhaseCyclicRead:
        return closeCyclicRead();
    case PhaseRecipeWrite:
        return closeRecipeTransfer(recipeWriteFlag);
    case PhaseRecipeRead:
        return closeRecipeTransfer(recipeReadFlag);
    default:
        return;
    }
}
