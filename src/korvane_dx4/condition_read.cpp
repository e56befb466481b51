// SPDX-License-Identifier: MIT
// One-off reads that a screen or an alarm needs now.
#include "driver_api.h"
#include "korvane_dx4/record_copy.h"
#include "korvane_dx4/request_list.h"
#include "wire/register_type.h"

using namespace dx4;

namespace {

constexpr int wholeRegisters = -1; // KEY_ADDRESS::subAddress

// Deliberate: the last piece alone stands in conditionVar, so that a request cut into pieces
// reports one outcome.
void queueConditionRead(VARIABLE &var, int address, int count)
{
    var.address = address;
    var.count = count;
    queueRequest(driver.conditionList, var);
    copyVariable(driver.conditionVar, var);
}

} // namespace

int intf_addConditionRead(KEY_ADDRESS address, int varKind)
{
    const bool isWhole = address.subAddress == wholeRegisters;
    const int limit = splitLimit(isWhole ? driver.bitBlockSize : driver.writeBlockSize);
    VARIABLE var;
    var.varKind = varKind;
    var.station = address.station;
    var.regType = sharedName(address.regType);
    if (limit >= address.count) {
        queueConditionRead(var, address.address, address.count);
        return alwaysDone;
    }
    const Pieces pieces(address.address, address.count, limit);
    for (qint64 j = 0; j < pieces.size(); ++j)
        queueConditionRead(var, pieces.address(j), pieces.count(j));
    return alwaysDone;
}
