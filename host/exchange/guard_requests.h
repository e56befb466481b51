// SPDX-License-Identifier: MIT
// Requests that the guard makes itself, and those that it lets onto no line.
#pragma once

#include "host_records.h"

#include <QVector>

namespace dx4::host {

/// Whether a request is none that a station could answer as it should: a read of no register or of
/// more than fit into a reply, a write whose frame does not hold what it announces.
bool isDegenerate(const FRAME_PRO &request);

/// A read of the status word, which every drive has; the shortest whose reply is no echo.
FRAME_PRO statusWordRead(int station);

/// A write of the control word of every station; nobody answers it.
FRAME_PRO controlWordBroadcast(quint16 controlWord);

/// Reads that differ in length, of registers that a drive is likely to have: first the status word,
/// then what a request reads itself but for its last register, then runs of known registers.
QVector<FRAME_PRO> readsOfManyLengths(const FRAME_PRO &request);

} // namespace dx4::host
