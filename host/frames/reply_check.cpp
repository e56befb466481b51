// SPDX-License-Identifier: MIT
// Whether a reply answers its request, looked at more closely than the driver does.
#include "host/frames/reply_check.h"

#include "host/frames/frame_finder.h"
#include "host/frames/modbus_frame.h"

#include <algorithm>

namespace dx4::host {
namespace {

constexpr int lastHopelessException = 3;

bool isException(const FRAME_PRO &request, const QByteArray &reply)
{
    return reply.size() == exceptionLength
        && byteAt(reply, functionByte) == (request.frame[functionByte] | exceptionBit);
}

ReplyCause checkPayload(const FRAME_PRO &request, const QByteArray &reply)
{
    if (byteAt(reply, functionByte) != request.frame[functionByte])
        return ReplyCause::WrongFunction;
    if (request.frame[functionByte] == ReadHoldingRegisters) {
        const int announced = static_cast<int>(byteAt(reply, byteCountByte));
        const bool fits =
            announced == request.replyDataLength && reply.size() == request.replyLength;
        return fits ? ReplyCause::Good : ReplyCause::WrongByteCount;
    }
    if (reply.size() != request.replyLength)
        return ReplyCause::WrongEcho;
    const bool isEcho = std::equal(request.frame, request.frame + echoedBytes, reply.begin(),
                                   [](unsigned char sent, char received) {
                                       return sent == static_cast<unsigned char>(received);
                                   });
    return isEcho ? ReplyCause::Good : ReplyCause::WrongEcho;
}

} // namespace

bool ReplyVerdict::canRetry() const
{
    return cause != ReplyCause::Exception || exceptionCode > lastHopelessException;
}

ReplyVerdict checkReply(const FRAME_PRO &request, const QByteArray &reply)
{
    if (reply.isEmpty())
        return { ReplyCause::Silence, 0 };
    const bool looksRefused = isException(request, reply);
    const bool isShort = reply.size() < request.replyLength && !looksRefused;
    // A short one whose CRC is right is whole: another request's reply, no remainder of ours.
    if (reply.size() < exceptionLength || (isShort && !crcIsRight(reply)))
        return { ReplyCause::Truncated, 0 };
    if (!crcIsRight(reply))
        return { ReplyCause::BadCrc, 0 };
    if (byteAt(reply, stationByte) != request.frame[stationByte])
        return { ReplyCause::ForeignStation, 0 };
    if (looksRefused)
        return { ReplyCause::Exception, static_cast<int>(byteAt(reply, exceptionCodeByte)) };
    return { checkPayload(request, reply), 0 };
}

} // namespace dx4::host
