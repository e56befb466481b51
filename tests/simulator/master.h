// SPDX-License-Identifier: MIT
// A Modbus master that is not ours.
#pragma once

#include <modbus/modbus.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <string>

/// A libmodbus master with the device open.
class Master {
public:
    explicit Master(const std::string &device, int station = 1)
        : m_context(modbus_new_rtu(device.c_str(), 9600, 'N', 8, 1))
    {
        modbus_set_slave(m_context, station);
        modbus_set_response_timeout(m_context, 5, 0);
        connected = modbus_connect(m_context) == 0;
    }
    ~Master()
    {
        modbus_close(m_context);
        modbus_free(m_context);
    }
    Master(const Master &) = delete;
    Master &operator=(const Master &) = delete;

    /// Value of a register; -1 when there is no good reply, and the error number in `error`.
    int read(int address)
    {
        std::uint16_t value = 0;
        error = 0;
        if (modbus_read_registers(m_context, address, 1, &value) == 1)
            return value;
        error = errno;
        return -1;
    }

    bool write(int address, int value)
    {
        return modbus_write_register(m_context, address, static_cast<std::uint16_t>(value)) == 1;
    }

    bool writeTwo(int address, std::array<std::uint16_t, 2> values)
    {
        return modbus_write_registers(m_context, address, 2, values.data()) == 2;
    }

    void setTimeoutMs(unsigned milliseconds)
    {
        modbus_set_response_timeout(m_context, 0, milliseconds * 1000);
    }

    bool connected = false;
    int error = 0;

private:
    modbus_t *m_context;
};
