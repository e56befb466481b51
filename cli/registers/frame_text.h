// SPDX-License-Identifier: MIT
// Frames of the line, taken apart and explained.
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVector>

#include <optional>

namespace dx4::cli {

/// Some bytes of a frame that belong together.
struct FrameField {
    QByteArray bytes;
    QString name; ///< "station", "function", "register", "count", "value", "CRC" ...
    QString meaning;
};

/// What the bytes of a frame say.
struct FrameText {
    QString kind; ///< "read request", "read reply", "write request or echo", "exception" ...
    QVector<FrameField> fields; ///< in the order of the bytes, none left out
    bool crcIsRight = false;
    int station = 0;
    int function = 0; ///< without the bit that marks an exception
    int firstRegister = -1; ///< Modbus register of a request; -1 where the frame carries none
    int count = 0; ///< registers of a request
    QVector<quint16> values; ///< registers carried
};

/// Bytes from hexadecimal words: "01 03", "0103", "0x01,0x03".
///
/// @param error  out: the first word that is none
std::optional<QByteArray> parseBytes(const QStringList &words, QString *error);

/// Explains a frame. Requests and replies are told apart by their length.
///
/// @param firstRegister  of the request that a read reply answers, to name its values; -1: not
/// known
FrameText explainFrame(const QByteArray &frame, int firstRegister = -1);

/// "01 03 D0 00".
QString bytesText(const QByteArray &bytes);

/// "D 0 (0xD000)" for a Modbus register, or "0x1234" for one that the drive does not have.
QString registerText(int modbusRegister);

/// The same, taken apart; false for a register that the drive does not have.
bool findRegister(int modbusRegister, QString *regType, int *address);

/// "2, register not there" for the code of an exception.
QString exceptionText(int code);

/// One line per field: bytes, name, meaning.
QStringList fieldLines(const FrameText &text);

} // namespace dx4::cli
