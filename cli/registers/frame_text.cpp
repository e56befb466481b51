// SPDX-License-Identifier: MIT
// Frames of the line, taken apart and explained.
#include "cli/registers/frame_text.h"

#include "cli/console/output.h"
#include "host/base/length.h"
#include "host/frames/frame_finder.h"
#include "host/frames/modbus_frame.h"
#include "host/frames/verdict_text.h"
#include "host/link/notation.h"
#include "register_tables.h"
#include "wire/function_code.h"
#include "wire/register_place.h"

namespace dx4::cli {
namespace {

constexpr int requestLength = 8;
constexpr int shortestFrame = 5;

int wordAt(const QByteArray &bytes, int position)
{
    return host::byteAt(bytes, position) * 256 + host::byteAt(bytes, position + 1);
}

QString functionText(int function)
{
    switch (function) {
    case ReadHoldingRegisters:
        return QStringLiteral("3, read registers");
    case WriteSingleRegister:
        return QStringLiteral("6, write one register");
    case WriteMultipleRegisters:
        return QStringLiteral("16, write registers");
    default:
        return filled("%1, not used by this driver", function);
    }
}

QString valueText(int value)
{
    return filled("%1 (%2)", value, hex(static_cast<unsigned>(value), 4));
}

/// Takes a frame apart from its first byte on.
class Reader {
public:
    Reader(const QByteArray &frame, int firstRegister)
        : m_frame(frame)
        , m_answered(firstRegister)
    {
    }

    FrameText read()
    {
        m_text.station = host::byteAt(m_frame, 0);
        m_text.function = host::byteAt(m_frame, 1) & ~exceptionBit;
        take(1, "station", QString::number(m_text.station));
        const bool refused = host::byteAt(m_frame, 1) & exceptionBit;
        take(1, "function",
             refused ? filled("exception to %1", functionText(m_text.function))
                     : functionText(m_text.function));
        if (refused)
            readException();
        else if (m_text.function == ReadHoldingRegisters)
            readReading();
        else
            readWriting();
        readEnd();
        return m_text;
    }

private:
    int left() const { return host::lengthOf(m_frame) - m_position - 2; }

    void take(int count, const char *name, const QString &meaning)
    {
        m_text.fields.append(
            { m_frame.mid(m_position, count), QString::fromLatin1(name), meaning });
        m_position += count;
    }

    void readException()
    {
        m_text.kind = QStringLiteral("exception");
        if (left() >= 1)
            take(1, "code", exceptionText(host::byteAt(m_frame, m_position)));
    }

    void takeRegister()
    {
        m_text.firstRegister = wordAt(m_frame, m_position);
        take(2, "register", registerText(m_text.firstRegister));
    }

    void takeCount()
    {
        m_text.count = wordAt(m_frame, m_position);
        take(2, "count", filled("%1 registers", m_text.count));
    }

    void takeValues(int firstRegister)
    {
        for (int i = 0; left() >= 2; ++i) {
            const int value = wordAt(m_frame, m_position);
            m_text.values.append(static_cast<quint16>(value));
            const QString name = firstRegister < 0
                ? QString()
                : registerText(firstRegister + i) + QStringLiteral(" = ");
            take(2, "value", name + valueText(value));
        }
    }

    void takeByteCount()
    {
        const int announced = host::byteAt(m_frame, m_position);
        const int there = left() - 1;
        take(1, "bytes",
             announced == there ? QString::number(announced)
                                : filled("%1, but %2 follow", announced, there));
    }

    void readReading()
    {
        if (m_frame.size() == requestLength) {
            m_text.kind = QStringLiteral("read request");
            takeRegister();
            takeCount();
            return;
        }
        if (left() < 1)
            return; // four bytes: the byte count is already the checksum's place
        m_text.kind = QStringLiteral("read reply");
        takeByteCount();
        takeValues(m_answered);
    }

