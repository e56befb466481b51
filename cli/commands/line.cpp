// SPDX-License-Identifier: MIT
// dx4 line: serial ports, their lasting names, and who holds them.
#include "cli/commands/commands.h"

#include "cli/console/exit_code.h"
#include "cli/console/output.h"
#include "host/line/port_list.h"

#include <QFileInfo>
#include <QJsonArray>

#include <optional>

namespace dx4::cli {
namespace {

struct Options {
    QStringList devices; ///< empty: all
    bool json = false;
};

/// A device that was asked for; pseudo-terminals are in no list of ports.
std::optional<host::PortInfo> named(const QString &name, const QVector<host::PortInfo> &all)
{
    const QString device = host::portDevice(name);
    for (const host::PortInfo &port : all) {
        if (port.device == device)
            return port;
    }
    if (!QFileInfo::exists(device))
        return std::nullopt;
    host::PortInfo port;
    port.device = device;
    port.holders = host::holdersOf(device);
    return port;
}

void printPort(const host::PortInfo &port, bool json)
{
    const auto lineOf = [](const char *layout, const QString &text) {
        return text.isEmpty() ? QString() : filled(layout, text);
    };
    QJsonArray holders;
    for (const host::PortHolder &holder : port.holders)
        holders.append(jsonOf({ { "process", holder.process }, { "program", holder.program } }));
    print(json,
          { { "device", port.device },
            { "lastingName", port.lastingName, lineOf("\n  name  %1", port.lastingName) },
            { "description", port.description, lineOf("\n  is    %1", port.description) },
            { "holders", holders,
              port.holders.isEmpty() ? QStringLiteral("nobody seen")
                                     : host::holderText(port.holders) } },
          "{device}{lastingName}{description}\n  held  by {holders}");
}

int runLine(const Options &options)
{
    QVector<host::PortInfo> ports = host::listPorts();
    if (!options.devices.isEmpty()) {
        const QVector<host::PortInfo> all = ports;
        ports.clear();
        for (const QString &device : options.devices) {
            const auto port = named(device, all);
            if (!port)
                return complain({ ExitLine, filled("no port %1", device) });
            ports.append(*port);
        }
    }
    for (const host::PortInfo &port : std::as_const(ports))
        printPort(port, options.json);
    if (ports.isEmpty())
        note(QStringLiteral("this machine has no serial port"));
    return ExitDone;
}

} // namespace

void describeLine(Command &command)
{
    Options &options = command.action(runLine);
    command.words("device", options.devices, "ports to look at, all where none is named", anyPort,
                  false);
    command.flag("--json", options.json, "print one JSON object per port");
    command.example("dx4 line /dev/ttyUSB0", "its lasting name and its holders");
}

} // namespace dx4::cli
