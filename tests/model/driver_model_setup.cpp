// SPDX-License-Identifier: MIT
// The model's identity, settings, recipe variables and address merging.
#include "driver_model.h"
#include "wrap.h"

#include <QStringList>

#include <algorithm>

namespace model {

DriverModel::DriverModel()
    : regTypeList(QStringLiteral("F,D,CW,SW,FRE,FU").split(QLatin1Char(',')))
{
}

void DriverModel::getProtocolType(int *type) const
{
    if (type)
        *type = 0;
}

void DriverModel::getDriverParameter(QString &text) const
{
    text = QStringLiteral("0,9600,8,NONE,1,0,1,192.168.0.1,8888,korvane_dx4,F,D,CW,SW,FRE,FU");
}

void DriverModel::getDriverPropertyPage(QString &text) const
{
    text = QStringLiteral("0_0");
}

void DriverModel::setDriverPropertyPage(QString &text) const
{
    text = QString();
}

void DriverModel::setAddrValueChangeCallBack(Callback callback)
{
    valueChangeCallback = std::move(callback);
}

int DriverModel::initProperty(unsigned char *block, int param, unsigned short *recipe, int *result,
                              const char *propertyText, QMutex *mutex)
{
    if (result)
        *result = 0;
    const QStringList fields = QString::fromLatin1(propertyText).split(QLatin1Char('#'));
    if (fields.size() > 4) {
        linkId = fields.at(0).toInt();
        writesLocalOnly = fields.at(1).toInt();
        property2 = fields.at(2).toInt();
        retryLimit = fields.at(3).toInt();
        blockSize = fields.at(4).toInt();
    }
    hostBlock = block;
    hostParam = param;
    recipeBuffer = recipe;
    hostMutex = mutex;
    readList.clear();
    writeList.clear();
    conditionList.clear();
    dataAreas.clear();
    phase = 0;
    tryCount = 0;
    spare1 = 0;
    failCount = 0;
    lastFailed = 0;
    writeBlockSize = blockSize;
    bitBlockSize = wrap(8LL * blockSize);
    sendFrames.clear();
    spare2 = 0;
    spare3 = 1;
    return 1;
}

int DriverModel::setRcpAddress(const QVector<_RCP_VAR_PRO> &rcpList)
{
    QVector<_RCP_VAR_PRO> kept;
    for (const _RCP_VAR_PRO &recipe : rcpList) {
        if (recipe.linkId == linkId)
            kept.append(recipe);
    }
    rcpVars = kept;
    return static_cast<int>(rcpVars.size());
}

unsigned DriverModel::weight(const KEY_ADDRESS &key) const
{
    // Unsigned arithmetic wraps by itself.
    const unsigned station = static_cast<unsigned>(key.station);
    const unsigned address = static_cast<unsigned>(key.address);
    unsigned position = 0;
    for (int i = 0; i < regTypeList.size(); ++i) {
        if (regTypeList.at(i) == key.regType) {
            position = static_cast<unsigned>(i) + 1;
            break;
        }
    }
    return 65535U * (5U * station + position) + address;
}

namespace {

bool mustStartNewBlock(const KEY_ADDRESS &block, const KEY_ADDRESS &next)
{
    if (block.regType != next.regType)
        return true;
    const int blockEnd = wrap(1LL * block.address + block.count);
    if (wrap(1LL * next.address - blockEnd) > 0)
        return true;
    return block.regType == QLatin1String("F") && block.address / 256 != next.address / 256;
}

} // namespace

QList<KEY_ADDRESS> DriverModel::mergePass(const QList<KEY_ADDRESS> &sorted) const
{
    QList<KEY_ADDRESS> blocks;
    KEY_ADDRESS block = sorted.at(0);
    for (int i = 1; i < sorted.size(); ++i) {
        const KEY_ADDRESS &next = sorted.at(i);
        const int span = wrap(1LL * wrap(1LL * next.address + next.count) - block.address);
        if (mustStartNewBlock(block, next) || span > blockSize) {
            blocks.append(block);
            block = next;
        } else {
            block.count = span;
        }
    }
    blocks.append(block);
    return blocks;
}

int DriverModel::addrMerge(QList<KEY_ADDRESS> &addresses)
{
    for (_DATA_ &area : dataAreas) {
        area.flags = 0;
        area.bitMask = 0;
    }
    for (const KEY_ADDRESS &key : std::as_const(addresses))
        monitor(key.station, key.regType, key.address, key.count);
    readList.clear();
    if (addresses.isEmpty())
        return 0;
    std::stable_sort(
        addresses.begin(), addresses.end(),
        [this](const KEY_ADDRESS &a, const KEY_ADDRESS &b) { return weight(a) < weight(b); });
    addresses = mergePass(mergePass(addresses));
    for (const KEY_ADDRESS &block : std::as_const(addresses)) {
        VARIABLE read;
        read.varKind = 4;
        read.station = block.station;
        read.regType = block.regType;
        read.address = block.address;
        read.count = block.count;
        readList.append(read);
    }
    return static_cast<int>(readList.size());
}

} // namespace model
