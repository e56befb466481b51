// SPDX-License-Identifier: MIT
// The bounded lists of waiting writes and condition reads.
#pragma once

#include "host_records.h"

#include <QList>
#include <QString>

#include <vector>

namespace dx4 {

/// Entries that a list of waiting requests holds at most.
inline constexpr int fullListSize = 513;

/// Registers per request for a configured block size. 0 counts as 1, so that nothing is divided by
/// zero and nothing is lost; any other number is taken as it is.
constexpr int splitLimit(int blockSize)
{
    return blockSize == 0 ? 1 : blockSize;
}

/// The requests that a run of registers is queued as.
class Pieces {
public:
    /// One request for the whole run, whatever its count.
    static Pieces whole(int address, int count) { return { address, count, 0, 1 }; }

    /// Requests of `limit` registers and a last one for the rest.
    ///
    /// Numbers are taken as they come: a negative count or limit gives the requests that plain
    /// division gives.
    ///
    /// @param limit  not 0
    static Pieces cut(int address, int count, int limit);

    /// Number of requests, 0 and below for none.
    qint64 size() const { return m_size; }

    /// First register of request j.
    int address(qint64 j) const;

    /// Registers of request j: `limit`, and the rest in the last one.
    int count(qint64 j) const;

    /// Number of the request that starts at this address; size() when none does.
    qint64 indexOf(int address) const;

    /// Registers before request j.
    qint64 registersBefore(qint64 j) const { return j * m_limit; }

private:
    Pieces(int address, int limit, int rest, qint64 size)
        : m_address(address)
        , m_limit(limit)
        , m_rest(rest)
        , m_size(size)
    {
    }

    int m_address;
    int m_limit;
    int m_rest; // registers of the last request, 0 when that has m_limit as well
    qint64 m_size;
};

/// A request without its values, which take a kilobyte that need not be cleared twice; the name
/// must outlive it.
struct RequestHead {
    int varKind;
    int station;
    const QString &regType;
    int address;
    int count;
};

inline RequestHead headOf(const VARIABLE &var)
{
    return { var.varKind, var.station, var.regType, var.address, var.count };
}

/// Whether two requests ask for the same registers.
bool sameRegisters(const VARIABLE &a, const RequestHead &b);

/// Gives a request its place in a list: that of the last one for the same registers, else the end.
///
/// The head is never replaced, it may be on the line. A list of 513 entries does not grow: its last
/// entry is replaced.
///
/// @return the entry, whose `data` is to be filled; valid until the list changes
VARIABLE &placeRequest(QList<VARIABLE> &list, const RequestHead &request);

/// Removes the head; nothing happens to an empty list.
void removeHeadRequest(QList<VARIABLE> &list);

/// Requests of a run that still count after the whole run was queued into a full list, in order.
///
/// @param request  station and type of the run
/// @param first    the first request not queued yet
std::vector<qint64> lastingPieces(const QList<VARIABLE> &list, const RequestHead &request,
                                  const Pieces &pieces, qint64 first);

/// Queues all requests of a run.
///
/// The effort is bounded however long the run: once the list is full, a request either renews an
/// entry or replaces the last one, and of those that replace it only the newest stays.
///
/// @param request  station, type and kind of the run; address and count are set for each request
/// @param fill     called with each entry and the number of its request, to set all of its data
template <typename Fill>
void queuePieces(QList<VARIABLE> &list, RequestHead request, const Pieces &pieces, Fill fill)
{
    const auto queuePiece = [&](qint64 j) {
        request.address = pieces.address(j);
        request.count = pieces.count(j);
        fill(placeRequest(list, request), j);
    };
    qint64 next = 0;
    while (next < pieces.size() && list.size() < fullListSize)
        queuePiece(next++);
    for (const qint64 j : lastingPieces(list, request, pieces, next))
        queuePiece(j);
}

} // namespace dx4
