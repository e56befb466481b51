// SPDX-License-Identifier: MIT
// The linked driver object in its state after load, with every callback recorded.
#include "driver_state.h"

#include "result_codes.h"

#include <utility>

namespace {

std::vector<std::string> *noted = nullptr;
std::function<void()> *noticed = nullptr;

void emptyDriver()
{
    driver.valueChangeCallback = nullptr;
    driver.linkId = 0;
    driver.writesLocalOnly = 0;
    driver.retryLimit = 0;
    driver.blockSize = 0;
    driver.hostBlock = nullptr;
    driver.recipeBuffer = nullptr;
    driver.hostMutex = nullptr;
    driver.readList.clear();
    driver.writeList.clear();
    driver.conditionList.clear();
    driver.dataAreas.clear();
    driver.rcpVars.clear();
    driver.rcpSendVars.clear();
    driver.mergeIndexList.clear();
    driver.regTypeList = { QStringLiteral("F"),  QStringLiteral("D"),   QStringLiteral("CW"),
                           QStringLiteral("SW"), QStringLiteral("FRE"), QStringLiteral("FU") };
    driver.conditionVar = VARIABLE();
    driver.curVar = VARIABLE();
    driver.phase = 0;
    driver.tryCount = 0;
    driver.failCount = 0;
    driver.bitBlockSize = 0;
    driver.writeBlockSize = 0;
    driver.lastFailed = 0;
    driver.sendFrames.clear();
    driver.rcpIndex = 0;
}

template <typename List> std::string describe(const List &list)
{
    std::string all;
    for (const auto &entry : list) {
        if (!all.empty())
            all += "; ";
        all += std::to_string(entry.station) + ' ' + entry.regType.toStdString() + ' '
            + std::to_string(entry.address) + ' ' + std::to_string(entry.count);
    }
    return all;
}

} // namespace

DriverState::DriverState()
    : hostBlock(dx4::hostBlockBytes, 0)
    , recipeBuffer(64, 0)
{
    emptyDriver();
    driver.linkId = 1;
    driver.valueChangeCallback = &DriverState::note;
    driver.hostBlock = hostBlock.data();
    driver.recipeBuffer = recipeBuffer.data();
    driver.hostMutex = &mutex;
    noted = &calls;
    noticed = &insideCallback;
}

DriverState::~DriverState()
{
    emptyDriver();
    noted = nullptr;
    noticed = nullptr;
}

void DriverState::note(int linkId, int station, QString &name, int address)
{
    noted->push_back(std::to_string(linkId) + ' ' + std::to_string(station) + ' '
                     + name.toStdString() + ' ' + std::to_string(address));
    if (*noticed)
        (*noticed)();
}

_DATA_ &DriverState::record(int station, const char *type, int address)
{
    const QString name = QString::fromLatin1(type);
    for (int i = 0; i < static_cast<int>(driver.dataAreas.size()); ++i) {
        const _DATA_ &data = driver.dataAreas.at(i);
        if (data.station == station && data.regType == name && data.address == address)
            return driver.dataAreas[i];
    }
    _DATA_ data;
    data.station = station;
    data.regType = name;
    data.address = address;
    driver.dataAreas.append(data);
    return driver.dataAreas.last();
}

std::string DriverState::cacheKeys()
{
    std::string keys;
    for (const _DATA_ &data : std::as_const(driver.dataAreas)) {
        if (!keys.empty())
            keys += "; ";
        keys += std::to_string(data.station) + ' ' + data.regType.toStdString() + ' '
            + std::to_string(data.address);
    }
    return keys;
}

VARIABLE variableOf(int station, const char *type, int address, int count)
{
    VARIABLE var;
    var.station = station;
    var.regType = QString::fromLatin1(type);
    var.address = address;
    var.count = count;
    return var;
}

KEY_ADDRESS keyOf(int station, const char *type, int address, int count)
{
    KEY_ADDRESS key;
    key.station = station;
    key.regType = QString::fromLatin1(type);
    key.address = address;
    key.count = count;
    return key;
}

std::string listText(const QList<VARIABLE> &list)
{
    return describe(list);
}

std::string listText(const QList<KEY_ADDRESS> &list)
{
    return describe(list);
}
