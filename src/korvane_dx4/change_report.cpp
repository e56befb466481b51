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
    driver.valueChangeCallback(linkId, station, name, address);
}

bool hasBit(int value, int bit)
{
    return (static_cast<unsigned>(value) >> bit) & 1U;
}

// A register's marks, taken before the host is called: it may add records meanwhile.
struct Marks {
    int flags;
    int bitMask;
};

Marks marksAt(int position)
{
    const _DATA_ &area = driver.dataAreas.at(position);
    return { area.flags, area.bitMask };
}

bool isReportedBit(const Marks &marks, int valueA, int valueB, int bit)
{
    return hasBit(marks.bitMask, bit) && hasBit(valueA, bit) != hasBit(valueB, bit);
}

void reportBits(const Marks &marks, int valueA, int valueB, int station, const QString &regType,
                int address)
{
    if (marks.bitMask == 0)
        return;
    const QString name = regType + QLatin1String("_bit");
    for (int bit = 0; bit < bitsPerWord; ++bit) {
        if (isReportedBit(marks, valueA, valueB, bit))
            notifyHost(driver.linkId, station, name, wrapAdd(wrapMul(address, bitsPerWord), bit));
    }
}

// A value of two registers is known by its first one. Address 0 has none before it.
void reportDoubles(const Marks &marks, int station, const QString &regType, int address)
{
    for (int bit : { MonitoredDoubleStart, MonitoredDoubleEnd }) {
        if (address < 0)
            return;
        if (hasBit(marks.flags, bit))
            notifyHost(driver.linkId, station, regType + QLatin1String("_double"), address);
        --address;
    }
}

} // namespace

void dx4::notifyHost(int linkId, int station, const QString &name, int address)
{
    if (!driver.valueChangeCallback)
        return;
    const RegisterType type = registerType(name);
    if (type == UnknownType || lentNames[type].isOut)
        return callWithCopy(linkId, station, name, address);
    LentName &lent = lentNames[type];
    lent.isOut = true;
    driver.valueChangeCallback(linkId, station, lent.text, address);
    assignText(lent.text, REG_LIST[type]); // the host may have changed it
    lent.isOut = false;
}

void dx4::reportWordChange(int position, int valueA, int valueB, int station,
                           const QString &regType, int address, BitReports bits)
{
    if (valueA == valueB)
        return;
    const Marks marks = marksAt(position);
    if (bits == BitReports::Included)
        reportBits(marks, valueA, valueB, station, regType, address);
    if (hasBit(marks.flags, MonitoredWord))
        notifyHost(driver.linkId, station, regType, address);
    reportDoubles(marks, station, regType, address);
}

void _wordDataChange(int *valueA, int *valueB, int station, QString regType, int address,
                     int noBits)
{
    const CacheWriting writing;
    const int position = RegisterFinder(station, sharedName(regType)).positionOf(address);
    if (!valueA || !valueB)
        return;
    reportWordChange(position, *valueA, *valueB, station, regType, address,
                     noBits == 0 ? BitReports::Included : BitReports::LeftOut);
}

void _byteDataChange(unsigned char *byteA, unsigned char *byteB, int station, QString regType,
                     int address)
{
    const CacheWriting writing;
    const Marks marks = marksAt(RegisterFinder(station, sharedName(regType)).positionOf(address));
    if (!byteA || !byteB)
        return;
    const int valueA = *byteA;
    const int valueB = *byteB;
    for (int bit = 0; bit < bitsPerByte; ++bit) {
        if (isReportedBit(marks, valueA, valueB, bit))
            notifyHost(driver.linkId, station, regType, wrapAdd(address, bit));
    }
}
