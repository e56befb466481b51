// SPDX-License-Identifier: MIT
// Tells the host that a cached value has changed.
#include "korvane_dx4/change_report.h"

#include "korvane_dx4.h"
#include "korvane_dx4/data_areas.h"
#include "korvane_dx4/record_copy.h"
#include "wire/wrap.h"

using namespace dx4;

namespace {

constexpr int bitsPerWord = 16;
constexpr int bitsPerByte = 8;

// A name for the callback, made once, because counting references twice for each change costs as
// much as storing the value. While it is out, a callback that calls back in gets a copy of its own.
struct LentName {
    QString text;
    bool isOut = false;
};

LentName lentNames[registerTypeCount] = { { REG_LIST[0] }, { REG_LIST[1] }, { REG_LIST[2] },
                                          { REG_LIST[3] }, { REG_LIST[4] }, { REG_LIST[5] } };

void callWithCopy(int linkId, int station, QString name, int address)
{
    if (driver.valueChangeCallback)
        driver.valueChangeCallback(linkId, station, name, address);
}

bool hasBit(int value, int bit)
{
    return (static_cast<unsigned>(value) >> bit) & 1U;
}

bool isReportedBit(int bitMask, int valueA, int valueB, int bit)
{
    return hasBit(bitMask, bit) && hasBit(valueA, bit) != hasBit(valueB, bit);
}

Q_DECL_COLD_FUNCTION void reportBits(int bitMask, int valueA, int valueB,
                                     const ChangedRegister &changed)
{
    const QString name = changed.regType + QLatin1String("_bit");
    for (int bit = 0; bit < bitsPerWord; ++bit) {
        if (isReportedBit(bitMask, valueA, valueB, bit))
            callWithCopy(driver.linkId, changed.station, name,
                         wrapAdd(wrapMul(changed.address, bitsPerWord), bit));
    }
}

void reportRegister(const ChangedRegister &changed)
{
    if (!driver.valueChangeCallback) // taken away by the report of a bit
        return;
    const bool canLend = changed.type != UnknownType && !lentNames[changed.type].isOut;
    if (!canLend)
        return callWithCopy(driver.linkId, changed.station, changed.regType, changed.address);
    LentName &lent = lentNames[changed.type];
    lent.isOut = true;
    driver.valueChangeCallback(driver.linkId, changed.station, lent.text, changed.address);
    assignText(lent.text, REG_LIST[changed.type]); // the host may have changed it
    lent.isOut = false;
}

// A value of two registers is known by its first one. Address 0 has none before it.
Q_DECL_COLD_FUNCTION void reportDoubles(int flags, const ChangedRegister &changed)
{
    const QString name = changed.regType + QLatin1String("_double");
    if (changed.address >= 0 && hasBit(flags, MonitoredDoubleStart))
        callWithCopy(driver.linkId, changed.station, name, changed.address);
    if (changed.address > 0 && hasBit(flags, MonitoredDoubleEnd))
        callWithCopy(driver.linkId, changed.station, name, changed.address - 1);
}

} // namespace

void dx4::notifyHost(int linkId, int station, const QString &name, int address)
{
    callWithCopy(linkId, station, name, address);
}

void dx4::reportWordChange(int position, int valueA, int valueB, const ChangedRegister &changed,
                           BitReports bits)
{
    if (valueA == valueB || !driver.valueChangeCallback)
        return;
    // Taken before the host is called: it may add records meanwhile.
    const int flags = driver.dataAreas.at(position).flags;
    const int bitMask = driver.dataAreas.at(position).bitMask;
    if (bitMask != 0 && bits == BitReports::Included)
        reportBits(bitMask, valueA, valueB, changed);
    if (hasBit(flags, MonitoredWord))
        reportRegister(changed);
    if (hasBit(flags, MonitoredDoubleStart) || hasBit(flags, MonitoredDoubleEnd))
        reportDoubles(flags, changed);
}

void _wordDataChange(int *valueA, int *valueB, int station, QString regType, int address,
                     int noBits)
{
    const CacheScope scope;
    const QString &name = sharedName(regType);
    const int position = RegisterFinder({ station, name }).positionOf(address);
    if (!valueA || !valueB)
        return;
    reportWordChange(position, *valueA, *valueB, { station, name, registerType(name), address },
                     noBits == 0 ? BitReports::Included : BitReports::LeftOut);
}

void _byteDataChange(unsigned char *byteA, unsigned char *byteB, int station, QString regType,
                     int address)
{
    const CacheScope scope;
    const int position = RegisterFinder({ station, sharedName(regType) }).positionOf(address);
    const int bitMask = driver.dataAreas.at(position).bitMask;
    if (!byteA || !byteB)
        return;
    const int valueA = *byteA;
    const int valueB = *byteB;
    for (int bit = 0; bit < bitsPerByte; ++bit) {
        if (isReportedBit(bitMask, valueA, valueB, bit))
            notifyHost(driver.linkId, station, regType, wrapAdd(address, bit));
    }
}
