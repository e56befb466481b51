// SPDX-License-Identifier: MIT
// Bytes of a reply, read with a bounds test.
#pragma once

#include <QByteArray>

namespace dx4 {

/// The byte at a position; 0 before the start and behind the end.
inline unsigned char replyByte(const QByteArray &reply, int position)
{
    const bool isInside = position >= 0 && position < reply.size();
    return isInside ? static_cast<unsigned char>(reply.constData()[position]) : 0;
}

} // namespace dx4
