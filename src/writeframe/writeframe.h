// SPDX-License-Identifier: MIT
// Encoders of write requests, functions 6 and 16.
#pragma once

#include "host_records.h"

/// Appends the write of one register of a type at a fixed register, meant for "CW" and "FRE", to
/// driver.sendFrames.
///
/// Deliberate: for any count but 1 nothing is appended and nothing is said; such a register is one
/// word wide.
void writeframe_oneword(VARIABLE &var);

/// Appends a write to driver.sendFrames: function 6 for a count of 1, else function 16.
///
/// Deliberate: meant for "F" only; any other type is addressed to register 0. The byte count of
/// function 16 is made of the low 8 bits of the count and wrong from 128 registers on.
/// Nothing is appended for a count whose layout leaves the frame: above 507 or below -3.
void writeframe_word(VARIABLE &var);
