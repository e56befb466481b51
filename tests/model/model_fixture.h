// SPDX-License-Identifier: MIT
// A model with a host's memory around it, for tests of the model alone.
#pragma once

#include "driver_model.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using model::DriverModel;

inline QString latin(const char *text)
{
    return QString::fromLatin1(text);
}

inline QByteArray fromHex(const char *hex)
{
    return QByteArray::fromHex(QByteArray(hex));
}

inline QByteArray withCrc(const char *hex)
{
    QByteArray bytes = fromHex(hex);
    const int crc = model::crcOf(reinterpret_cast<const unsigned char *>(bytes.constData()),
                                 static_cast<int>(bytes.size()));
    bytes.append(static_cast<char>(crc & 0xFF));
    bytes.append(static_cast<char>(crc >> 8));
    return bytes;
}

inline KEY_ADDRESS key(int station, const char *type, int address, int count)
{
    KEY_ADDRESS made;
    made.station = station;
    made.regType = latin(type);
    made.address = address;
    made.count = count;
    return made;
}

class Model : public ::testing::Test {
protected:
    Model()
        : block(60117, 0)
        , recipe(64, 0)
    {
        init("1#0#0#3#16");
        dx4.setAddrValueChangeCallBack([this](int linkId, int station, QString &name, int address) {
            calls.push_back(std::to_string(linkId) + ' ' + std::to_string(station) + ' '
                            + name.toStdString() + ' ' + std::to_string(address));
        });
    }

    void init(const char *text)
    {
        int result = -1;
        dx4.initProperty(block.data(), 0, recipe.data(), &result, text, &mutex);
    }

    void poll(std::initializer_list<KEY_ADDRESS> keys)
    {
        QList<KEY_ADDRESS> list(keys);
        dx4.addrMerge(list);
    }

    std::string next()
    {
        FRAME_PRO frame;
        if (dx4.getSendFrame(frame) != 1)
            return "nothing";
        return QByteArray(reinterpret_cast<const char *>(frame.frame), frame.sendLength)
            .toHex()
            .toStdString();
    }

    int reply(QByteArray bytes) { return dx4.dealRcvFrame(bytes, errorText); }

    void write(const char *type, int address, std::vector<unsigned char> data)
    {
        dx4.setData(1, latin(type), address, static_cast<int>(data.size()) / 2, data.data(), 0);
    }

    std::string value(const char *type, int address)
    {
        unsigned char bytes[2] = {};
        dx4.getData(1, latin(type), address, 1, bytes);
        return QByteArray(reinterpret_cast<const char *>(bytes), 2).toHex().toStdString();
    }

    std::vector<unsigned char> block;
    std::vector<unsigned short> recipe;
    QMutex mutex;
    DriverModel dx4;
    QString errorText;
    std::vector<std::string> calls;
};

using Calls = std::vector<std::string>;
