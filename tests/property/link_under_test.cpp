// SPDX-License-Identifier: MIT
// The linked driver on a fresh link, with the memory of a host around it.
#include "link_under_test.h"

#include "pair.h"
#include "wrap.h"

using model::byteOf;

LinkUnderTest::LinkUnderTest(int blockSize, int retryLimit)
    : block(60117, 0)
    , recipe(64, 0)
{
    model::makeFresh(driver);
    const QByteArray text =
        "1#0#0#" + QByteArray::number(retryLimit) + '#' + QByteArray::number(blockSize);
    intf_initProperty(block.data(), 0, recipe.data(), nullptr, text.constData(), &mutex);
}

LinkUnderTest::~LinkUnderTest()
{
    model::makeFresh(driver);
}

void LinkUnderTest::write(const QString &type, int address, const std::vector<int> &values)
{
    std::vector<unsigned char> data;
    for (int value : values) {
        data.push_back(byteOf(value, 0));
        data.push_back(byteOf(value, 1));
    }
    intf_setData(1, type, address, static_cast<int>(values.size()), data.data(), 0);
}

void LinkUnderTest::readOnce(const QString &type, int address, int count)
{
    intf_addConditionRead(wantedAddress(type, address, count), 0);
}

void LinkUnderTest::poll(const QString &type, int address, int count)
{
    QList<KEY_ADDRESS> wanted { wantedAddress(type, address, count) };
    intf_addrMerge(wanted);
}

std::vector<int> LinkUnderTest::shown(const QString &type, int address, int count)
{
    std::vector<unsigned char> data(2 * static_cast<std::size_t>(count));
    intf_getData(1, type, address, count, data.data());
    std::vector<int> values;
    for (std::size_t i = 0; i < data.size(); i += 2)
        values.push_back(data[i] + 256 * data[i + 1]);
    return values;
}

KEY_ADDRESS wantedAddress(const QString &type, int address, int count)
{
    KEY_ADDRESS key;
    key.station = 1;
    key.regType = type;
    key.address = address;
    key.count = count;
    return key;
}

QByteArray withCrc(QByteArray payload)
{
    const int crc = model::crcOf(reinterpret_cast<const unsigned char *>(payload.constData()),
                                 static_cast<int>(payload.size()));
    payload.append(static_cast<char>(byteOf(crc, 0)));
    payload.append(static_cast<char>(byteOf(crc, 1)));
    return payload;
}
