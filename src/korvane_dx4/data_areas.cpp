// SPDX-License-Identifier: MIT
// The cache of register values: find or create a record, monitor marks, the host's reads.
#include "korvane_dx4/data_areas.h"

#include "driver_api.h"
#include "korvane_dx4/call_watch.h"
#include "wire/byte_order.h"
#include "wire/wrap.h"

#include <cstddef>

using namespace dx4;

namespace {

constexpr unsigned intBits = 32;

int findOrAppend(int station, const QString &regType, int address, QList<_DATA_> &list)
{
    const QList<_DATA_> &records = list;
    const int count = static_cast<int>(records.size());
    for (int i = 0; i < count; ++i) {
        if (hasKey(records.at(i), station, regType, address))
            return i;
    }
    _DATA_ record;
    record.station = station;
    record.regType = regType;
    record.address = address;
    list.append(record);
    return count;
}

// The buffer could overlap anything as far as the compiler knows: both bytes are read before one is
// written.
void copyShown(const _DATA_ &area, unsigned char *out)
{
    const unsigned char *const shown = shownBytes(area);
    const unsigned char low = shown[0];
    const unsigned char high = shown[1];
    out[0] = low;
    out[1] = high;
}

} // namespace

RegisterRange dx4::rangeOf(const VARIABLE &var)
{
    return { var.station, registerType(var.regType), var.address, var.count };
}

int dx4::shownValue(const _DATA_ &area)
{
    const unsigned char *bytes = shownBytes(area);
    return wordOf(bytes[0], bytes[1]);
}

void dx4::clearMonitorMarks()
{
    const int count = static_cast<int>(driver.dataAreas.size());
    for (int position = 0; position < count; ++position) {
        const _DATA_ &area = driver.dataAreas.at(position);
        if (area.flags == 0 && area.bitMask == 0)
            continue;
        _DATA_ &marked = dataAreaIndex.edit(position);
        marked.flags = 0;
        marked.bitMask = 0;
    }
}

void dx4::markMonitored(int station, const QString &regType, int address, int count)
{
    const RegisterType type = registerType(regType);
    if (type == UnknownType)
        return;
    visitRecords({ station, type, address, count }, [](int, int position, const _DATA_ &area) {
        const int marks = _setBitValue(area.flags, MonitoredWord, 1);
        if (marks == area.flags)
            return Visited::Untouched;
        dataAreaIndex.edit(position).flags = marks;
        return Visited::ListTouched;
    });
}

int getIndexOfDataArea(int station, QString regType, int address, QList<_DATA_> &list)
{
    const RegisterType type = registerType(regType);
    const bool isIndexed = &list == &driver.dataAreas && type != UnknownType;
    if (!isIndexed)
        return findOrAppend(station, regType, address, list);
    const CacheScope scope;
    return dataAreaIndex.findOrAppend({ station, type, address });
}

int _setDataAreaMonitorFlag(int station, QString regType, int address, int count)
{
    const CacheScope scope;
    markMonitored(station, regType, address, count);
    return 0;
}

int _setBitValue(int value, int bit, int on)
{
    const unsigned number = static_cast<unsigned char>(bit);
    const unsigned mask = number < intBits ? 1U << number : 0U;
    const unsigned bits = static_cast<unsigned>(value);
    return static_cast<int>(on ? bits | mask : bits & ~mask);
}

int intf_getData(int station, QString regType, int address, int count, unsigned char *out)
{
    [[maybe_unused]] const CallWatch watch("intf_getData");
    const RegisterType type = registerType(regType);
    if (type == UnknownType)
        return alwaysDone;
    const CacheScope scope;
    visitRecords({ station, type, address, count }, [out](int i, int, const _DATA_ &area) {
        if (out)
            copyShown(area, out + 2 * static_cast<std::ptrdiff_t>(i));
        return Visited::Untouched;
    });
    return alwaysDone;
}
