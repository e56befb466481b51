// SPDX-License-Identifier: MIT
// The bounded lists of waiting writes and condition reads.
#pragma once

#include "host_records.h"

#include <QList>

namespace dx4 {

/// Registers per request for a configured block size. 0 counts as 1, so that nothing is divided by
/// zero and nothing is lost; any other number is taken as it is.
constexpr int splitLimit(int blockSize)
{
    return blockSize == 0 ? 1 : blockSize;
}

/// Cuts a run of registers into requests of `limit` registers and a rest.
///
/// Numbers are taken as they come: a negative count or limit gives the requests that plain division
/// gives.
class Pieces {
public:
    /// @param limit  not 0
    Pieces(int address, int count, int limit);

    /// Number of requests, 0 and below for none.
    qint64 size() const { return m_size; }

    /// First register of request j.
    int address(qint64 j) const;

    /// Registers of request j: `limit`, and the rest in the last one.
    int count(qint64 j) const;

    /// Registers before request j.
    qint64 registersBefore(qint64 j) const { return j * m_limit; }

private:
    int m_address;
    int m_limit;
    int m_rest;
    qint64 m_size;
};

/// Puts a request into a list: in place of the last one for the same registers, else at the end.
///
/// The head is never replaced, it may be on the line. A list of 513 entries does not grow: its last
/// entry is replaced.
void queueRequest(QList<VARIABLE> &list, const VARIABLE &request);

/// Whether two requests ask for the same registers.
bool sameRegisters(const VARIABLE &a, const VARIABLE &b);

} // namespace dx4
