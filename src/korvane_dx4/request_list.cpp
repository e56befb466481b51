// SPDX-License-Identifier: MIT
// The bounded lists of waiting writes and condition reads.
#include "korvane_dx4/request_list.h"

#include "frames/record_copy.h"
#include "frames/spare_record.h"
#include "registers/register_type.h"
#include "wire/wrap.h"

#include <algorithm>
#include <cstdlib>

namespace dx4 {
namespace {

SpareRecord<VARIABLE> spareRequest;

// Position to overwrite, or the size of the list to append.
int positionFor(const QList<VARIABLE> &list, const RequestHead &request)
{
    const int size = static_cast<int>(list.size());
    for (int i = size - 1; i > 0; --i) {
        if (sameRegisters(list.at(i), request))
            return i;
    }
    return std::min(size, fullListSize - 1);
}

// Requests of the run that renew an entry between the head and the last one of a full list,
// ascending.
std::vector<qint64> renewingPieces(const QList<VARIABLE> &list, const RequestHead &request,
                                   const Pieces &pieces, qint64 first)
{
    std::vector<qint64> renewing;
    for (int i = 1; i < list.size(); ++i) {
        if (i == fullListSize - 1)
            continue;
        const VARIABLE &entry = list.at(i);
        const qint64 j = pieces.indexOf(entry.address);
        const bool isRenewed = j >= first && j < pieces.size() && entry.count == pieces.count(j)
            && entry.station == request.station && sameText(entry.regType, request.regType);
        if (isRenewed)
            renewing.push_back(j);
    }
    std::sort(renewing.begin(), renewing.end());
    renewing.erase(std::unique(renewing.begin(), renewing.end()), renewing.end());
    return renewing;
}

// The first number from `j` on, going by `step`, that is not among the sorted ones.
qint64 firstAbsent(const std::vector<qint64> &sorted, qint64 j, qint64 step)
{
    while (std::binary_search(sorted.begin(), sorted.end(), j))
        j += step;
    return j;
}

} // namespace

Pieces Pieces::cut(int address, int count, int limit)
{
    // In 64 bits, because the smallest int has no positive counterpart.
    const int rest = static_cast<int>(qint64 { count } % limit);
    return { address, limit, rest, qint64 { count } / limit + (rest != 0 ? 1 : 0) };
}

int Pieces::address(qint64 j) const
{
    return wrapAdd(m_address, static_cast<int>(static_cast<quint32>(registersBefore(j))));
}

qint64 Pieces::indexOf(int address) const
{
    const bool goesUp = m_limit > 0;
    const int distance = goesUp ? wrapSub(address, m_address) : wrapSub(m_address, address);
    const qint64 registers = static_cast<quint32>(distance);
    const qint64 stride = std::max<qint64>(1, std::abs(qint64 { m_limit }));
    const qint64 j = registers / stride;
    return registers % stride == 0 && j < m_size ? j : m_size;
}

int Pieces::count(qint64 j) const
{
    const bool isRest = j == m_size - 1 && m_rest != 0;
    return isRest ? m_rest : m_limit;
}

VARIABLE &placeRequest(QList<VARIABLE> &list, const RequestHead &request)
{
    const int position = positionFor(list, request);
    VARIABLE &entry = position == list.size() ? spareRequest.appendTo(list) : list[position];
    entry.varKind = request.varKind;
    entry.station = request.station;
    assignText(entry.regType, request.regType);
    entry.address = request.address;
    entry.count = request.count;
    return entry;
}

void removeHeadRequest(QList<VARIABLE> &list)
{
    spareRequest.removeHead(list);
}

std::vector<qint64> lastingPieces(const QList<VARIABLE> &list, const RequestHead &request,
                                  const Pieces &pieces, qint64 first)
{
    if (first >= pieces.size())
        return {};
    std::vector<qint64> lasting = renewingPieces(list, request, pieces, first);
    const qint64 firstReplacing = firstAbsent(lasting, first, 1);
    const qint64 lastReplacing = firstAbsent(lasting, pieces.size() - 1, -1);
    // The first one counts because it takes the last entry's place before others could renew that.
    if (firstReplacing <= lastReplacing)
        lasting.push_back(firstReplacing);
    if (firstReplacing < lastReplacing)
        lasting.push_back(lastReplacing);
    std::sort(lasting.begin(), lasting.end());
    return lasting;
}

bool sameRegisters(const VARIABLE &a, const RequestHead &b)
{
    return a.address == b.address && a.station == b.station && a.count == b.count
        && sameText(a.regType, b.regType);
}

} // namespace dx4
