// SPDX-License-Identifier: MIT
// One-off reads that a screen or an alarm needs now.
#include "driver_api.h"
#include "frames/record_copy.h"
#include "korvane_dx4/call_watch.h"
#include "korvane_dx4/request_list.h"
#include "registers/register_type.h"

#include <cstring>

using namespace dx4;

namespace {

constexpr int wholeRegisters = -1; // KEY_ADDRESS::subAddress

} // namespace

int intf_addConditionRead(KEY_ADDRESS address, int varKind)
{
    [[maybe_unused]] const CallWatch watch("intf_addConditionRead");
    const bool isWhole = address.subAddress == wholeRegisters;
    const int limit = splitLimit(isWhole ? driver.bitBlockSize : driver.writeBlockSize);
    VARIABLE var;
    var.varKind = varKind;
    var.station = address.station;
    var.regType = sharedName(address.regType);
    const bool fitsOneRequest = limit >= address.count;
    const Pieces pieces = fitsOneRequest ? Pieces::whole(address.address, address.count)
                                         : Pieces::cut(address.address, address.count, limit);
    queuePieces(driver.conditionList, headOf(var), pieces,
                [](VARIABLE &entry, qint64) { std::memset(entry.data, 0, sizeof entry.data); });
    // Deliberate: the last piece alone stands here, so that a cut request reports one outcome.
    if (pieces.size() > 0) {
        var.address = pieces.address(pieces.size() - 1);
        var.count = pieces.count(pieces.size() - 1);
        copyVariable(driver.conditionVar, var);
    }
    return alwaysDone;
}
