// SPDX-License-Identifier: MIT
// What a stop is told in, where programs have to know it again.
#pragma once

namespace dx4::host {

/// What reports and alarms say when every stop is confirmed.
inline constexpr char allStopsConfirmed[] = "all stops confirmed";

} // namespace dx4::host
