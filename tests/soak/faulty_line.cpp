// SPDX-License-Identifier: MIT
// A slave in memory behind a line on which anything can go wrong.
#include "faulty_line.h"

#include "driver_fixture.h"

namespace {

QByteArray sealed(const QByteArray &payload)
{
    const std::vector<unsigned char> bytes = withCrc({ payload.begin(), payload.end() });
    return { reinterpret_cast<const char *>(bytes.data()), static_cast<int>(bytes.size()) };
}

void appendWord(QByteArray &bytes, int word)
{
    bytes.append(static_cast<char>(word / 256));
    bytes.append(static_cast<char>(word % 256));
}

int wordAt(const unsigned char *bytes, int position)
{
    return bytes[position] * 256 + bytes[position + 1];
}

} // namespace

bool hasRightCrc(const QByteArray &bytes)
{
    return bytes.size() >= 2 && sealed(bytes.left(bytes.size() - 2)) == bytes;
}

Exchange FaultyLine::carry(const FRAME_PRO &frame, int percent)
{
    Exchange exchange;
    if (below(100) < percent)
        exchange.fault = static_cast<Fault>(1 + below(faultKinds - 1));
    if (exchange.fault == Fault::RequestLost)
        return exchange;
    exchange.right = answer(frame);
    exchange.received = spoil(exchange.fault, exchange.right);
    m_previous = exchange.right;
    return exchange;
}

void FaultyLine::moveOn()
{
    const int moving = below(3);
    for (int i = 0; i < moving; ++i)
        m_registers[{ 1 + below(2), 0xD000 + below(32) }] = below(0x10000);
}

QByteArray FaultyLine::answer(const FRAME_PRO &frame)
{
    const unsigned char *request = frame.frame;
    const int station = request[0];
    const int first = wordAt(request, 2);
    if (request[1] == 3)
        return answerRead(station, first, wordAt(request, 4));
    if (request[1] == 6)
        m_registers[{ station, first }] = wordAt(request, 4);
    for (int i = 0; request[1] == 16 && i < wordAt(request, 4); ++i)
        m_registers[{ station, first + i }] = wordAt(request, 7 + 2 * i);
    return sealed(QByteArray(reinterpret_cast<const char *>(request), 6));
}

QByteArray FaultyLine::answerRead(int station, int first, int count)
{
    QByteArray payload;
    payload.append(static_cast<char>(station));
    payload.append('\x03');
    payload.append(static_cast<char>(2 * count));
    for (int i = 0; i < count; ++i)
        appendWord(payload, m_registers[{ station, first + i }]);
    return sealed(payload);
}

QByteArray FaultyLine::spoil(Fault fault, const QByteArray &right)
{
    QByteArray received(right.constData(), right.size());
    const int size = static_cast<int>(right.size());
    switch (fault) {
    case Fault::None:
        return received;
    case Fault::RequestLost:
    case Fault::ReplyLost:
        return {};
    case Fault::BitsFlipped:
        for (int flips = 1 + below(12); flips > 0; --flips) {
            const int position = below(size);
            received[position] = static_cast<char>(received.at(position) ^ (1 << below(8)));
        }
        return received;
    case Fault::Truncated:
        return received.left(below(size));
    case Fault::Extended:
        return below(2) ? received + randomBytes(1 + below(5))
                        : randomBytes(1 + below(5)) + received;
    case Fault::Junk:
        return randomBytes(below(2) ? size : below(40));
    case Fault::Exception:
        received.resize(2);
        received[1] = static_cast<char>(received.at(1) | 0x80);
        return sealed(received + static_cast<char>(1 + below(11)));
    case Fault::ForeignStation:
        received.resize(size - 2);
        received[0] = static_cast<char>(received.at(0) + 1 + below(200));
        return sealed(received);
    case Fault::LateReply:
        return m_previous;
    }
    return received;
}

QByteArray FaultyLine::randomBytes(int count)
{
    QByteArray bytes(count, '\0');
    for (char &byte : bytes)
        byte = static_cast<char>(below(256));
    return bytes;
}
