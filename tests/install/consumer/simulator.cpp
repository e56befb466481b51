// SPDX-License-Identifier: MIT
// The installed inverter answers one request, without a line and without Qt.
#include <simulator/bus.h>

#include <cstdio>

int main()
{
    dx4::sim::Bus bus;
    bus.add(3);
    // Status word of station 3.
    const dx4::sim::Bytes reply =
        bus.deliver({ 0x03, 0x03, 0x20, 0x00, 0x00, 0x01, 0x8E, 0x28 }, {});
    std::printf("%zu bytes\n", reply.size());
    return reply.size() == 7 ? 0 : 1;
}
