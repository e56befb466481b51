// SPDX-License-Identifier: MIT
// The real driver and the model side by side, each with a host of its own around it.
#pragma once

#include "driver_model.h"
#include "entry_points.h"

#include <string>
#include <vector>

namespace model {

using ::EntryPoints;

/// One call of the host's callback.
struct HeardCall {
    int linkId;
    int station;
    QString name;
    int address;
    QByteArray seen; ///< what getData returned inside the callback
};

/// A host's memory and what it heard.
struct HostSide {
    HostSide();

    std::vector<unsigned char> block; ///< exactly as long as a driver may expect
    std::vector<unsigned short> recipe;
    QMutex mutex;
    std::vector<HeardCall> heard; ///< since the operation began
    int depth = 0; ///< callbacks that are running
    bool lockWasFree = true; ///< the mutex could be taken whenever it was tried
};

struct RealSide : HostSide {
    explicit RealSide(const EntryPoints &entries);
    EntryPoints dx4;
    korvane_dx4 &state;
};

struct ModelSide : HostSide {
    DriverModel dx4;
    DriverModel &state = dx4;
};

/// Both sides. Only one pair may exist at a time, because a callback carries no context.
class Pair {
public:
    /// Brings the real driver back to the state it has after loading, as a host could.
    explicit Pair(const EntryPoints &entries);
    ~Pair();
    Pair(const Pair &) = delete;
    Pair &operator=(const Pair &) = delete;

    /// Does the same to both.
    template <typename Action> void each(Action action)
    {
        action(real);
        action(model);
    }

    /// Registers a callback on both sides, or none.
    void listen(bool on);

    RealSide real;
    ModelSide model;

    /// What the callback does: bit 0 reads the value, bit 1 alters the name it was given, bits 2 to
    /// 7 choose further calls, 0 for none.
    unsigned callbackPlan = 0;
};

/// Puts every member back to what it is in a driver that was just loaded.
template <typename State> void makeFresh(State &state)
{
    state.valueChangeCallback = nullptr;
    state.linkId = state.writesLocalOnly = state.property2 = 0;
    state.retryLimit = state.blockSize = state.hostParam = 0;
    state.hostBlock = nullptr;
    state.recipeBuffer = nullptr;
    state.hostMutex = nullptr;
    state.readList.clear();
    state.writeList.clear();
    state.conditionList.clear();
    state.dataAreas.clear();
    state.rcpVars.clear();
    state.rcpSendVars.clear();
    state.mergeIndexList.clear();
    static const QList<QString> types = QStringLiteral("F,D,CW,SW,FRE,FU").split(QLatin1Char(','));
    state.regTypeList = types;
    state.conditionVar = VARIABLE();
    state.curVar = VARIABLE();
    state.phase = state.tryCount = state.spare1 = state.failCount = 0;
    state.bitBlockSize = state.writeBlockSize = state.lastFailed = 0;
    state.spare2 = state.spare3 = state.rcpIndex = 0;
    state.sendFrames.clear();
}

} // namespace model
