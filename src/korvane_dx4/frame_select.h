// SPDX-License-Identifier: MIT
// Which encoder serves which register type.
#pragma once

#include "host_records.h"

/// Appends at most one read frame for the variable: "FU" and "SW" at their fixed register, any
/// other type by group and index.
void getReadFrame(VARIABLE &var);

/// Appends at most one write frame for the variable: "CW" and "FRE" at their fixed register, any
/// other type by group and index.
void getWriteFrame(VARIABLE &var);
