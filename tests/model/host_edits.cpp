// SPDX-License-Identifier: MIT
// What a host may do to the driver's members between two calls.
#include "host_edits.h"

#include "arguments.h"
#include "snapshot.h"

#include <algorithm>

namespace model {

namespace {

bool isKeyFree(const QList<_DATA_> &areas, const _DATA_ &wanted)
{
    return std::none_of(areas.begin(), areas.end(), [&](const _DATA_ &area) {
        return area.station == wanted.station && area.regType == wanted.regType
            && area.address == wanted.address;
    });
}

int anyIndex(ByteSource &source, int size)
{
    return size == 0 ? -1 : source.below(size);
}

std::string addArea(ByteSource &source, Pair &pair)
{
    const _DATA_ area = drawArea(source);
    const bool atFront = source.onceIn(3);
    if (!isKeyFree(pair.model.state.dataAreas, area))
        return "add a record: key taken";
    pair.each([&](auto &side) {
        if (atFront)
            side.state.dataAreas.prepend(area);
        else
            side.state.dataAreas.append(area);
    });
    return "add a record " + describe(area);
}

std::string editArea(ByteSource &source, Pair &pair)
{
    const int index = anyIndex(source, static_cast<int>(pair.model.state.dataAreas.size()));
    const _DATA_ drawn = drawArea(source);
    const bool alsoKey = source.onceIn(3) && isKeyFree(pair.model.state.dataAreas, drawn);
    if (index < 0)
        return "edit a record: none there";
    pair.each([&](auto &side) {
        _DATA_ edited = drawn;
        if (!alsoKey) {
            const _DATA_ &old = side.state.dataAreas.at(index);
            edited.station = old.station;
            edited.regType = old.regType;
            edited.address = old.address;
        }
        side.state.dataAreas[index] = edited;
    });
    return "edit record " + std::to_string(index) + ' ' + describe(drawn)
        + (alsoKey ? " with its key" : "");
}

// Only the key, through operator[]: neither the list's size nor its storage changes.
std::string editKey(ByteSource &source, Pair &pair)
{
    const int index = anyIndex(source, static_cast<int>(pair.model.state.dataAreas.size()));
    const _DATA_ drawn = drawArea(source);
    if (index < 0 || !isKeyFree(pair.model.state.dataAreas, drawn))
        return "edit a key: not possible";
    pair.each([&](auto &side) {
        _DATA_ &area = side.state.dataAreas[index];
        area.station = drawn.station;
        area.regType = drawn.regType;
        area.address = drawn.address;
    });
    return "edit key " + std::to_string(index) + ' ' + describe(drawn);
}

std::string rearrangeAreas(ByteSource &source, Pair &pair)
{
    const int size = static_cast<int>(pair.model.state.dataAreas.size());
    const int kind = source.below(5);
    const int first = anyIndex(source, size);
    const int second = anyIndex(source, size);
    if (kind == 0) {
        pair.each([](auto &side) { side.state.dataAreas.clear(); });
        return "clear the records";
    }
    if (size == 0)
        return "rearrange records: none there";
    pair.each([&](auto &side) {
        auto &areas = side.state.dataAreas;
        if (kind == 1)
            areas.removeAt(first);
        else if (kind == 2)
            areas.move(first, second);
        else if (kind == 3)
            std::reverse(areas.begin(), areas.end());
        else
            areas = separate(areas);
    });
    return "rearrange records, kind " + std::to_string(kind) + ' ' + std::to_string(first) + ' '
        + std::to_string(second);
}

template <typename State> QList<VARIABLE> &requestList(State &state, int which)
{
    return which == 0 ? state.writeList : which == 1 ? state.conditionList : state.readList;
}

std::string editRequests(ByteSource &source, Pair &pair)
{
    const int which = source.below(3);
    const int kind = source.below(5);
    const VARIABLE drawn = drawVariable(source);
    const int size = static_cast<int>(requestList(pair.model.state, which).size());
    const int index = anyIndex(source, size);
    pair.each([&](auto &side) {
        QList<VARIABLE> &list = requestList(side.state, which);
        if (kind == 0)
            list.clear();
        else if (kind == 1 || index < 0)
            list.append(drawn);
        else if (kind == 2)
            list.removeAt(index);
        else if (kind == 3)
            list[index] = drawn;
        else
            list.prepend(drawn);
    });
    return "edit request list " + std::to_string(which) + ", kind " + std::to_string(kind) + ", at "
        + std::to_string(index) + ' ' + describe(drawn);
}

std::string editFrames(ByteSource &source, Pair &pair)
{
    const int kind = source.below(6);
    int number = source.onceIn(4) ? source.between(0, 700) - 50 : source.below(12);
    if (kind == 3 && source.onceIn(4) && source.mayCostMuch())
        number += 65536; // the CRC covers a 16-bit number of bytes
    const VARIABLE drawn = drawVariable(source);
    if (pair.model.state.sendFrames.isEmpty())
        return "edit frames: none there";
    pair.each([&](auto &side) {
        QList<FRAME_PRO> &frames = side.state.sendFrames;
        FRAME_PRO another = frames.constFirst();
        another.var = drawn;
        if (kind == 0)
            frames.clear();
        else if (kind == 1)
            frames.append(another);
        else if (kind == 2)
            frames.first().var = drawn;
        else if (kind == 3)
            frames.first().replyLength = number;
        else if (kind == 4)
            frames.first().replyDataLength = number;
        else
            frames.first().replyDataOffset = number;
    });
    return "edit frames, kind " + std::to_string(kind) + ", number " + std::to_string(number) + ' '
        + describe(drawn);
}

std::string editRecipe(ByteSource &source, Pair &pair)
{
    const int kind = source.below(4);
    const QVector<_RCP_VAR_PRO> recipe = drawRecipe(source);
    QList<int> indexes;
    for (int left = source.below(4); left > 0; --left)
        indexes.append(source.below(6));
    const int position = source.below(4);
    pair.each([&](auto &side) {
        if (kind != 1)
            side.state.rcpSendVars = recipe;
        if (kind != 2)
            side.state.mergeIndexList = indexes;
        if (kind == 3)
            side.state.rcpVars = recipe;
        side.state.rcpIndex = position;
    });
    return "edit recipe, kind " + std::to_string(kind) + ", index " + std::to_string(position);
}

std::string editTypes(ByteSource &source, Pair &pair)
{
    const int kind = source.below(4);
    const QString name = drawType(source);
    pair.each([&](auto &side) {
        QList<QString> &types = side.state.regTypeList;
        if (kind == 0)
            types.clear();
        else if (kind == 1)
            types.append(name);
        else if (kind == 2)
            types.prepend(name);
        else
            types = QStringLiteral("F,D,CW,SW,FRE,FU").split(QLatin1Char(','));
    });
    return "edit type names, kind " + std::to_string(kind) + ' ' + describe(name);
}

std::string editNumbers(ByteSource &source, Pair &pair)
{
    const int kind = source.below(9);
    const int number = source.below(7);
    const int limit = drawBlockSize(source);
    const VARIABLE drawn = drawVariable(source);
    pair.each([&](auto &side) {
        auto &state = side.state;
        if (kind == 0)
            state.phase = number;
        else if (kind == 1)
            state.tryCount = number;
        else if (kind == 2)
            state.failCount = number;
        else if (kind == 3)
            state.retryLimit = number - 1;
        else if (kind == 4)
            state.blockSize = limit;
        else if (kind == 5)
            state.writeBlockSize = limit;
        else if (kind == 6)
            state.bitBlockSize = limit;
        else if (kind == 7)
            state.curVar = drawn;
        else
            state.conditionVar = drawn;
    });
    return "edit number, kind " + std::to_string(kind) + ' ' + std::to_string(number) + ' '
        + std::to_string(limit) + ' ' + describe(drawn);
}

} // namespace

std::string editMembers(ByteSource &source, Pair &pair)
{
    switch (source.below(16)) {
    case 0:
    case 1:
        return addArea(source, pair);
    case 2:
    case 3:
        return editArea(source, pair);
    case 4:
    case 5:
        return editKey(source, pair);
    case 6:
    case 7:
        return rearrangeAreas(source, pair);
    case 8:
    case 9:
        return editRequests(source, pair);
    case 10:
    case 11:
        return editFrames(source, pair);
    case 12:
    case 13:
        return editRecipe(source, pair);
    case 14:
        return editTypes(source, pair);
    default:
        return editNumbers(source, pair);
    }
}

} // namespace model
