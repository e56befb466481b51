// SPDX-License-Identifier: MIT
// A page of ports and configuration on a machine that a test makes up.
#include "made_up_connect.h"

using namespace dx4;
using namespace dx4::host;

namespace {

panel::CheckedConfig plant(const Config &config)
{
    panel::CheckedConfig plant;
    plant.file = QStringLiteral("/etc/plant.toml");
    plant.config = config;
    plant.config.line.port = QStringLiteral("/dev/ttyUSB0");
    for (const StationConfig &station : config.stations) {
        plant.plan.blocks.append(wanted(station.address, QStringLiteral("D"), 0, 8));
        plant.plan.blocks.append(wanted(station.address, QStringLiteral("SW"), 0, 1));
        plant.plan.wantedRegisters += 9;
    }
    return plant;
}

QVector<PortInfo> twoPorts()
{
    PortInfo adapter;
    adapter.device = QStringLiteral("/dev/ttyUSB0");
    adapter.lastingName =
        QStringLiteral("/dev/serial/by-id/usb-Maker_RS485_adapter_A50285BI-if00-port0");
    adapter.holders = { { 812, QStringLiteral("dx4-panel"), false } };
    PortInfo built;
    built.device = QStringLiteral("/dev/ttyS0");
    return { adapter, built };
}

} // namespace

MadeUpConnect::MadeUpConnect(QSize size)
    : panel(3, size)
    , next(plant(panel.made.config))
    , view({ [this](const QString &) {
                ++looks;
                return twoPorts();
            },
             [this](const QString &file) {
                 panel::CheckedConfig checked = next;
                 checked.file = file;
                 return checked;
             },
             [](const QString &folder) {
                 return QStringList { folder + QStringLiteral("/plant.toml"),
                                      folder + QStringLiteral("/other.toml") };
             },
             [this](const Config &config, const Plan &) { reloaded.push_back(config); } },
           next, panel.made.clock())
    , page(new panel::ConnectPage(view))
{
    panel.window.addPage(page, QStringLiteral("Connect"));
    panel.window.openPage(panel.window.pageCount() - 1);
    view.finish();
}

void MadeUpConnect::show()
{
    panel.show();
}
