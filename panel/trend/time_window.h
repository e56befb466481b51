// SPDX-License-Identifier: MIT
// Which span of time is looked at.
#pragma once

#include "panel/trend/column.h"

namespace dx4::panel {

/// Follows the time, or stands still. What is recorded does not depend on it.
class TimeWindow {
public:
    static constexpr Moment shortest = 10'000; // ms
    static constexpr Moment longest = 24LL * 3600 * 1000; // ms

    Moment span() const { return m_span; }
    bool isLive() const { return m_isLive; }

    Moment from(Moment now) const { return to(now) - m_span; }
    Moment to(Moment now) const { return m_isLive ? now : m_to; }

    /// Another span, with the same end where it follows the time, else with the same middle.
    void setSpan(Moment span, Moment now);

    /// Stands still from now on.
    void pause(Moment now);

    /// Follows the time again.
    void follow() { m_isLive = true; }

    /// Moves along; it stands still then, and goes no further than to the present and a day and a
    /// half back.
    void pan(Moment by, Moment now);

    /// Shows more or less around a moment, which stays where it is.
    ///
    /// @param factor  below 1: less
    void zoom(double factor, Moment around, Moment now);

    /// Stands still with a moment in its middle, also when its second half is yet to come.
    void centre(Moment at);

private:
    void place(Moment to, Moment now);

    Moment m_span = 60'000;
    Moment m_to = 0;
    bool m_isLive = true;
};

} // namespace dx4::panel
