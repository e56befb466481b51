// SPDX-License-Identifier: MIT
// Bytes of a reply, read with a bounds test.
#pragma once

#include "wire/byte_order.h"
#include "wire/wrap.h"

#include <QByteArray>

namespace dx4 {

/// The byte at a position; 0 before the start and behind the end.
inline unsigned char replyByte(const QByteArray &reply, int position)
{
    const bool isInside = position >= 0 && position < reply.size();
    return isInside ? static_cast<unsigned char>(reply.constData()[position]) : 0;
}

/// The register whose high byte stands at a position, 0 to 65535.
inline int replyRegister(const QByteArray &reply, int position)
{
    const bool isInside = position >= 0 && position < reply.size() - 1;
    if (!isInside)
        return wordOf(replyByte(reply, wrapAdd(position, 1)), replyByte(reply, position));
    const auto *bytes = reinterpret_cast<const unsigned char *>(reply.constData()) + position;
    return wordOf(bytes[1], bytes[0]);
}

} // namespace dx4
