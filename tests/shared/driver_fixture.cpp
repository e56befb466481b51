// SPDX-License-Identifier: MIT
// A freshly loaded driver with a host's block, buffer, mutex and callback around it.
#include "driver_fixture.h"

namespace {

DriverFixture *recordingFixture = nullptr;

constexpr char hexDigits[] = "0123456789ABCDEF";

unsigned digitValue(char digit)
{
    if (digit >= '0' && digit <= '9')
        return static_cast<unsigned>(digit - '0');
    return static_cast<unsigned>((digit | 0x20) - 'a' + 10);
}

} // namespace

DriverFixture::DriverFixture()
    : state(*dx4.state)
    , hostBlock(dx4::hostBlockBytes, 0)
    , recipeBuffer(4096, 0)
{
    recordingFixture = this;
}

DriverFixture::~DriverFixture()
{
    recordingFixture = nullptr;
}

void DriverFixture::init(const char *propertyText)
{
    int result = -1;
    dx4.setAddrValueChangeCallBack(&DriverFixture::record);
    dx4.initProperty(hostBlock.data(), 0, recipeBuffer.data(), &result, propertyText, &mutex);
}

void DriverFixture::record(int linkId, int station, QString &name, int address)
{
    if (!recordingFixture)
        return;
    recordingFixture->calls.push_back(std::to_string(linkId) + ' ' + std::to_string(station) + ' '
                                      + name.toStdString() + ' ' + std::to_string(address));
    if (recordingFixture->insideCallback)
        recordingFixture->insideCallback(linkId, station, name, address);
}

std::string DriverFixture::nextFrame()
{
    if (dx4.getSendFrame(frame) != dx4::FrameReady)
        return {};
    return toHex(frame.frame, frame.sendLength);
}

int DriverFixture::reply(const std::string &hex)
{
    const std::vector<unsigned char> bytes = fromHex(hex);
    QByteArray received;
    for (unsigned char byte : bytes)
        received.append(static_cast<char>(byte));
    return dx4.dealRcvFrame(received, errorText);
}

int DriverFixture::replyWithCrc(const std::string &hex)
{
    const std::vector<unsigned char> bytes = withCrc(fromHex(hex));
    return reply(toHex(bytes.data(), static_cast<int>(bytes.size())));
}

std::string DriverFixture::data(int station, const char *type, int address, int count)
{
    std::vector<unsigned char> bytes(static_cast<size_t>(count) * 2, 0xEE);
    dx4.getData(station, QString::fromLatin1(type), address, count, bytes.data());
    return toHex(bytes.data(), static_cast<int>(bytes.size()));
}

void DriverFixture::set(int station, const char *type, int address, const std::vector<int> &values,
                        int varKind)
{
    std::vector<unsigned char> bytes;
    for (int value : values) {
        bytes.push_back(static_cast<unsigned char>(value & 0xFF));
        bytes.push_back(static_cast<unsigned char>((value >> 8) & 0xFF));
    }
    dx4.setData(station, QString::fromLatin1(type), address, static_cast<int>(values.size()),
                bytes.data(), varKind);
}

KEY_ADDRESS keyAddress(int station, const char *type, int address, int count, int subAddress)
{
    KEY_ADDRESS key;
    key.station = station;
    key.regType = QString::fromLatin1(type);
    key.address = address;
    key.count = count;
    key.subAddress = subAddress;
    return key;
}

_RCP_VAR_PRO recipeVar(int linkId, int station, const char *type, int address, int count,
                       int bufferOffset)
{
    _RCP_VAR_PRO recipe;
    recipe.linkId = linkId;
    recipe.station = station;
    recipe.regType = QString::fromLatin1(type);
    recipe.address = address;
    recipe.count = count;
    recipe.bufferOffset = bufferOffset;
    return recipe;
}

std::string toHex(const unsigned char *bytes, int length)
{
    std::string text;
    for (int i = 0; i < length; ++i) {
        if (i)
            text += ' ';
        text += hexDigits[bytes[i] >> 4];
        text += hexDigits[bytes[i] & 0xF];
    }
    return text;
}

std::vector<unsigned char> fromHex(const std::string &hex)
{
    std::vector<unsigned char> bytes;
    for (size_t i = 0; i + 1 < hex.size();) {
        if (hex[i] == ' ') {
            ++i;
            continue;
        }
        bytes.push_back(
            static_cast<unsigned char>(digitValue(hex[i]) * 16 + digitValue(hex[i + 1])));
        i += 2;
    }
    return bytes;
}

std::vector<unsigned char> withCrc(std::vector<unsigned char> payload)
{
    unsigned crc = 0xFFFF;
    for (unsigned char byte : payload) {
        crc ^= byte;
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc & 1U) ? (crc >> 1) ^ 0xA001U : crc >> 1;
    }
    payload.push_back(static_cast<unsigned char>(crc & 0xFF));
    payload.push_back(static_cast<unsigned char>(crc >> 8));
    return payload;
}
