// SPDX-License-Identifier: MIT
// Tells the host that a cached value has changed.
#include "korvane_dx4/change_report.h"

#include "korvane_dx4.h"
#include "korvane_dx4/data_areas.h"
#include "wire/wrap.h"

using namespace dx4;

namespace {

constexpr int bitsPerWord = 16;
constexpr int bitsPerByte = 8;

void callWithCopy(int linkId, int station, QString name, int address)
{
    if (!driver.valueChangeCallback)
        return;
    dataAreaIndex.noteHostCalled();
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

} // namespace

void dx4::notifyHost(int linkId, int station, const QString &name, int address)
{
    callWithCopy(linkId, station, name, address);
}

// Marks by value: the record may be gone once the host was called.
void ChangeReport::reportMarked(int flags, int bitMask, int address, int valueA, int valueB)
{
    reportBits(bitMask, address, valueA, valueB);
    if (hasBit(flags, MonitoredWord) && driver.valueChangeCallback) // not taken away by a bit's
        reportRegister(address);
    reportDoubles(flags, address);
}

void ChangeReport::reportBits(int bitMask, int address, int valueA, int valueB)
{
    if (bitMask == 0)
        return;
    const QString name = m_regType + QLatin1String("_bit");
    for (int bit = 0; bit < bitsPerWord; ++bit) {
        if (isReportedBit(bitMask, valueA, valueB, bit))
            callWithCopy(driver.linkId, m_station, name,
                         wrapAdd(wrapMul(address, bitsPerWord), bit));
    }
}

// A value of two registers is known by its first one. Address 0 has none before it.
void ChangeReport::reportDoubles(int flags, int address)
{
    const bool isStart = hasBit(flags, MonitoredDoubleStart) && address >= 0;
    const bool isEnd = hasBit(flags, MonitoredDoubleEnd) && address > 0;
    if (!isStart && !isEnd)
        return;
    const QString name = m_regType + QLatin1String("_double");
    if (isStart)
        callWithCopy(driver.linkId, m_station, name, address);
    if (isEnd)
        callWithCopy(driver.linkId, m_station, name, address - 1);
}

void _wordDataChange(int *valueA, int *valueB, int station, QString regType, int address,
                     int noBits)
{
    const CacheScope scope;
    const int position = getIndexOfDataArea(station, regType, address, driver.dataAreas);
    if (!valueA || !valueB)
        return;
    ChangeReport(station, sharedName(regType))
        .report(driver.dataAreas.at(position), address, *valueA, *valueB,
                noBits == 0 ? BitReports::Included : BitReports::LeftOut);
}

void _byteDataChange(unsigned char *byteA, unsigned char *byteB, int station, QString regType,
                     int address)
{
    const CacheScope scope;
    const int position = getIndexOfDataArea(station, regType, address, driver.dataAreas);
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
