// SPDX-License-Identifier: MIT
// CPU time of whole exchanges over a pseudo-terminal: the libmodbus client.
#include "pty_bench.h"

#include "driver_link.h"
#include "line_slave.h"
#include "modbus_peer.h"
#include "samples.h"

#include <modbus.h>

#include <thread>

namespace bench {
namespace {

void pollByModbus(benchmark::State &state)
{
    const LineSlave slave;
    const ModbusClient client(modbus_new_rtu(slave.port().c_str(), ptySpeed, 'N', 8, 1));
    modbus_set_slave(client.get(), pollStation);
    if (modbus_connect(client.get()) != 0)
        endWith("libmodbus cannot open the pseudo-terminal");
    uint16_t values[ptyRegisters];
    for ([[maybe_unused]] auto step : state) {
        // libmodbus leaves the silence between two frames to its caller; the others keep it
        // themselves. Without it the process would never sleep and run from warm caches.
        std::this_thread::sleep_for(ptySilence);
        if (modbus_read_registers(client.get(), ptyAddress, ptyRegisters, values) != ptyRegisters)
            endWith("libmodbus got no reply over the pseudo-terminal");
    }
    modbus_close(client.get());
}

} // namespace

void addPtyBenchmarks()
{
#ifdef KORVANE_BENCH_HOST
    measureProcess("pty/driver", ptyExchanges, pollByHost);
#endif
    measureProcess("pty/libmodbus", ptyExchanges, pollByModbus);
#ifdef KORVANE_BENCH_SERIAL_BUS
    measureProcess("pty/serialbus", ptyExchanges, pollBySerialBus);
#endif
}

} // namespace bench
