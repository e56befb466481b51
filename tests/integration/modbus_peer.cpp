// SPDX-License-Identifier: MIT
// A Modbus RTU slave made of libmodbus, on the far end of a pseudo-terminal.
#include "modbus_peer.h"

#include "driver_fixture.h"

#include <modbus.h>

#include <poll.h>
#include <pty.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <stdexcept>

namespace {

constexpr int firstRegister = 0x1000;
constexpr int registerCount = 0xF000;

} // namespace

ModbusPeer::ModbusPeer(int station)
    // The device named here is never opened: libmodbus is given the terminal's far end.
    : m_modbus(modbus_new_rtu("/dev/null", 9600, 'N', 8, 1))
    , m_registers(modbus_mapping_new_start_address(0, 0, 0, 0, firstRegister, registerCount, 0, 0))
{
    openTerminal();
    modbus_set_slave(m_modbus, station);
    modbus_set_socket(m_modbus, m_far);
    m_thread = std::thread([this] { serve(); });
}

ModbusPeer::~ModbusPeer()
{
    hangUp();
    modbus_mapping_free(m_registers);
    modbus_free(m_modbus);
    ::close(m_stop[0]);
    ::close(m_stop[1]);
}

void ModbusPeer::openTerminal()
{
    std::array<char, 64> name {};
    termios raw {};
    cfmakeraw(&raw);
    if (openpty(&m_far, &m_near, name.data(), &raw, nullptr) != 0 || pipe(m_stop) != 0)
        throw std::runtime_error("no pseudo-terminal");
    m_device = name.data();
}

void ModbusPeer::hangUp()
{
    if (!m_thread.joinable())
        return;
    const char byte = 0;
    if (write(m_stop[1], &byte, 1) != 1)
        std::terminate();
    m_thread.join();
    ::close(m_near);
    ::close(m_far);
}

void ModbusPeer::serve()
{
    std::array<unsigned char, MODBUS_RTU_MAX_ADU_LENGTH> request {};
    for (;;) {
        std::array<pollfd, 2> watched { { { m_far, POLLIN, 0 }, { m_stop[0], POLLIN, 0 } } };
        poll(watched.data(), watched.size(), -1);
        if (watched[1].revents)
            return;
        const int length = modbus_receive(m_modbus, request.data());
        if (length > 0)
            answer(request.data(), length);
    }
}

void ModbusPeer::answer(const unsigned char *request, int length)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_requests.push_back(toHex(request, length));
    if (m_silent > 0) {
        --m_silent;
    } else if (m_refused > 0) {
        --m_refused;
        modbus_reply_exception(m_modbus, request, static_cast<unsigned>(m_exceptionCode));
    } else {
        modbus_reply(m_modbus, request, length, m_registers);
    }
}

void ModbusPeer::setRegister(int address, int value)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_registers->tab_registers[address - firstRegister] = static_cast<uint16_t>(value);
}

int ModbusPeer::registerValue(int address)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_registers->tab_registers[address - firstRegister];
}

void ModbusPeer::staySilent(int count)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_silent = count;
}

void ModbusPeer::refuse(int count, int exceptionCode)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_refused = count;
    m_exceptionCode = exceptionCode;
}

std::vector<std::string> ModbusPeer::requests()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_requests;
}
