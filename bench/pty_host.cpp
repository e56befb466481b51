// SPDX-License-Identifier: MIT
// CPU time of whole exchanges over a pseudo-terminal: the reference host and the driver.
#include "driver_link.h"
#include "host/exchange/cycle.h"
#include "host/line/serial_line.h"
#include "line_slave.h"
#include "pty_bench.h"

using namespace dx4::host;

void bench::pollByHost(benchmark::State &state)
{
    const LineSlave slave;
    LineSettings settings;
    settings.port = QString::fromStdString(slave.port());
    settings.speed = ptySpeed;
    SerialLine line(settings);
    QString error;
    if (!line.open(&error))
        endWith(qPrintable(error));
    Link link(Plugin::load(QString::fromLocal8Bit(KORVANE_PLUGIN_FILE),
                           Plugin::Instance::PrivateCopy, &error),
              LinkSettings());
    link.poll({ wantedAddress(pollStation, pollType, 0, ptyRegisters) });
    LineExchange exchange(line);
    Cycle cycle(link, exchange);
    for ([[maybe_unused]] auto step : state) {
        if (cycle.step() != Cycle::Step::Served)
            endWith("the host got no reply over the pseudo-terminal");
    }
}
