// SPDX-License-Identifier: MIT
// What is polled: a cache of registers, some blocks of it read in turn, and the replies to them.
#include "poll.h"

#include <algorithm>
#include <random>

namespace bench {
namespace {

constexpr char readFunction = 3;
constexpr unsigned shuffleSeed = 1;

QByteArray replyWith(int block, int registers, char mark)
{
    QByteArray reply;
    reply.append(static_cast<char>(pollStation));
    reply.append(readFunction);
    reply.append(static_cast<char>(2 * registers));
    for (int i = 0; i < registers; ++i) {
        reply.append(static_cast<char>((block + i) % 100));
        reply.append(mark);
    }
    return withCrc(reply);
}

} // namespace

// On the heap, as a name that a host took from its project file.
const QString pollType = QString(QLatin1String("D"));

const char *orderName(Order order)
{
    switch (order) {
    case Order::Ascending:
        return "ascending";
    case Order::Descending:
        return "descending";
    case Order::Shuffled:
        return "shuffled";
    case Order::Interleaved:
        return "interleaved";
    }
    return "";
}

std::vector<NamedRegister> Poll::named() const
{
    const int stations = order == Order::Interleaved ? 4 : 1;
    std::vector<NamedRegister> list;
    for (int address = 0; address < cache; ++address) {
        for (int station = 0; station < stations; ++station)
            list.push_back({ pollStation + station, address });
    }
    if (order == Order::Descending)
        std::reverse(list.begin(), list.end());
    if (order == Order::Shuffled)
        std::shuffle(list.begin(), list.end(), std::mt19937(shuffleSeed));
    return list;
}

QList<KEY_ADDRESS> Poll::wanted() const
{
    QList<KEY_ADDRESS> list;
    for (int block = 0; block < blocks; ++block)
        list.append(wantedAddress(pollStation, pollType, address(block), perBlock));
    return list;
}

std::vector<QByteArray> Poll::replies() const
{
    std::vector<QByteArray> list;
    for (char mark = 1; mark <= (changes ? 2 : 1); ++mark) {
        for (int block = 0; block < blocks; ++block)
            list.push_back(replyWith(block, perBlock, mark));
    }
    return list;
}

Poll pollTwoBlocks(int cache, int perBlock, bool changes)
{
    return { cache, perBlock, 2, changes };
}

Poll pollThrough(int cache, int perBlock)
{
    return { cache, perBlock, cache / perBlock, false };
}

// Bit by bit, so that it owes nothing to any of the measured ways.
QByteArray withCrc(QByteArray bytes)
{
    unsigned crc = 0xFFFF;
    for (const char byte : bytes) {
        crc ^= static_cast<unsigned char>(byte);
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc & 1U) ? (crc >> 1) ^ 0xA001U : crc >> 1;
    }
    bytes.append(static_cast<char>(crc & 0xFF));
    bytes.append(static_cast<char>(crc >> 8));
    return bytes;
}

KEY_ADDRESS wantedAddress(int station, const QString &regType, int address, int count)
{
    KEY_ADDRESS key;
    key.station = station;
    key.regType = regType;
    key.address = address;
    key.count = count;
    return key;
}

} // namespace bench
