// SPDX-License-Identifier: MIT
// Frames of the line as Qt's byte arrays.
#pragma once

#include "driver_fixture.h"

#include <QByteArray>

/// The bytes of a hex text.
inline QByteArray bytesOf(const std::string &hex)
{
    return QByteArray::fromHex(QByteArray::fromStdString(hex));
}

/// The bytes of a hex text with the right CRC behind them.
inline QByteArray frameOf(const std::string &hex)
{
    QByteArray frame;
    for (unsigned char byte : withCrc(fromHex(hex)))
        frame.append(static_cast<char>(byte));
    return frame;
}
