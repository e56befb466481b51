// SPDX-License-Identifier: MIT
// libmodbus with its line in memory, alone and with one map entry per register.
#include "modbus_peer.h"

#include "driver_link.h"
#include "memory_line.h"
#include "record_table.h"

#include <modbus.h>

namespace bench {
void ModbusDeleter::operator()(modbus_t *client) const
{
    modbus_free(client);
}

ModbusClient memoryClient()
{
    ModbusClient client(modbus_new_rtu("/dev/null", 115200, 'N', 8, 1));
    if (!client)
        endWith("libmodbus gives no client");
    modbus_set_slave(client.get(), pollStation);
    modbus_set_socket(client.get(), memoryLineDescriptor());
    return client;
}

void RegisterMap::fill(const Poll &poll, ValueChangeCallback callback)
{
    m_entries.clear();
    m_callback = callback;
    const int type = typeCode(pollType);
    for (int address = 0; address < poll.cache; ++address)
        m_entries[{ pollStation, type, address }];
    for (int block = 0; block < poll.blocks; ++block) {
        for (int i = 0; i < poll.perBlock; ++i)
            m_entries[{ pollStation, type, poll.address(block) + i }].isMonitored = true;
    }
}

void RegisterMap::store(int station, const QString &regType, int address, const uint16_t *values,
                        int count)
{
    const int type = typeCode(regType);
    for (int i = 0; i < count; ++i) {
        Entry &entry = m_entries[{ station, type, address + i }];
        if (entry.value == values[i])
            continue;
        entry.value = values[i];
        if (!entry.isMonitored)
            continue;
        if (m_name.constData() != regType.constData())
            m_name = regType; // the callback may have spoiled it
        m_callback(1, station, m_name, address + i);
    }
}

int RegisterMap::getData(int station, QString regType, int address, int count,
                         unsigned char *out) const
{
    const int type = typeCode(regType);
    for (int i = 0; i < count; ++i, out += 2) {
        const auto entry = m_entries.find({ station, type, address + i });
        const unsigned value = entry == m_entries.end() ? 0 : entry->second.value;
        out[0] = static_cast<unsigned char>(value);
        out[1] = static_cast<unsigned char>(value >> 8);
    }
    return 1;
}

} // namespace bench
