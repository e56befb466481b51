// SPDX-License-Identifier: MIT
// The bounded lists of waiting writes and condition reads.
#include "korvane_dx4/request_list.h"

#include "korvane_dx4/record_copy.h"
#include "wire/register_type.h"
#include "wire/wrap.h"

namespace dx4 {
namespace {

constexpr int lastPosition = 512; // of a full list

// Position to overwrite, or the size of the list to append.
int positionFor(const QList<VARIABLE> &list, const VARIABLE &request)
{
    const int size = static_cast<int>(list.size());
    for (int i = size - 1; i > 0; --i) {
        if (sameRegisters(list.at(i), request))
            return i;
    }
    return size > lastPosition ? lastPosition : size;
}

} // namespace

Pieces::Pieces(int address, int count, int limit)
    : m_address(address)
    , m_limit(limit)
    , m_rest(static_cast<int>(qint64 { count } % m_limit))
    , m_size(qint64 { count } / m_limit + (m_rest != 0 ? 1 : 0))
{
}

int Pieces::address(qint64 j) const
{
    return wrapAdd(m_address, static_cast<int>(static_cast<quint32>(registersBefore(j))));
}

int Pieces::count(qint64 j) const
{
    const bool isRest = j == m_size - 1 && m_rest != 0;
    return isRest ? m_rest : m_limit;
}

void queueRequest(QList<VARIABLE> &list, const VARIABLE &request)
{
    const int position = positionFor(list, request);
    if (position == list.size())
        list.append(request);
    else
        copyVariable(list[position], request);
}

bool sameRegisters(const VARIABLE &a, const VARIABLE &b)
{
    return a.address == b.address && a.station == b.station && a.count == b.count
        && sameText(a.regType, b.regType);
}

} // namespace dx4
