// SPDX-License-Identifier: MIT
// What came back: stored, confirmed, tried again or given up.
#include "korvane_dx4/reply.h"

#include "driver_api.h"
#include "korvane_dx4/change_report.h"
#include "korvane_dx4/cycle_end.h"
#include "korvane_dx4/data_areas.h"
#include "korvane_dx4/error_text.h"
#include "korvane_dx4/frame_queue.h"
#include "korvane_dx4/recipe.h"
#include "korvane_dx4/writes.h"
#include "wire/byte_order.h"
#include "wire/crc16.h"
#include "wire/reply_bytes.h"
#include "wire/request_frame.h"
#include "wire/wrap.h"

using namespace dx4;

namespace {

// The registers of a read request and where its reply has them, by value: the frame may be gone
// before the last register is stored.
struct ReadRequest {
    RegisterRange range; ///< count: registers in the reply
    int dataOffset; ///< bytes
};

ReadRequest readRequestOf(const FRAME_PRO &frame)
{
    RegisterRange range = rangeOf(frame.var);
    range.count = frame.replyDataLength / 2;
    return { range, frame.replyDataOffset };
}

void storeChange(int position, int value, const RegisterRange &range, int address)
{
    _DATA_ &area = dataAreaIndex.edit(position);
    area.flag0 = 0;
    const int before = wordOf(area.value[0], area.value[1]);
    if (before == value)
        return;
    const bool endsPendingWrite = area.writePending != 0 && area.word1 == 0;
    if (endsPendingWrite)
        area.writePending = 0;
    area.value[0] = lowByte(value);
    area.value[1] = highByte(value);
    reportWordChange(position, before, value,
                     { range.station, REG_LIST[range.type], range.type, address });
}

// How many registers at the start of a run have answered with the value they have.
int unchangedRegisters(const RecordRun &run, const QByteArray &reply, int offset)
{
    const QList<_DATA_> &areas = driver.dataAreas;
    int count = 0;
    while (count < run.count) {
        const _DATA_ &area = areas.at(run.position + count);
        const int answer = replyRegister(reply, wrapAdd(offset, 2 * count));
        const bool isSame = wordOf(area.value[0], area.value[1]) == answer && area.flag0 == 0;
        if (!isSame)
            break;
        ++count;
    }
    return count;
}

// A host that starts the link anew from inside its callback takes the records away.
bool isStillThere(const RecordRun &run)
{
    return run.position + run.count <= driver.dataAreas.size();
}

// Stores the registers of a run. Each is stored and reported before the next is looked at, so that
// a callback that reads ahead sees old values.
void storeRun(RecordRun run, const RegisterRange &range, int address, const QByteArray &reply,
              int offset)
{
    while (isStillThere(run)) {
        const int unchanged = unchangedRegisters(run, reply, offset);
        if (unchanged == run.count)
            return;
        const int answer = replyRegister(reply, wrapAdd(offset, 2 * unchanged));
        storeChange(run.position + unchanged, answer, range, wrapAdd(address, unchanged));
        const int done = unchanged + 1;
        run = { run.position + done, run.count - done };
        offset = wrapAdd(offset, 2 * done);
        address = wrapAdd(address, done);
    }
}

void storeRegisters(const ReadRequest &request, const QByteArray &reply)
{
    const RegisterRange &range = request.range;
    RegisterFinder finder({ range.station, range.type });
    for (int i = 0; i < range.count;) {
        const int address = wrapAdd(range.address, i);
        const RecordRun run = finder.runFrom(address, range.count - i);
        storeRun(run, range, address, reply, wrapAdd(request.dataOffset, wrapMul(2, i)));
        i += run.count;
    }
}

void finishHeadFrame()
{
    removeHeadFrame();
    if (driver.sendFrames.isEmpty())
        dealListWhenFinish();
    driver.failCount = 0;
}

ReplyResult acceptRead(const QByteArray &reply)
{
    driver.lastFailed = 0;
    const ReadRequest request = readRequestOf(driver.sendFrames.constFirst());
    if (request.range.type != UnknownType) {
        storeRegisters(request, reply);
        if (driver.phase == PhaseRecipeRead)
            storeRecipeValues(reply, request.dataOffset);
    }
    finishHeadFrame();
    return ReplyAccepted;
}

ReplyResult acceptEcho()
{
    if (driver.phase == PhaseWrite)
        settleWrite(rangeOf(driver.sendFrames.constFirst().var), WriteOutcome::Confirmed);
    driver.lastFailed = 0;
    finishHeadFrame();
    return ReplyAccepted;
}

void markFailed(const RegisterRange &range)
{
    if (range.type == UnknownType)
        return;
    RegisterFinder finder({ range.station, range.type });
    for (int i = 0; i < range.count; ++i) {
        const int position = finder.positionOf(wrapAdd(range.address, i));
        if (driver.dataAreas.at(position).flag0 != 1)
            dataAreaIndex.edit(position).flag0 = 1;
    }
}

ReplyResult giveUp()
{
    driver.lastFailed = 1;
    const RegisterRange unread = readRequestOf(driver.sendFrames.constFirst()).range;
    if (driver.phase == PhaseWrite)
        settleWrite(rangeOf(driver.sendFrames.constFirst().var), WriteOutcome::Failed);
    markFailed(unread);
    dropFrames();
    driver.failCount = 0;
    dealListWhenFinish();
    return RequestGivenUp;
}

ReplyResult countFailure()
{
    driver.failCount = wrapAdd(driver.failCount, 1);
    return driver.failCount < driver.retryLimit ? ReplyBad : giveUp();
}

bool hasRightCrc(const unsigned char *bytes, int length)
{
    // 16 bits of length: a frame of the line is never longer.
    const quint16 crc = crc16(bytes, (length - crcBytes) & 0xFFFF);
    return bytes[length - 2] == lowByte(crc) && bytes[length - 1] == highByte(crc);
}

} // namespace

int check_rcv_data(unsigned char *bytes, int length)
{
    if (driver.sendFrames.isEmpty())
        return ReplyRefused;
    const FRAME_PRO &head = driver.sendFrames.constFirst();
    if (length == 0 && head.replyLength == 0)
        return ReplyWithoutData;
    const bool isWhole = length == head.replyLength && length >= crcBytes && bytes;
    if (!isWhole || !hasRightCrc(bytes, length))
        return ReplyRefused;
    return head.replyDataLength != 0 ? ReplyCarriesData : ReplyWithoutData;
}

int intf_dealRcvFrame(QByteArray &reply, QString &errorText)
{
    if (driver.sendFrames.isEmpty()) {
        errorText.clear();
        return NoRequestPending;
    }
    const CacheScope scope;
    const int received = static_cast<int>(reply.size());
    writeErrorText(errorText, driver.sendFrames.constFirst().var, received);
    // Reading through a const array keeps it shared; the check does not write.
    const auto *bytes = reinterpret_cast<const unsigned char *>(reply.constData());
    switch (check_rcv_data(const_cast<unsigned char *>(bytes), received)) {
    case ReplyCarriesData:
        return acceptRead(reply);
    case ReplyWithoutData:
        return acceptEcho();
    default:
        return countFailure();
    }
}
