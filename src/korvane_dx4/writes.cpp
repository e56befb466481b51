// SPDX-License-Identifier: MIT
// Writes: shown at once, queued, settled when the device has answered or the request is given up.
#include "korvane_dx4/writes.h"

#include "driver_api.h"
#include "korvane_dx4/call_watch.h"
#include "korvane_dx4/change_report.h"
#include "korvane_dx4/request_list.h"
#include "wire/byte_order.h"
#include "wire/wrap.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

using namespace dx4;

namespace {

constexpr int bytesPerRegister = 2;

// Fills a record with the values of one queued write, as many as it holds, and zeroes behind them.
void takeValues(VARIABLE &entry, const unsigned char *data)
{
    const qint64 wanted = qint64 { entry.count } * bytesPerRegister;
    const auto bytes = static_cast<std::size_t>(std::clamp<qint64>(wanted, 0, recordBytes));
    if (bytes > 0)
        std::memcpy(entry.data, data, bytes);
    std::memset(entry.data + bytes, 0, recordBytes - bytes);
}

void queueWrite(const RegisterRange &range, const unsigned char *data, int varKind)
{
    const RequestHead request { varKind, range.station, REG_LIST[range.type], 0, 0 };
    const Pieces pieces =
        Pieces::cut(range.address, range.count, splitLimit(driver.writeBlockSize));
    queuePieces(driver.writeList, request, pieces, [&](VARIABLE &entry, qint64 j) {
        const bool hasValues = entry.count > 0;
        takeValues(entry,
                   hasValues ? data + pieces.registersBefore(j) * bytesPerRegister : nullptr);
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
    const CacheScope scope;
    ChangeReport changes(range.station, REG_LIST[range.type]);
    visitRecords(range, [&](int i, int, const _DATA_ &area) {
        const RegisterKey key { range.station, range.type, wrapAdd(range.address, i) };
        const unsigned char *const bytes = data + bytesPerRegister * std::ptrdiff_t { i };
        changes.report(area, key.address, shownValue(area), wordOf(bytes[0], bytes[1]));
        storeWritten(dataAreaIndex.findOrAppend(key), bytes); // the host may have moved it
        return Visited::ListTouched;
    });
}

void endPending(_DATA_ &area, WriteOutcome outcome)
{
    area.writePending = 0;
    if (outcome == WriteOutcome::Confirmed) {
        area.value[0] = area.writeValue[0];
        area.value[1] = area.writeValue[1];
    }
}

} // namespace

void dx4::settleWrite(const RegisterRange &range, WriteOutcome outcome)
{
    if (range.type == UnknownType)
        return;
    const CacheScope scope;
    ChangeReport changes(range.station, REG_LIST[range.type]);
    visitRecords(range, [&](int i, int position, const _DATA_ &) {
        _DATA_ &area = dataAreaIndex.edit(position);
        endPending(area, outcome);
        // Both are equal after a confirmation, and nothing is reported: the value is shown already.
        changes.report(area, wrapAdd(range.address, i), wordOf(area.value[0], area.value[1]),
                       wordOf(area.writeValue[0], area.writeValue[1]));
        return Visited::ListTouched;
    });
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
    [[maybe_unused]] const CallWatch watch("intf_setData");
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
