// SPDX-License-Identifier: MIT
// Closes the request just served.
#pragma once

/// Takes the served entry from its list and reports its outcome, by driver.phase and
/// driver.lastFailed.
///
/// To be called once when driver.sendFrames has become empty. The host may be called back.
void dealListWhenFinish();
