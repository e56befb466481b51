// SPDX-License-Identifier: MIT
// The model's cache of registers: reads, change reports and writes.
#include "driver_model.h"
#include "wrap.h"

#include <algorithm>
#include <cstring>

namespace model {

namespace {

int valueOf(const unsigned char *bytes)
{
    return bytes[0] + 256 * bytes[1];
}

bool bitOf(int word, int bit)
{
    return ((static_cast<unsigned>(word) >> bit) & 1U) != 0;
}

} // namespace

bool isRegisterType(const QString &regType)
{
    return regType == QLatin1String("F") || regType == QLatin1String("D")
        || regType == QLatin1String("CW") || regType == QLatin1String("SW")
        || regType == QLatin1String("FRE") || regType == QLatin1String("FU");
}

int DriverModel::areaOf(int station, const QString &regType, int address)
{
    for (int i = 0; i < dataAreas.size(); ++i) {
        const _DATA_ &area = dataAreas.at(i);
        if (area.station == station && area.address == address && area.regType == regType)
            return i;
    }
    _DATA_ area;
    area.station = station;
    area.regType = regType;
    area.address = address;
    dataAreas.append(area);
    return static_cast<int>(dataAreas.size()) - 1;
}

void DriverModel::monitor(int station, const QString &regType, int address, int count)
{
    if (!isRegisterType(regType))
        return;
    for (int i = 0; i < count; ++i)
        dataAreas[areaOf(station, regType, wrap(1LL * address + i))].flags |= 1;
}

int DriverModel::getData(int station, const QString &regType, int address, int count,
                         unsigned char *out)
{
    if (!isRegisterType(regType))
        return 1;
    for (int i = 0; i < count; ++i) {
        const _DATA_ &area = dataAreas.at(areaOf(station, regType, wrap(1LL * address + i)));
        const unsigned char *shown = area.writePending ? area.writeValue : area.value;
        if (out)
            std::memcpy(out + 2 * i, shown, 2);
    }
    return 1;
}

void DriverModel::notify(int link, int station, const QString &name, int address)
{
    QString ownName = name;
    if (valueChangeCallback)
        valueChangeCallback(link, station, ownName, address);
}

void DriverModel::reportChange(int before, int after, int station, const QString &regType,
                               int address)
{
    const int index = areaOf(station, regType, address);
    if (before == after)
        return;
    const int flags = dataAreas.at(index).flags;
    const int bitMask = dataAreas.at(index).bitMask;
    for (int i = 0; i < 16; ++i) {
        if (bitOf(bitMask, i) && bitOf(before, i) != bitOf(after, i))
            notify(linkId, station, regType + QLatin1String("_bit"), wrap(16LL * address + i));
    }
    if (bitOf(flags, 0))
        notify(linkId, station, regType, address);
    if (address >= 0 && bitOf(flags, 1))
        notify(linkId, station, regType + QLatin1String("_double"), address);
    if (address >= 1 && bitOf(flags, 2))
        notify(linkId, station, regType + QLatin1String("_double"), address - 1);
}

bool sameRequest(const VARIABLE &a, const VARIABLE &b)
{
    return a.station == b.station && a.address == b.address && a.count == b.count
        && a.regType == b.regType;
}

void queueRequest(QList<VARIABLE> &list, const VARIABLE &var)
{
    for (int i = static_cast<int>(list.size()) - 1; i >= 1; --i) {
        if (sameRequest(list.at(i), var)) {
            list[i] = var;
            return;
        }
    }
    if (list.size() > 512)
        list[512] = var;
    else
        list.append(var);
}

int DriverModel::setData(int station, const QString &regType, int address, int count,
                         unsigned char *data, int varKind)
{
    if (!isRegisterType(regType) || (!data && count >= 1))
        return 1;
    if (!writesLocalOnly) {
        const long long limit = writeBlockSize == 0 ? 1 : writeBlockSize;
        const long long rest = count % limit;
        const int pieces = wrap(wrap(count / limit) + (rest != 0 ? 1LL : 0LL));
        for (int j = 0; j < pieces; ++j) {
            const bool last = j == pieces - 1;
            VARIABLE var;
            var.varKind = varKind;
            var.station = station;
            var.regType = regType;
            var.address = wrap(address + j * limit);
            var.count = static_cast<int>(last && rest != 0 ? rest : limit);
            const int bytes = std::clamp(var.count, 0, 512) * 2;
            if (bytes > 0)
                std::memcpy(var.data, data + j * limit * 2, static_cast<size_t>(bytes));
            queueRequest(writeList, var);
        }
    }
    showWritten(station, regType, address, count, data);
    return 1;
}

void DriverModel::showWritten(int station, const QString &regType, int address, int count,
                              const unsigned char *data)
{
    for (int i = 0; i < count; ++i) {
        const int registerNumber = wrap(1LL * address + i);
        const int index = areaOf(station, regType, registerNumber);
        const _DATA_ before = dataAreas.at(index);
        const int shown = valueOf(before.writePending ? before.writeValue : before.value);
        reportChange(shown, valueOf(data + 2 * i), station, regType, registerNumber);
        // Only now: whoever reads while being notified still sees the old value.
        _DATA_ &area = dataAreas[index];
        area.writeValue[0] = data[2 * i];
        area.writeValue[1] = data[2 * i + 1];
        area.writePending = 1;
    }
}

void DriverModel::settle(int station, const QString &regType, int address, int count,
                         Outcome outcome)
{
    if (!isRegisterType(regType))
        return;
    for (int i = 0; i < count; ++i) {
        const int registerNumber = wrap(1LL * address + i);
        _DATA_ &area = dataAreas[areaOf(station, regType, registerNumber)];
        area.writePending = 0;
        if (outcome == Outcome::Succeeded) {
            area.value[0] = area.writeValue[0];
            area.value[1] = area.writeValue[1];
            continue;
        }
        reportChange(valueOf(area.writeValue), valueOf(area.value), station, regType,
                     registerNumber);
    }
}

} // namespace model
