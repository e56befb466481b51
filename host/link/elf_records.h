// SPDX-License-Identifier: MIT
// Records of an ELF file of this machine's class and byte order, read out of its bytes.
#pragma once

#include <QByteArray>

#include <cstring>

namespace dx4::host {

/// Whether `length` bytes from `offset` on are all there; for any numbers.
inline bool liesWithin(const QByteArray &bytes, quint64 offset, quint64 length)
{
    const auto size = static_cast<quint64>(bytes.size());
    return offset <= size && length <= size - offset;
}

/// The record at a place that lies within the bytes.
template <typename Record> Record recordAt(const QByteArray &bytes, quint64 offset)
{
    Record record;
    std::memcpy(&record, bytes.constData() + offset, sizeof record);
    return record;
}

} // namespace dx4::host
