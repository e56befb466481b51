// SPDX-License-Identifier: MIT
// Recipe variables: registers whose values travel to and from a buffer of the host.
#include "korvane_dx4/recipe.h"

#include "driver_api.h"
#include "frames/record_copy.h"
#include "frames/reply_bytes.h"
#include "korvane_dx4/call_watch.h"
#include "korvane_dx4/change_report.h"
#include "wire/wrap.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

using namespace dx4;

namespace {

constexpr int unitBytes = 2; // of the recipe buffer
constexpr int recipeLink = 0;
constexpr int recipeStation = -1;

unsigned char *bufferBytes(int offset)
{
    if (!driver.recipeBuffer || offset < 0)
        return nullptr;
    return reinterpret_cast<unsigned char *>(driver.recipeBuffer + offset);
}

// The units of the buffer are numbers of this machine's byte order, while records and 32-bit values
// have the low byte first. Gives the place, in bytes from the first unit, of byte i in that order.
constexpr bool isBigEndian = Q_BYTE_ORDER == Q_BIG_ENDIAN;

constexpr int unitByte(int i)
{
    return isBigEndian ? i ^ 1 : i;
}

// Positions in driver.rcpVars that one recipe read serves: first to before end.
struct ServedVars {
    int first = 0;
    int end = 0;
};

ServedVars servedVars()
{
    const QList<int> &starts = driver.mergeIndexList;
    const int known = static_cast<int>(driver.rcpVars.size());
    const int served = driver.rcpIndex;
    if (served < 0 || served >= starts.size())
        return {};
    const int first = starts.at(served);
    if (first < 0 || first >= known)
        return {};
    const bool isLast = served == starts.size() - 1;
    return { first, isLast ? known : std::min(known, starts.at(served + 1)) };
}

// Deliberate: four bytes for every variable, whatever its count. Recipe values are two registers,
// high one first, and become one 32-bit value with its low byte first.
void storeDouble(const QByteArray &reply, int position, int bufferOffset)
{
    unsigned char *target = bufferBytes(bufferOffset);
    if (!target)
        return;
    for (int i = 0; i < 4; ++i)
        target[unitByte(i)] = replyByte(reply, wrapAdd(position, 3 - i));
}

void copyUnits(unsigned char *to, const unsigned char *from, int units)
{
    if constexpr (isBigEndian) {
        for (int i = 0; i < units * unitBytes; ++i)
            to[i] = from[unitByte(i)];
    } else {
        std::memcpy(to, from, static_cast<std::size_t>(units) * unitBytes);
    }
}

} // namespace

int intf_setRcpAddress(const QVector<_RCP_VAR_PRO> &rcpList)
{
    [[maybe_unused]] const CallWatch watch("intf_setRcpAddress");
    QVector<_RCP_VAR_PRO> ownVars;
    for (const _RCP_VAR_PRO &rcp : rcpList) {
        if (rcp.linkId == driver.linkId)
            ownVars.append(rcp);
    }
    driver.rcpVars = ownVars;
    return static_cast<int>(driver.rcpVars.size());
}

void rcpAddrToVar(_RCP_VAR_PRO rcp, VARIABLE &var, int withData)
{
    var.station = rcp.station;
    assignText(var.regType, rcp.regType);
    var.address = rcp.address;
    var.count = rcp.count;
    std::memset(var.data, 0, sizeof var.data);
    const unsigned char *values = bufferBytes(rcp.bufferOffset);
    const bool hasValues = withData != 0 && rcp.count > 0 && values;
    if (hasValues) {
        const int units = std::min(rcp.count, recordBytes / unitBytes);
        copyUnits(var.data, values, units);
    }
}

void dx4::storeRecipeValues(const QByteArray &reply, int dataOffset)
{
    const ServedVars served = servedVars();
    for (int j = served.first; j < served.end && j < driver.rcpVars.size(); ++j) {
        const int registersOn =
            wrapSub(driver.rcpVars.at(j).address, driver.rcpVars.at(served.first).address);
        const int offset = driver.rcpVars.at(j).bufferOffset;
        storeDouble(reply, wrapAdd(dataOffset, wrapMul(2, registersOn)), offset);
        notifyHost(recipeLink, recipeStation, QLatin1String("RWI"), offset);
        notifyHost(recipeLink, recipeStation, QLatin1String("RWI"), wrapAdd(offset, 1));
    }
}
