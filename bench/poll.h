// SPDX-License-Identifier: MIT
// What is polled: a cache of registers, some blocks of it read in turn, and the replies to them.
#pragma once

#include "host_records.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <vector>

namespace bench {

/// Station of all registers of a Poll.
inline constexpr int pollStation = 1;

/// Type of all registers of a Poll.
extern const QString pollType;

/// In which a host first names the registers of a cache.
enum class Order {
    Ascending,
    Descending,
    Shuffled, ///< the same way each time
    Interleaved, ///< one register of each of four stations, then the next
};

/// The name of an order, such as "shuffled".
const char *orderName(Order order);

/// A register of pollType.
struct NamedRegister {
    int station;
    int address;
};

/// One way to poll.
struct Poll {
    int cache; ///< registers in the cache
    int perBlock; ///< registers in one read
    int blocks; ///< blocks read in turn, spread evenly over the cache
    bool changes; ///< whether each read brings other values than the one before
    Order order = Order::Ascending;

    /// First register of a block.
    int address(int block) const { return block * (cache / blocks); }

    /// The registers of the cache in their order, and those of three other stations where stations
    /// are interleaved.
    std::vector<NamedRegister> named() const;

    /// The wanted addresses, one per block.
    QList<KEY_ADDRESS> wanted() const;

    /// Replies in the order of the requests; with `changes` twice as many as there are blocks.
    std::vector<QByteArray> replies() const;
};

/// Two blocks of a cache; the smallest caches hold just these.
Poll pollTwoBlocks(int cache, int perBlock, bool changes);

/// Every register of a cache, block by block.
Poll pollThrough(int cache, int perBlock);

/// `bytes` with the CRC of Modbus RTU behind them.
QByteArray withCrc(QByteArray bytes);

/// An address record.
KEY_ADDRESS wantedAddress(int station, const QString &regType, int address, int count);

} // namespace bench
