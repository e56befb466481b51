// SPDX-License-Identifier: MIT
// Steps of the cycle that many black-box tests share: merge, queue, serve, answer, look inside.
#include "cycle_fixture.h"

#include <utility>

namespace {

std::string describe(int station, const QString &type, int address, int count)
{
    return std::to_string(station) + ' ' + type.toStdString() + ' ' + std::to_string(address) + ' '
        + std::to_string(count);
}

template <typename List> std::string describeAll(const List &list)
{
    std::string all;
    for (const auto &entry : list) {
        if (!all.empty())
            all += "; ";
        all += describe(entry.station, entry.regType, entry.address, entry.count);
    }
    return all;
}

bool hasKey(const _DATA_ &data, int station, const QString &type, int address)
{
    return data.station == station && data.regType == type && data.address == address;
}

std::string payloadOfZeros(const FRAME_PRO &frame)
{
    std::string payload;
    for (int i = 0; i < frame.replyLength - 2; ++i)
        payload += "00 ";
    return payload;
}

} // namespace

int CycleFixture::merge(std::initializer_list<KEY_ADDRESS> addresses)
{
    merged = QList<KEY_ADDRESS>(addresses);
    return dx4.addrMerge(merged);
}

int CycleFixture::readOnce(int station, const char *type, int address, int count, int subAddress,
                           int varKind)
{
    return dx4.addConditionRead(keyAddress(station, type, address, count, subAddress), varKind);
}

std::string CycleFixture::serve()
{
    if (nextFrame().empty())
        return {};
    const std::string served = std::to_string(state.phase) + ' ' + text(frame.var);
    replyWithCrc(payloadOfZeros(frame));
    return served;
}

std::vector<std::string> CycleFixture::serveTimes(int times)
{
    std::vector<std::string> served;
    for (int i = 0; i < times; ++i)
        served.push_back(serve());
    return served;
}

int CycleFixture::answer(const std::vector<int> &values)
{
    std::vector<unsigned char> bytes { 0x01, 0x03, static_cast<unsigned char>(values.size() * 2) };
    for (int value : values) {
        bytes.push_back(static_cast<unsigned char>((value >> 8) & 0xFF));
        bytes.push_back(static_cast<unsigned char>(value & 0xFF));
    }
    return replyWithCrc(toHex(bytes.data(), static_cast<int>(bytes.size())));
}

int CycleFixture::echo()
{
    return replyWithCrc("01 06 F0 00 00 00");
}

int CycleFixture::silence()
{
    return reply("");
}

_DATA_ &CycleFixture::record(int station, const char *type, int address)
{
    const QString name = QString::fromLatin1(type);
    for (int i = 0; i < static_cast<int>(state.dataAreas.size()); ++i) {
        if (hasKey(state.dataAreas.at(i), station, name, address))
            return state.dataAreas[i];
    }
    _DATA_ data;
    data.station = station;
    data.regType = name;
    data.address = address;
    state.dataAreas.append(data);
    return state.dataAreas.last();
}

bool CycleFixture::isCached(int station, const char *type, int address) const
{
    const QString name = QString::fromLatin1(type);
    for (const _DATA_ &data : std::as_const(state.dataAreas)) {
        if (hasKey(data, station, name, address))
            return true;
    }
    return false;
}

std::string CycleFixture::cacheKeys() const
{
    std::string keys;
    for (const _DATA_ &data : std::as_const(state.dataAreas)) {
        if (!keys.empty())
            keys += "; ";
        keys += std::to_string(data.station) + ' ' + data.regType.toStdString() + ' '
            + std::to_string(data.address);
    }
    return keys;
}

VARIABLE variable(int station, const char *type, int address, int count, int varKind)
{
    VARIABLE var;
    var.varKind = varKind;
    var.station = station;
    var.regType = QString::fromLatin1(type);
    var.address = address;
    var.count = count;
    return var;
}

std::string text(const VARIABLE &var)
{
    return describe(var.station, var.regType, var.address, var.count);
}

std::string text(const QList<VARIABLE> &list)
{
    return describeAll(list);
}

std::string text(const QList<KEY_ADDRESS> &list)
{
    return describeAll(list);
}
