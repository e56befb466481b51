// SPDX-License-Identifier: MIT
// A span of the line's clock as the system takes it.
#pragma once

#include "host/line/line_settings.h"

#include <chrono>
#include <ctime>

namespace dx4::host {

/// @param span  not negative
inline timespec toTimespec(Duration span)
{
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(span);
    timespec time {};
    time.tv_sec = static_cast<time_t>(seconds.count());
    time.tv_nsec = static_cast<long>(std::chrono::nanoseconds(span - seconds).count());
    return time;
}

} // namespace dx4::host
