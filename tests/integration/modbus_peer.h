// SPDX-License-Identifier: MIT
// A Modbus RTU slave made of libmodbus, on the far end of a pseudo-terminal.
#pragma once

#include <mutex>
#include <string>
#include <thread>
#include <vector>

struct _modbus;
struct _modbus_mapping_t;

/// Answers for one station in a thread of its own. Holds registers 0x1000 to 0xFFFF, all zero at
/// first; an access below them is answered with exception 2.
class ModbusPeer {
public:
    explicit ModbusPeer(int station);
    ~ModbusPeer();
    ModbusPeer(const ModbusPeer &) = delete;
    ModbusPeer &operator=(const ModbusPeer &) = delete;

    /// Device to open on the near end.
    std::string device() const { return m_device; }

    void setRegister(int address, int value);
    int registerValue(int address);

    /// The next `count` requests get no answer.
    void staySilent(int count);

    /// The next `count` requests get this exception.
    void refuse(int count, int exceptionCode);

    /// Every request received so far, as hex.
    std::vector<std::string> requests();

    /// Closes the far end, as if the adapter was pulled out.
    void hangUp();

private:
    void openTerminal();
    void serve();
    void answer(const unsigned char *request, int length);

    _modbus *m_modbus;
    _modbus_mapping_t *m_registers;
    int m_far = -1;
    int m_near = -1;
    int m_stop[2] = { -1, -1 };
    std::string m_device;
    std::mutex m_mutex; // guards all below and the registers
    int m_silent = 0;
    int m_refused = 0;
    int m_exceptionCode = 0;
    std::vector<std::string> m_requests;
    std::thread m_thread;
};
