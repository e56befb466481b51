// SPDX-License-Identifier: MIT
// The lower bound: requests, replies, values.
#include "limit.h"

#include <array>
#include <cstring>

namespace bench {
namespace {

constexpr std::size_t mostWrites = 513;
constexpr int bytesPerStep = 8;

using CrcTable = std::array<std::array<quint16, 256>, bytesPerStep>;

// Row k: the CRC of a byte with k zero bytes behind it.
constexpr CrcTable makeCrcTable()
{
    CrcTable table {};
    for (unsigned value = 0; value < 256; ++value) {
        unsigned crc = value;
        for (auto &row : table) {
            for (int bit = 0; bit < 8; ++bit)
                crc = (crc & 1U) ? (crc >> 1) ^ 0xA001U : crc >> 1;
            row[value] = static_cast<quint16>(crc);
        }
    }
    return table;
}

constexpr CrcTable crcTable = makeCrcTable();

unsigned crcOf(const unsigned char *bytes, int length)
{
    unsigned crc = 0xFFFF;
    for (; length >= bytesPerStep; length -= bytesPerStep, bytes += bytesPerStep) {
        const unsigned low = crcTable[7][(crc ^ bytes[0]) & 0xFF];
        const unsigned high = crcTable[6][(crc >> 8) ^ bytes[1]];
        crc = low ^ high ^ crcTable[5][bytes[2]] ^ crcTable[4][bytes[3]] ^ crcTable[3][bytes[4]]
            ^ crcTable[2][bytes[5]] ^ crcTable[1][bytes[6]] ^ crcTable[0][bytes[7]];
    }
    for (; length > 0; --length, ++bytes)
        crc = (crc >> 8) ^ crcTable[0][(crc ^ *bytes) & 0xFF];
    return crc;
}

void putWord(unsigned char *bytes, unsigned value)
{
    bytes[0] = static_cast<unsigned char>(value >> 8);
    bytes[1] = static_cast<unsigned char>(value);
}

void putCrc(unsigned char *bytes, int length)
{
    const unsigned crc = crcOf(bytes, length);
    bytes[length] = static_cast<unsigned char>(crc);
    bytes[length + 1] = static_cast<unsigned char>(crc >> 8);
}

void copy(VARIABLE &to, const VARIABLE &from)
{
    to.varKind = from.varKind;
    to.station = from.station;
    if (to.regType.constData() != from.regType.constData())
        to.regType = from.regType;
    to.address = from.address;
    to.count = from.count;
    std::memcpy(to.data, from.data, sizeof to.data);
}

void copy(FRAME_PRO &to, const FRAME_PRO &from)
{
    std::memcpy(to.frame, from.frame, sizeof to.frame);
    to.sendLength = from.sendLength;
    to.replyLength = from.replyLength;
    to.replyDataOffset = from.replyDataOffset;
    to.replyDataLength = from.replyDataLength;
    copy(to.var, from.var);
}

} // namespace

void Limit::start(int blockSize, ValueChangeCallback callback)
{
    m_records.clear();
    m_reads.clear();
    m_nextRead = 0;
    m_writes.resize(mostWrites);
    m_firstWrite = m_waitingWrites = 0;
    m_isBusy = false;
    m_blockSize = blockSize;
    m_callback = callback;
}

bool Limit::sendFrame(FRAME_PRO &out)
{
    if (!m_isBusy) {
        m_isWrite = m_waitingWrites > 0;
        if (m_isWrite)
            serve(m_writes[m_firstWrite]);
        else if (!m_reads.empty())
            serve(*m_reads[m_nextRead]);
    }
    if (m_isBusy)
        copy(out, m_frame);
    return m_isBusy;
}

void Limit::serve(const VARIABLE &var)
{
    copy(m_current, var);
    copy(m_frame.var, m_current);
    encode();
    m_isBusy = true;
}

void Limit::encode()
{
    const VARIABLE &var = m_current;
    const unsigned base = typeCode(var.regType) == 0 ? 0xF000 : 0xD000;
    unsigned char *frame = m_frame.frame;
    frame[0] = static_cast<unsigned char>(var.station);
    frame[1] = m_isWrite ? 6 : 3;
    putWord(frame + 2, base + (static_cast<unsigned>(var.address) & 0xFF));
    if (m_isWrite) {
        frame[4] = var.data[1];
        frame[5] = var.data[0];
    } else {
        putWord(frame + 4, static_cast<unsigned>(var.count));
    }
    putCrc(frame, 6);
    m_frame.sendLength = 8;
    m_frame.replyDataLength = m_isWrite ? 0 : 2 * var.count;
    m_frame.replyDataOffset = m_isWrite ? 0 : 3;
    m_frame.replyLength = m_isWrite ? 8 : 2 * var.count + 5;
}

bool Limit::takeReply(const QByteArray &reply)
{
    const auto *bytes = reinterpret_cast<const unsigned char *>(reply.constData());
    const int length = static_cast<int>(reply.size());
    if (!m_isBusy || length != m_frame.replyLength)
        return false;
    const unsigned crc = crcOf(bytes, length - 2);
    if (bytes[length - 2] != (crc & 0xFF) || bytes[length - 1] != crc >> 8)
        return false;
    if (m_isWrite) {
        settle(m_frame.var);
        m_firstWrite = (m_firstWrite + 1) % m_writes.size();
        --m_waitingWrites;
    } else {
        storeRegisters(reply);
        if (++m_nextRead == m_reads.size())
            m_nextRead = 0;
    }
    m_isBusy = false;
    return true;
}

void Limit::storeRegisters(const QByteArray &reply)
{
    const VARIABLE &var = m_frame.var;
    const auto *bytes = reinterpret_cast<const unsigned char *>(reply.constData()) + 3;
    const int type = typeCode(var.regType);
    const int address = var.address;
    const int count = m_frame.replyDataLength / 2;
    RecordTable::Run run(m_records, var.station, type);
    for (int i = 0; i < count; ++i, bytes += 2) {
        if (store(run[address + i], type, bytes[1], bytes[0]))
            run.forget();
    }
}

/// Whether the callback was called.
inline bool Limit::store(_DATA_ &record, int type, unsigned char low, unsigned char high)
{
    if (record.value[0] == low && record.value[1] == high && record.flag0 == 0)
        return false;
    record.flag0 = 0;
    record.writePending = 0;
    record.value[0] = low;
    record.value[1] = high;
    return report(record, type);
}

/// Nothing of the record is touched behind the call, and the callback may be another one then.
inline bool Limit::report(const _DATA_ &record, int type)
{
    if ((record.flags & 1) == 0 || !m_callback)
        return false;
    lendName(type);
    m_callback(1, record.station, m_lentName, record.address);
    return true;
}

// Copied where the one before it was of another type, or was spoiled by the callback.
void Limit::lendName(int type)
{
    if (m_lentName.constData() != typeName(type).constData())
        m_lentName = typeName(type);
}

int Limit::getData(int station, QString regType, int address, int count, unsigned char *out)
{
    const int type = typeCode(regType);
    if (type < 0)
        return 1;
    RecordTable::Run run(m_records, station, type);
    for (int i = 0; i < count; ++i, out += 2) {
        const _DATA_ &record = run[address + i];
        const unsigned char *shown = record.writePending ? record.writeValue : record.value;
        out[0] = shown[0];
        out[1] = shown[1];
    }
    return 1;
}

void Limit::write(int station, QString regType, int address, const unsigned char *data)
{
    const int type = typeCode(regType);
    if (type < 0 || m_waitingWrites == m_writes.size())
        return;
    VARIABLE &var = m_writes[(m_firstWrite + m_waitingWrites++) % m_writes.size()];
    var.station = station;
    if (var.regType.constData() != typeName(type).constData())
        var.regType = typeName(type);
    var.address = address;
    var.count = 1;
    std::memset(var.data, 0, sizeof var.data);
    var.data[0] = data[0];
    var.data[1] = data[1];

    _DATA_ &record = RecordTable::Run(m_records, station, type)[address];
    const unsigned char *shown = record.writePending ? record.writeValue : record.value;
    if (shown[0] != data[0] || shown[1] != data[1])
        report(record, type);
    record.writeValue[0] = data[0];
    record.writeValue[1] = data[1];
    record.writePending = 1;
}

void Limit::settle(const VARIABLE &var)
{
    _DATA_ &record = RecordTable::Run(m_records, var.station, typeCode(var.regType))[var.address];
    record.writePending = 0;
    record.value[0] = record.writeValue[0];
    record.value[1] = record.writeValue[1];
}

} // namespace bench
