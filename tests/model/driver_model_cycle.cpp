// SPDX-License-Identifier: MIT
// The model's choice of the next request, and its queue of one-off reads.
#include "driver_model.h"
#include "wrap.h"

#include <algorithm>
#include <cstring>

namespace model {

namespace {

constexpr int writeFlag = 60115;
constexpr int readFlag = 60116;

} // namespace

bool DriverModel::recipeRequested(int flagPosition)
{
    if (!hostBlock || !hostMutex)
        return false;
    hostMutex->lock();
    const bool requested = hostBlock[flagPosition] == 1;
    hostMutex->unlock();
    return requested;
}

int DriverModel::getSendFrame(FRAME_PRO &out)
{
    if (sendFrames.isEmpty()) {
        if (recipeRequested(writeFlag))
            serveRecipe(5);
        else if (recipeRequested(readFlag))
            serveRecipe(6);
        else
            serveNext();
    }
    if (sendFrames.isEmpty())
        return 0;
    out = sendFrames.constFirst();
    return 1;
}

void DriverModel::serveRecipe(int recipePhase)
{
    if (rcpIndex >= rcpSendVars.size()) {
        serveAgain();
        return;
    }
    phase = recipePhase;
    fillFromRecipe(recipePhase == 5);
    if (recipePhase == 5)
        appendWriteFrame(curVar);
    else
        appendReadFrame(curVar);
}

void DriverModel::fillFromRecipe(bool withValues)
{
    const _RCP_VAR_PRO &recipe = rcpSendVars.at(rcpIndex);
    curVar.station = recipe.station;
    curVar.regType = recipe.regType;
    curVar.address = recipe.address;
    curVar.count = recipe.count;
    std::memset(curVar.data, 0, sizeof curVar.data);
    if (!withValues || !recipeBuffer || recipe.count < 0)
        return;
    const int registers = std::min(recipe.count, 512);
    std::memcpy(curVar.data, recipeBuffer + recipe.bufferOffset,
                static_cast<size_t>(registers) * 2);
}

void DriverModel::serveAgain()
{
    const bool write = phase == 2 || phase == 5;
    const bool read = phase == 3 || phase == 4 || phase == 6;
    if (write)
        appendWriteFrame(curVar);
    else if (read)
        appendReadFrame(curVar);
}

void DriverModel::serveNext()
{
    if (!writeList.isEmpty() && tryCount < 5) {
        curVar = writeList.constFirst();
        phase = 2;
        tryCount = wrap(tryCount + 1LL);
        appendWriteFrame(curVar);
    } else if (!conditionList.isEmpty() && tryCount < 3) {
        curVar = conditionList.constFirst();
        phase = 3;
        tryCount = wrap(tryCount + 1LL);
        appendReadFrame(curVar);
    } else if (readList.isEmpty()) {
        tryCount = 0;
        phase = 0;
        sendFrames.clear();
    } else {
        curVar = readList.constFirst();
        phase = 4;
        tryCount = 0;
        appendReadFrame(curVar);
    }
}

int DriverModel::addConditionRead(const KEY_ADDRESS &address, int varKind)
{
    VARIABLE piece;
    piece.varKind = varKind;
    piece.station = address.station;
    piece.regType = address.regType;
    piece.address = address.address;
    piece.count = address.count;
    const int given = address.subAddress == -1 ? bitBlockSize : writeBlockSize;
    const long long limit = given == 0 ? 1 : given;
    if (limit >= address.count) {
        queueRequest(conditionList, piece);
        conditionVar = piece;
        return 1;
    }
    const long long rest = address.count % limit;
    const long long pieces = address.count / limit + (rest != 0 ? 1 : 0);
    for (long long j = 0; j < pieces; ++j) {
        const bool last = j == pieces - 1;
        piece.address = wrap(address.address + j * limit);
        piece.count = static_cast<int>(last && rest != 0 ? rest : limit);
        queueRequest(conditionList, piece);
        conditionVar = piece;
    }
    return 1;
}

} // namespace model
