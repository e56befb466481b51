// SPDX-License-Identifier: MIT
// CPU time of whole exchanges over a pseudo-terminal: Qt's serial bus client.
#include "driver_link.h"
#include "line_slave.h"
#include "pty_bench.h"

#include <QEventLoop>
#include <QModbusDataUnit>
#include <QModbusReply>
#include <QVariant>

#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
#include <QModbusRtuSerialMaster>
using SerialBusClient = QModbusRtuSerialMaster;
#else
#include <QModbusRtuSerialClient>
using SerialBusClient = QModbusRtuSerialClient;
#endif

namespace {

void readOnce(SerialBusClient &client)
{
    const QModbusDataUnit wanted(QModbusDataUnit::HoldingRegisters, bench::ptyAddress,
                                 bench::ptyRegisters);
    QModbusReply *reply = client.sendReadRequest(wanted, bench::pollStation);
    if (!reply)
        bench::endWith("Qt's client took no request");
    if (!reply->isFinished()) {
        QEventLoop loop;
        QObject::connect(reply, &QModbusReply::finished, &loop, &QEventLoop::quit);
        loop.exec();
    }
    if (reply->error() != QModbusDevice::NoError)
        bench::endWith("Qt's client got no reply over the pseudo-terminal");
    delete reply;
}

} // namespace

void bench::pollBySerialBus(benchmark::State &state)
{
    const LineSlave slave;
    SerialBusClient client;
    client.setConnectionParameter(QModbusDevice::SerialPortNameParameter,
                                  QString::fromStdString(slave.port()));
    client.setConnectionParameter(QModbusDevice::SerialBaudRateParameter, ptySpeed);
    client.setConnectionParameter(QModbusDevice::SerialParityParameter, 0);
    if (!client.connectDevice())
        endWith("Qt's client cannot open the pseudo-terminal");
    for ([[maybe_unused]] auto step : state)
        readOnce(client);
    client.disconnectDevice();
}
