// SPDX-License-Identifier: MIT
// The time as the panel is given it.
#pragma once

#include "host/line/waits.h"

#include <QDateTime>

#include <functional>

namespace dx4::panel {

/// Two clocks, as neither is enough: the steady one does not know how long a snapshot had been
/// taken before it was seen, and the time of day may be set.
struct Clock {
    std::function<host::Duration()> steady;
    std::function<QDateTime()> utc;
};

/// The clocks of this machine.
inline Clock systemClock()
{
    return { host::steadyNow, QDateTime::currentDateTimeUtc };
}

} // namespace dx4::panel
