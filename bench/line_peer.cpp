// SPDX-License-Identifier: MIT
// Shares of a line's time, and libmodbus as the peer that is measured beside the host.
#include "line_peer.h"

#include "wire/register_place.h"

#include <modbus.h>

#include <cerrno>
#include <ctime>
#include <memory>
#include <stdexcept>
#include <string>

using namespace dx4::host;

namespace bench {
namespace {

constexpr int requestBytes = 8;
constexpr int replyBytes = 5; // and two a register

double seconds(clockid_t clock)
{
    timespec now {};
    clock_gettime(clock, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

void sleepFor(Duration span)
{
    const auto nanoseconds = std::chrono::nanoseconds(span).count();
    const timespec time { nanoseconds / 1000000000, nanoseconds % 1000000000 };
    clock_nanosleep(CLOCK_MONOTONIC, 0, &time, nullptr);
}

/// Modbus register of a block's first one.
int addressOf(const KEY_ADDRESS &block)
{
    int type = 0;
    while (QLatin1String(dx4::registerTypeRows[type].name) != block.regType)
        ++type;
    return dx4::modbusRegister(static_cast<dx4::RegisterType>(type), block.address);
}

} // namespace

Meter::Meter(const LineSettings &settings, Duration span)
    : m_settings(settings)
    , m_span(span)
{
}

bool Meter::goesOn() const
{
    return m_reads < 1 || m_end - m_start < std::chrono::duration<double>(m_span).count();
}

void Meter::count(int registers)
{
    m_end = seconds(CLOCK_MONOTONIC);
    m_processorEnd = seconds(CLOCK_THREAD_CPUTIME_ID);
    if (++m_reads == 0) {
        m_start = m_end;
        m_processorStart = m_processorEnd;
        return;
    }
    m_wire += m_settings.wireTime(requestBytes) + m_settings.wireTime(replyBytes + 2 * registers);
}

Share Meter::share() const
{
    return { std::chrono::duration<double>(m_wire).count() / (m_end - m_start),
             1e6 * (m_processorEnd - m_processorStart) / m_reads };
}

Share shareOfPeer(const LineSettings &settings, const Plan &plan, Duration span)
{
    const std::unique_ptr<modbus_t, void (*)(modbus_t *)> client(
        modbus_new_rtu(qPrintable(settings.port), settings.speed, 'N', 8, settings.stopBits),
        modbus_free);
    if (!client || modbus_connect(client.get()) != 0)
        throw std::runtime_error("libmodbus cannot open the line");
    uint16_t values[MODBUS_MAX_READ_REGISTERS];
    Meter meter(settings, span);
    for (int next = 0; meter.goesOn(); next = (next + 1) % plan.blocks.size()) {
        const KEY_ADDRESS &block = plan.blocks.at(next);
        modbus_set_slave(client.get(), block.station);
        sleepFor(settings.silentGap());
        const int count =
            modbus_read_registers(client.get(), addressOf(block), block.count, values);
        if (count != block.count)
            throw std::runtime_error(std::string("libmodbus: ") + modbus_strerror(errno));
        meter.count(block.count);
    }
    modbus_close(client.get());
    return meter.share();
}

} // namespace bench
