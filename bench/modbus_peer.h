// SPDX-License-Identifier: MIT
// libmodbus with its line in memory, alone and with one map entry per register.
#pragma once

#include "korvane_dx4.h"
#include "poll.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <unordered_map>
#include <vector>

typedef struct _modbus modbus_t;

namespace bench {

struct ModbusDeleter {
    void operator()(modbus_t *client) const;
};

/// A libmodbus client.
using ModbusClient = std::unique_ptr<modbus_t, ModbusDeleter>;

/// A client whose bytes stay in memory; the reply is set by setMemoryReply.
ModbusClient memoryClient();

/// What a program without a driver keeps beside libmodbus: a hash map with one entry per register.
class RegisterMap {
public:
    /// Holds `cache` registers from 0 on; those of `poll` are monitored.
    void fill(const Poll &poll, ValueChangeCallback callback);

    /// Compares, stores and reports the values of a read.
    void store(int station, const QString &regType, int address, const uint16_t *values, int count);

    /// As intf_getData.
    int getData(int station, QString regType, int address, int count, unsigned char *out) const;

private:
    struct Key {
        int station;
        int type;
        int address;

        bool operator==(const Key &other) const
        {
            return station == other.station && type == other.type && address == other.address;
        }
    };

    // The usual way to combine the hashes of several fields.
    struct KeyHash {
        std::size_t operator()(const Key &key) const
        {
            std::size_t hash = 0;
            for (const int field : { key.station, key.type, key.address })
                hash ^= std::hash<int>()(field) + 0x9E3779B9U + (hash << 6) + (hash >> 2);
            return hash;
        }
    };

    struct Entry {
        uint16_t value = 0;
        bool isMonitored = false;
    };

    std::unordered_map<Key, Entry, KeyHash> m_entries;
    ValueChangeCallback m_callback = nullptr;
    QString m_name; ///< lent to the callback
};

} // namespace bench
