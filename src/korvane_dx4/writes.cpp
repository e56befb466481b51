// SPDX-License-Identifier: MIT
// Writes: shown at once, queued, settled when the device has answered or the request is given up.
#include "korvane_dx4/writes.h"

#include "driver_api.h"
#include "korvane_dx4/change_report.h"
#include "korvane_dx4/request_list.h"
#include "wire/byte_order.h"
#include "wire/wrap.h"

#include <algorithm>
#include <cstring>

using namespace dx4;

namespace {

constexpr int bytesPerRegister = 2;

// The values of one queued write, as many as a record holds.
void takeValues(unsigned char (&target)[recordBytes], const unsigned char *data, int count)
{
    const qint64 bytes = std::min<qint64>(qint64 { count } * bytesPerRegister, recordBytes);
    std::memcpy(target, data, static_cast<std::size_t>(bytes));
}

void queueWrite(const RegisterRange &range, const unsigned char *data, int varKind)
{
    VARIABLE var;
    var.varKind = varKind;
    var.station = range.station;
    var.regType = REG_LIST[range.type];
    const Pieces pieces =
        Pieces::cut(range.address, range.count, splitLimit(driver.writeBlockSize));
    queuePieces(driver.writeList, var, pieces, [&](qint64 j) {
        if (j > 0)
            std::memset(var.data, 0, sizeof var.data);
        if (var.count > 0)
            takeValues(var.data, data + pieces.registersBefore(j) * bytesPerRegister, var.count);
    });
}

void storeWritten(int position, const unsigned char *bytes)
{
    _DATA_ &area = dataAreaIndex.edit(position);
    area.writeValue[0] = bytes[0];
    area.writeValue[1] = bytes[1];
    area.writePending = 1;
}

void showWritten(const RegisterRange &range, const unsigned char *data)
{
    const CacheWriting writing;
    const QString &name = REG_LIST[range.type];
    RegisterFinder finder(range.station, name);
    for (int i = 0; i < range.count; ++i, data += bytesPerRegister) {
        const int address = wrapAdd(range.address, i);
        const int position = finder.positionOf(address);
        const int before = shownValue(driver.dataAreas.at(position));
        const int after = wordOf(data[0], data[1]);
        reportWordChange(position, before, after, range.station, name, address);
        storeWritten(finder.positionAgain(position, address), data);
    }
}

// Drops the pending mark and gives both values of the register.
struct SettledValues {
    int device;
    int written;
};

SettledValues endPending(int position, WriteOutcome outcome)
{
    _DATA_ &area = dataAreaIndex.edit(position);
    area.writePending = 0;
    if (outcome == WriteOutcome::Confirmed) {
        area.value[0] = area.writeValue[0];
        area.value[1] = area.writeValue[1];
    }
    return { wordOf(area.value[0], area.value[1]), wordOf(area.writeValue[0], area.writeValue[1]) };
}

} // namespace

void dx4::settleWrite(const RegisterRange &range, WriteOutcome outcome)
{
    if (range.type == UnknownType)
        return;
    const CacheWriting writing;
    const QString &name = REG_LIST[range.type];
    RegisterFinder finder(range.station, name);
    for (int i = 0; i < range.count; ++i) {
        const int address = wrapAdd(range.address, i);
        const int position = finder.positionOf(address);
        // After a confirmation both are equal and nothing is reported: the host sees the value
        // already.
        const SettledValues values = endPending(position, outcome);
        reportWordChange(position, values.device, values.written, range.station, name, address);
    }
}

void write_saveDataToArea(int station, QString regType, int address, int count, unsigned char *data)
{
    const RegisterType type = registerType(regType);
    if (type == UnknownType || !data)
        return;
    showWritten({ station, type, address, count }, data);
}

void _write_FailOrSuc(int station, QString regType, int address, int count, int success)
{
    settleWrite({ station, registerType(regType), address, count },
                success == 1 ? WriteOutcome::Confirmed : WriteOutcome::Failed);
}

int intf_setData(int station, QString regType, int address, int count, unsigned char *data,
                 int varKind)
{
    const RegisterRange range { station, registerType(regType), address, count };
    const bool lacksValues = count > 0 && !data;
    if (range.type == UnknownType || lacksValues)
        return alwaysDone;
    if (driver.writesLocalOnly == 0)
        queueWrite(range, data, varKind);
    if (data)
        showWritten(range, data);
    return alwaysDone;
}