    void readWriting()
    {
        const bool one = m_text.function == WriteSingleRegister;
        if ((!one && m_text.function != WriteMultipleRegisters) || left() < 4)
            return;
        takeRegister();
        if (one) {
            m_text.kind = QStringLiteral("write request or its echo");
            m_text.count = 1;
            takeValues(m_text.firstRegister);
            return;
        }
        takeCount();
        m_text.kind = QStringLiteral("echo of a write");
        if (left() == 0)
            return;
        m_text.kind = QStringLiteral("write request");
        takeByteCount();
        takeValues(m_text.firstRegister);
    }

    void readEnd()
    {
        if (m_text.kind.isEmpty())
            m_text.kind = QStringLiteral("unknown frame");
        if (left() > 0)
            take(left(), "rest", QStringLiteral("does not belong here"));
        const unsigned crc = host::crcOf(m_frame);
        m_text.crcIsRight = host::crcIsRight(m_frame);
        QByteArray right;
        right.append(static_cast<char>(crc & 0xFFU)).append(static_cast<char>(crc >> 8));
        take(2, "CRC",
             m_text.crcIsRight ? QStringLiteral("right")
                               : filled("wrong; %1 would be right", bytesText(right)));
    }

    const QByteArray &m_frame;
    int m_answered;
    int m_position = 0;
    FrameText m_text;
};

} // namespace

std::optional<QByteArray> parseBytes(const QStringList &words, QString *error)
{
    QByteArray bytes;
    QString text = words.join(QLatin1Char(' '));
    text.replace(QLatin1Char(','), QLatin1Char(' '));
    const QStringList parts = text.simplified().split(QLatin1Char(' '));
    for (const QString &part : parts) {
        QString digits = part.startsWith(QLatin1String("0x")) ? part.mid(2) : part;
        if (digits.size() == 1)
            digits.prepend(QLatin1Char('0'));
        const QByteArray some = QByteArray::fromHex(digits.toLatin1());
        const bool isHex = !digits.isEmpty() && some.size() * 2 == digits.size();
        if (!isHex || QString::fromLatin1(some.toHex()) != digits.toLower()) {
            *error = filled(
                "\"%1\" is no byte; write two hexadecimal digits per byte, such as 01 03 D0 00",
                part);
            return std::nullopt;
        }
        bytes.append(some);
    }
    return bytes;
}

FrameText explainFrame(const QByteArray &frame, int firstRegister)
{
    if (frame.size() < shortestFrame - 1) {
        FrameText text;
        text.kind = QStringLiteral("no frame");
        text.fields.append(
            { frame, QStringLiteral("rest"), QStringLiteral("a frame has 5 bytes or more") });
        return text;
    }
    return Reader(frame, firstRegister).read();
}

QString bytesText(const QByteArray &bytes)
{
    return QString::fromLatin1(bytes.toHex(' ')).toUpper();
}

bool findRegister(int modbusRegister, QString *regType, int *address)
{
    constexpr int lastMonitor = 37; // the catalogue's highest
    const auto place = placeOf(modbusRegister);
    if (!place || (place->type == TypeD && place->address > lastMonitor))
        return false;
    *regType = REG_LIST[place->type];
    *address = place->address;
    return true;
}

QString exceptionText(int code)
{
    return filled("%1, %2", code, host::exceptionName(code));
}

QString registerText(int modbusRegister)
{
    QString regType;
    int address = 0;
    if (findRegister(modbusRegister, &regType, &address))
        return host::fullAddress(regType, address);
    return hex(static_cast<unsigned>(modbusRegister), 4);
}

QStringList fieldLines(const FrameText &text)
{
    QVector<QStringList> rows;
    for (const FrameField &field : text.fields) {
        const bool isLong = field.bytes.size() > 8;
        rows.append({ QStringLiteral(" ") + bytesText(isLong ? field.bytes.left(7) : field.bytes)
                          + (isLong ? QStringLiteral(" ..") : QString()),
                      field.name, field.meaning });
    }
    return columns(rows);
}

} // namespace dx4::cli
