// SPDX-License-Identifier: MIT
// Replies to a request: right, wrong and absent.
#include "replies.h"

#include "arguments.h"
#include "driver_model.h"
#include "wrap.h"

namespace model {

namespace {

constexpr int longestReply = 70000;

void putCrc(QByteArray &reply)
{
    const int covered = (static_cast<int>(reply.size()) - 2) & 0xFFFF;
    const int crc = crcOf(reinterpret_cast<const unsigned char *>(reply.constData()), covered);
    reply[reply.size() - 2] = static_cast<char>(byteOf(crc, 0));
    reply[reply.size() - 1] = static_cast<char>(byteOf(crc, 1));
}

QByteArray exceptionReply(const FRAME_PRO &request, int code)
{
    QByteArray reply(5, '\0');
    reply[0] = static_cast<char>(request.frame[0]);
    reply[1] = static_cast<char>(request.frame[1] | 0x80);
    reply[2] = static_cast<char>(code);
    putCrc(reply);
    return reply;
}

} // namespace

QByteArray rightReply(ByteSource &source, const FRAME_PRO &request)
{
    if (request.replyLength < 2 || request.replyLength > longestReply)
        return {};
    QByteArray reply = drawValues(source, (request.replyLength + 1) / 2);
    reply.resize(request.replyLength);
    if (reply.size() >= 5 && !source.onceIn(8)) {
        reply[0] = static_cast<char>(request.frame[0]);
        reply[1] = static_cast<char>(request.frame[1]);
        reply[2] = static_cast<char>(byteOf(request.replyDataLength, 0));
    }
    putCrc(reply);
    return reply;
}

QByteArray anyReply(ByteSource &source, const FRAME_PRO &request)
{
    QByteArray reply = rightReply(source, request);
    switch (source.below(16)) {
    case 0:
        return {};
    case 1:
        return exceptionReply(request, source.byte());
    case 2: {
        if (reply.isEmpty())
            return QByteArray(1, '\x01');
        const int position = source.below(static_cast<int>(reply.size()));
        reply[position] = static_cast<char>(reply.at(position) ^ (1 << source.below(8)));
        return reply;
    }
    case 3:
        reply.chop(1 + source.below(3));
        return reply;
    case 4:
        reply.append(static_cast<char>(source.byte()));
        if (reply.size() >= 2)
            putCrc(reply);
        return reply;
    case 5:
        return drawValues(source, source.below(12));
    default:
        return reply;
    }
}

} // namespace model
