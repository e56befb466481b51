// SPDX-License-Identifier: MIT
// A host's copy of the driver's lists, held over several calls.
#pragma once

#include "compare.h"

namespace model {

/// The lists that a host may keep a copy of.
struct Lists {
    QList<VARIABLE> readList;
    QList<VARIABLE> writeList;
    QList<VARIABLE> conditionList;
    QList<_DATA_> dataAreas;
    QVector<_RCP_VAR_PRO> rcpVars;
    QList<FRAME_PRO> sendFrames;
};

/// Copies that share their storage with the driver's lists.
template <typename State> Lists sharedLists(const State &state)
{
    return { state.readList,  state.writeList, state.conditionList,
             state.dataAreas, state.rcpVars,   state.sendFrames };
}

/// The same elements in storage of their own.
template <typename List> List separate(const List &list)
{
    List copy;
    for (const auto &element : list)
        copy.append(element);
    return copy;
}

/// Shared copies of both sides, and what they held when they were taken.
class Snapshot {
public:
    Snapshot(const korvane_dx4 &real, const DriverModel &model)
        : ofReal(sharedLists(real))
        , ofModel(sharedLists(model))
        , m_taken { separate(ofReal.readList),      separate(ofReal.writeList),
                    separate(ofReal.conditionList), separate(ofReal.dataAreas),
                    separate(ofReal.rcpVars),       separate(ofReal.sendFrames) }
    {
    }

    /// False when a later call of the driver has written into the host's copy.
    bool isUnchanged() const
    {
        return sameList(ofReal.readList, m_taken.readList)
            && sameList(ofReal.writeList, m_taken.writeList)
            && sameList(ofReal.conditionList, m_taken.conditionList)
            && sameList(ofReal.dataAreas, m_taken.dataAreas)
            && sameList(ofReal.rcpVars, m_taken.rcpVars)
            && sameList(ofReal.sendFrames, m_taken.sendFrames);
    }

    const Lists ofReal;
    const Lists ofModel;

private:
    Lists m_taken;
};

} // namespace model
