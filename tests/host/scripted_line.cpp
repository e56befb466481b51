// SPDX-License-Identifier: MIT
// A line in memory with stations of plain registers behind it, whose replies can be replaced.
#include "scripted_line.h"

#include "driver_fixture.h"

using dx4::host::Duration;
using dx4::host::MemoryLine;

namespace {

int byteAt(const QByteArray &bytes, int position)
{
    return static_cast<unsigned char>(bytes.at(position));
}

int wordAt(const QByteArray &bytes, int position)
{
    return byteAt(bytes, position) * 256 + byteAt(bytes, position + 1);
}

QByteArray withCrcBehind(const QByteArray &payload)
{
    std::vector<unsigned char> bytes(payload.begin(), payload.end());
    QByteArray frame;
    for (unsigned char byte : withCrc(bytes))
        frame.append(static_cast<char>(byte));
    return frame;
}

/// Exception 2: no such register.
QByteArray exceptionTo(const QByteArray &request)
{
    QByteArray reply = request.left(1);
    reply.append(static_cast<char>(byteAt(request, 1) | 0x80));
    reply.append('\2');
    return withCrcBehind(reply);
}

} // namespace

QByteArray framed(const std::string &hex)
{
    QByteArray payload;
    for (unsigned char byte : fromHex(hex))
        payload.append(static_cast<char>(byte));
    return withCrcBehind(payload);
}

QByteArray renewedCrc(QByteArray frame)
{
    frame.chop(2);
    return withCrcBehind(frame);
}

ScriptedLine::ScriptedLine(const dx4::host::LineSettings &settings)
    : line(
        [this](const QByteArray &request) {
            MemoryLine::Answer heard;
            if (dead.count(byteAt(request, 0)) == 0)
                heard = { answer(request), slow[byteAt(request, 0)] };
            if (!changes.empty()) {
                heard = changes.front()(heard.bytes);
                changes.pop_front();
            }
            if (echoes)
                heard.bytes = request + heard.bytes;
            return heard;
        },
        settings)
{
}

QByteArray ScriptedLine::answer(const QByteArray &request)
{
    const int station = byteAt(request, 0);
    const int first = wordAt(request, 2);
    const int count = byteAt(request, 1) == 6 ? 1 : wordAt(request, 4);
    for (int i = 0; i < count; ++i) {
        if (refused.count({ station, first + i }) != 0)
            return exceptionTo(request);
    }
    if (byteAt(request, 1) == 6)
        registers[{ station, first }] = wordAt(request, 4);
    if (byteAt(request, 1) == 16) {
        for (int i = 0; i < count; ++i)
            registers[{ station, first + i }] = wordAt(request, 7 + 2 * i);
    }
    if (byteAt(request, 1) != 3)
        return withCrcBehind(request.left(6));
    QByteArray reply = request.left(2);
    reply.append(static_cast<char>(2 * count));
    for (int i = 0; i < count; ++i) {
        const int value = registers[{ station, first + i }];
        reply.append(static_cast<char>(value >> 8));
        reply.append(static_cast<char>(value & 0xFF));
    }
    return withCrcBehind(reply);
}

ScriptedLine::Change silence()
{
    return [](const QByteArray &) { return MemoryLine::Answer {}; };
}

ScriptedLine::Change instead(const QByteArray &bytes)
{
    return [bytes](const QByteArray &) { return MemoryLine::Answer { bytes, Duration { 0 } }; };
}

ScriptedLine::Change late(Duration delay)
{
    return [delay](const QByteArray &reply) { return MemoryLine::Answer { reply, delay }; };
}
