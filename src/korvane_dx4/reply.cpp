// SPDX-License-Identifier: MIT
// What came back: stored, confirmed, tried again or given up.
#include "korvane_dx4/reply.h"

#include "driver_api.h"
#include "frames/frame_queue.h"
#include "frames/reply_bytes.h"
#include "frames/request_frame.h"
#include "korvane_dx4/call_watch.h"
#include "korvane_dx4/change_report.h"
#include "korvane_dx4/cycle_end.h"
#include "korvane_dx4/data_areas.h"
#include "korvane_dx4/error_text.h"
#include "korvane_dx4/recipe.h"
#include "korvane_dx4/writes.h"
#include "wire/byte_order.h"
#include "wire/crc16.h"
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

// The registers of a reply, for as long as the host may do with the reply what it likes.
class Answers {
public:
    Answers(const QByteArray &reply, const ReadRequest &request)
        : m_reply(reply)
        , m_offset(request.dataOffset)
        , m_inside(m_offset < 0 ? 0 : (static_cast<int>(reply.size()) - m_offset) / 2)
        , m_first(reinterpret_cast<const unsigned char *>(m_reply.constData()) + m_offset)
    {
    }

    /// Register i of the request, 0 to 65535; bytes behind the end of the reply are 0.
    int operator[](int i) const
    {
        return i < m_inside ? wordOf(m_first[2 * i + 1], m_first[2 * i])
                            : replyRegister(m_reply, wrapAdd(m_offset, wrapMul(2, i)));
    }

private:
    const QByteArray m_reply;
    int m_offset;
    int m_inside; // registers that are there as a whole
    const unsigned char *m_first;
};

void storeChange(_DATA_ &area, int value)
{
    const bool endsPendingWrite = area.writePending != 0 && area.word1 == 0;
    if (endsPendingWrite)
        area.writePending = 0;
    area.value[0] = lowByte(value);
    area.value[1] = highByte(value);
}

// Each register is stored and reported before the next is looked for: a callback that reads ahead
// sees old values, and one that edits the list is followed.
void storeRegisters(const ReadRequest &request, const QByteArray &reply)
{
    const RegisterRange &range = request.range;
    const Answers answers(reply, request);
    ChangeReport changes(range.station, REG_LIST[range.type]);
    visitRecords(range, [&](int i, int position, const _DATA_ &area) {
        const int before = wordOf(area.value[0], area.value[1]);
        const int value = answers[i];
        if (before == value && area.flag0 == 0)
            return Visited::Untouched;
        _DATA_ &edited = dataAreaIndex.edit(position);
        edited.flag0 = 0;
        if (before != value) {
            storeChange(edited, value);
            changes.report(edited, wrapAdd(range.address, i), before, value);
        }
        return Visited::ListTouched;
    });
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
    visitRecords(range, [](int, int position, const _DATA_ &area) {
        if (area.flag0 == 1)
            return Visited::Untouched;
        dataAreaIndex.edit(position).flag0 = 1;
        return Visited::ListTouched;
    });
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
    [[maybe_unused]] const CallWatch watch("intf_dealRcvFrame");
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
