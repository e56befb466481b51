// SPDX-License-Identifier: MIT
// Whole copies of records. Names that are shared already are left alone: counting references up and
// down costs more than all the rest of a record's fields.
#pragma once

#include "host_records.h"

#include <cstring>

namespace dx4 {

/// Makes `to` equal to `from`.
inline void assignText(QString &to, const QString &from)
{
    if (!to.isSharedWith(from))
        to = from;
}

/// Copies every field; the two must be different records.
inline void copyVariable(VARIABLE &to, const VARIABLE &from)
{
    to.varKind = from.varKind;
    to.station = from.station;
    assignText(to.regType, from.regType);
    to.address = from.address;
    to.count = from.count;
    std::memcpy(to.data, from.data, sizeof to.data);
}

/// Copies every field; the two must be different records.
inline void copyFrame(FRAME_PRO &to, const FRAME_PRO &from)
{
    std::memcpy(to.frame, from.frame, sizeof to.frame);
    to.sendLength = from.sendLength;
    to.replyLength = from.replyLength;
    to.replyDataOffset = from.replyDataOffset;
    to.replyDataLength = from.replyDataLength;
    to.spare = from.spare;
    copyVariable(to.var, from.var);
}

} // namespace dx4
