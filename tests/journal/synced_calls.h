// SPDX-License-Identifier: MIT
// How often the program has had a file brought to the disk.
#pragma once

/// Calls of fdatasync() and fsync() so far.
int syncedCalls();
