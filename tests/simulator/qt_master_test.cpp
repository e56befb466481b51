// SPDX-License-Identifier: MIT
// Qt's own Modbus master polls the simulator.
#include "served_line.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QModbusDataUnit>
#include <QModbusReply>
#include <QVariant>

#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
#include <QModbusRtuSerialClient>
using QtMaster = QModbusRtuSerialClient;
#else
#include <QModbusRtuSerialMaster>
using QtMaster = QModbusRtuSerialMaster;
#endif

#include <gtest/gtest.h>

#include <memory>

namespace {

class QtMasterPolls : public ::testing::Test {
protected:
    void SetUp() override
    {
        const QString device = QString::fromStdString(line.device);
        master.setConnectionParameter(QModbusDevice::SerialPortNameParameter, device);
        master.setConnectionParameter(QModbusDevice::SerialBaudRateParameter, 9600);
        master.setConnectionParameter(QModbusDevice::SerialParityParameter, 0);
        master.setTimeout(5000);
        master.setNumberOfRetries(0);
        ASSERT_TRUE(master.connectDevice()) << master.errorString().toStdString();
    }

    /// Waits for the end of a request.
    static std::unique_ptr<QModbusReply> finished(QModbusReply *reply)
    {
        QEventLoop loop;
        QObject::connect(reply, &QModbusReply::finished, &loop, &QEventLoop::quit);
        if (!reply->isFinished())
            loop.exec();
        return std::unique_ptr<QModbusReply>(reply);
    }

    std::unique_ptr<QModbusReply> read(int address, quint16 count)
    {
        return finished(master.sendReadRequest(unit(address, count), 1));
    }

    std::unique_ptr<QModbusReply> write(int address, const QVector<quint16> &values)
    {
        return finished(master.sendWriteRequest(
            QModbusDataUnit(QModbusDataUnit::HoldingRegisters, address, values), 1));
    }

    static QModbusDataUnit unit(int address, quint16 count)
    {
        return QModbusDataUnit(QModbusDataUnit::HoldingRegisters, address, count);
    }

    ServedLine line;
    QtMaster master;
};

} // namespace

TEST_F(QtMasterPolls, WhatItWroteBefore)
{
    const auto written = write(0xFC00, { 11, 22, 33 });
    const auto result = read(0xFC00, 3);

    ASSERT_EQ(written->error(), QModbusDevice::NoError) << written->errorString().toStdString();
    ASSERT_EQ(result->error(), QModbusDevice::NoError) << result->errorString().toStdString();
    EXPECT_EQ(result->result().values(), QVector<quint16>({ 11, 22, 33 }));
}

TEST_F(QtMasterPolls, MonitorsAndStatus)
{
    const auto command = write(0x1002, { 3000 });
    const auto monitors = read(0xD000, 5);
    const auto status = read(0x2000, 2);

    EXPECT_EQ(command->error(), QModbusDevice::NoError);
    EXPECT_EQ(monitors->result().values(), QVector<quint16>({ 0, 3000, 0, 0, 566 }));
    EXPECT_EQ(status->result().values(), QVector<quint16>({ 1, 0 }));
}

TEST_F(QtMasterPolls, AndUnderstandsARefusal)
{
    const auto refused = read(0x1001, 1);

    EXPECT_EQ(refused->error(), QModbusDevice::ProtocolError);
    EXPECT_EQ(refused->rawResult().data().toHex().toStdString(), "02");
}

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
