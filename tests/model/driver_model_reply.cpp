// SPDX-License-Identifier: MIT
// The model's handling of replies and the closing of each request.
#include "driver_model.h"
#include "wrap.h"

namespace model {

namespace {

enum ReplyKind { Bad, WithData, WithoutData };

unsigned char byteAt(const QByteArray &reply, int position)
{
    const bool inside = position >= 0 && position < reply.size();
    return inside ? static_cast<unsigned char>(reply.at(position)) : static_cast<unsigned char>(0);
}

QString errorLine(const VARIABLE &var, int received)
{
    QString text = QStringLiteral("%1#%2%3(%4)(%5)");
    text = text.arg(var.station);
    text = text.arg(var.regType);
    text = text.arg(QString::number(var.address));
    text = text.arg(var.count);
    return text.arg(received);
}

} // namespace

int DriverModel::checkReply(const QByteArray &reply) const
{
    const FRAME_PRO &head = sendFrames.constFirst();
    const int length = static_cast<int>(reply.size());
    if (length == 0 && head.replyLength == 0)
        return WithoutData;
    if (length != head.replyLength || length < 2)
        return Bad;
    // The number of bytes under the CRC is a 16-bit number.
    QByteArray bytes = reply;
    const int crc =
        crcOf(reinterpret_cast<const unsigned char *>(bytes.constData()), (length - 2) & 0xFFFF);
    if (byteAt(reply, length - 1) != byteOf(crc, 1) || byteAt(reply, length - 2) != byteOf(crc, 0))
        return Bad;
    return head.replyDataLength != 0 ? WithData : WithoutData;
}

int DriverModel::dealRcvFrame(QByteArray &reply, QString &errorText)
{
    errorText = QString();
    if (sendFrames.isEmpty())
        return 0;
    const VARIABLE var = sendFrames.constFirst().var;
    errorText = errorLine(var, static_cast<int>(reply.size()));
    switch (checkReply(reply)) {
    case WithData:
        lastFailed = 0;
        storeReply(reply);
        return acceptHead();
    case WithoutData:
        if (phase == 2)
            settle(var.station, var.regType, var.address, var.count, Outcome::Succeeded);
        lastFailed = 0;
        return acceptHead();
    default:
        return rejectReply();
    }
}

void DriverModel::storeReply(const QByteArray &reply)
{
    const FRAME_PRO head = sendFrames.constFirst();
    const QString regType = head.var.regType;
    if (!isRegisterType(regType))
        return;
    for (int i = 0; i < head.replyDataLength / 2; ++i) {
        const int address = wrap(1LL * head.var.address + i);
        const unsigned char high = byteAt(reply, wrap(head.replyDataOffset + 2LL * i));
        const unsigned char low = byteAt(reply, wrap(head.replyDataOffset + 2LL * i + 1));
        _DATA_ &area = dataAreas[areaOf(head.var.station, regType, address)];
        area.flag0 = 0;
        if (area.value[0] == low && area.value[1] == high)
            continue;
        if (area.writePending != 0 && area.word1 == 0)
            area.writePending = 0;
        const int before = area.value[0] + 256 * area.value[1];
        area.value[0] = low;
        area.value[1] = high;
        reportChange(before, low + 256 * high, head.var.station, regType, address);
    }
    if (phase == 6)
        storeRecipe(reply, head);
}

void DriverModel::storeRecipe(const QByteArray &reply, const FRAME_PRO &head)
{
    if (rcpIndex < 0 || rcpIndex >= mergeIndexList.size())
        return;
    const int known = static_cast<int>(rcpVars.size());
    const bool lastBlock = rcpIndex == mergeIndexList.size() - 1;
    const int first = mergeIndexList.at(rcpIndex);
    const int end = lastBlock ? known : mergeIndexList.at(rcpIndex + 1);
    for (int j = first; j < end && j < known; ++j) {
        const int distance = wrap(1LL * rcpVars.at(j).address - rcpVars.at(first).address);
        const int position = wrap(head.replyDataOffset + 2LL * distance);
        const int unit = rcpVars.at(j).bufferOffset;
        if (recipeBuffer) {
            auto *bytes = reinterpret_cast<unsigned char *>(recipeBuffer + unit);
            for (int k = 0; k < 4; ++k)
                bytes[k] = byteAt(reply, wrap(position + 3LL - k));
        }
        notify(0, -1, QStringLiteral("RWI"), unit);
        notify(0, -1, QStringLiteral("RWI"), wrap(unit + 1LL));
    }
}

int DriverModel::acceptHead()
{
    sendFrames.removeFirst();
    if (sendFrames.isEmpty())
        closeRequest();
    failCount = 0;
    return 1;
}

int DriverModel::rejectReply()
{
    failCount = wrap(failCount + 1LL);
    if (failCount < retryLimit)
        return 8;
    lastFailed = 1;
    const FRAME_PRO head = sendFrames.constFirst();
    const VARIABLE &var = head.var;
    if (phase == 2)
        settle(var.station, var.regType, var.address, var.count, Outcome::Failed);
    if (isRegisterType(var.regType)) {
        for (int i = 0; i < head.replyDataLength / 2; ++i)
            dataAreas[areaOf(var.station, var.regType, wrap(1LL * var.address + i))].flag0 = 1;
    }
    sendFrames.clear();
    failCount = 0;
    closeRequest();
    return 2;
}

void DriverModel::closeRequest()
{
    switch (phase) {
    case 2:
        return closeWrite();
    case 3:
        return closeConditionRead();
    case 4:
        if (readList.size() >= 2)
            readList.append(readList.takeFirst());
        return;
    case 5:
        return closeRecipe(60115);
    case 6:
        return closeRecipe(60116);
    default:
        return;
    }
}

void DriverModel::closeWrite()
{
    if (writeList.isEmpty())
        return;
    const VARIABLE head = writeList.constFirst();
    settle(head.station, head.regType, head.address, head.count,
           lastFailed == 1 ? Outcome::Failed : Outcome::Succeeded);
    writeList.removeFirst();
}

void DriverModel::closeConditionRead()
{
    if (conditionList.isEmpty())
        return;
    if (sameRequest(conditionList.constFirst(), conditionVar))
        notify(-1, -1, QStringLiteral("-1"), lastFailed == 1 ? -1 : 0);
    if (lastFailed == 1)
        conditionList.clear();
    else
        conditionList.removeFirst();
}

void DriverModel::closeRecipe(int flagPosition)
{
    if (lastFailed == 0) {
        ++rcpIndex;
        if (rcpIndex < rcpSendVars.size())
            return;
    }
    rcpIndex = 0;
    clearRecipeRequest(flagPosition);
}

void DriverModel::clearRecipeRequest(int flagPosition)
{
    if (!hostBlock || !hostMutex)
        return;
    hostMutex->lock();
    hostBlock[flagPosition] = 0;
    hostMutex->unlock();
}

} // namespace model
