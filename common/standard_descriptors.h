// SPDX-License-Identifier: MIT
// Standard streams that the caller has closed.
#pragma once

namespace dx4::common {

/// Opens nothing in place of standard streams that the caller has closed. Without it whatever is
/// opened next, in the worst case the port, takes their number, and gets what is meant for the
/// user.
void holdStandardStreams();

} // namespace dx4::common
