// SPDX-License-Identifier: MIT
// The cache of register values: find or create a record, monitor marks, the host's reads.
#include "korvane_dx4/data_areas.h"

#include "driver_api.h"
#include "wire/byte_order.h"
#include "wire/wrap.h"

#include <cstddef>

using namespace dx4;

namespace {

constexpr unsigned intBits = 32;

int findOrAppend(const RegisterKey &key, QList<_DATA_> &list)
{
    const QList<_DATA_> &records = list;
    const int count = static_cast<int>(records.size());
    for (int i = 0; i < count; ++i) {
        if (hasKey(records.at(i), key))
            return i;
    }
    _DATA_ record;
    record.station = key.owner.station;
    record.regType = key.owner.regType;
    record.address = key.address;
    list.append(record);
    return count;
}

// The buffer could overlap anything as far as the compiler knows: reading both bytes before writing
// one, and keeping the place in the list apart, lets it move a register with one load and store.
void copyShown(const RecordRun &run, unsigned char *out)
{
    auto area = driver.dataAreas.constBegin() + run.position;
    for (const auto end = area + run.count; area != end; ++area, out += 2) {
        const unsigned char *shown = shownBytes(*area);
        const unsigned char low = shown[0];
        const unsigned char high = shown[1];
        out[0] = low;
        out[1] = high;
    }
}

} // namespace

int dx4::foundOffsets[registerTypeCount + 1] = {};

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
    const CacheScope scope;
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
    const CacheScope scope;
    RegisterFinder finder({ station, type });
    for (int i = 0; i < count; ++i) {
        const int position = finder.positionOf(wrapAdd(address, i));
        const int marks = _setBitValue(driver.dataAreas.at(position).flags, MonitoredWord, 1);
        if (marks != driver.dataAreas.at(position).flags)
            dataAreaIndex.edit(position).flags = marks;
    }
}

int getIndexOfDataArea(int station, QString regType, int address, QList<_DATA_> &list)
{
    const bool isCache = &list == &driver.dataAreas;
    if (!isCache)
        return findOrAppend({ { station, regType }, address }, list);
    const CacheScope scope;
    return RegisterFinder({ station, sharedName(regType) }).positionOf(address);
}

int _setDataAreaMonitorFlag(int station, QString regType, int address, int count)
{
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
    const RegisterType type = registerType(regType);
    if (type == UnknownType)
        return alwaysDone;
    const CacheScope scope;
    RegisterFinder finder({ station, type });
    for (int i = 0; i < count;) {
        const RecordRun run = finder.runFrom(wrapAdd(address, i), count - i);
        if (out)
            copyShown(run, out + 2 * static_cast<std::ptrdiff_t>(i));
        i += run.count;
    }
    return alwaysDone;
}
