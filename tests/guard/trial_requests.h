// SPDX-License-Identifier: MIT
// Requests as the driver makes them, without the driver.
#pragma once

#include "host_records.h"

#include <QByteArray>

/// A request of eight bytes; the reply to a write is as long.
FRAME_PRO requestOf(int station, int function, int address, int value);

FRAME_PRO readOf(int station, int address, int count);

/// Puts the CRC behind so many bytes of a frame.
void closeFrame(FRAME_PRO &frame, int payload);

/// Its bytes on the line.
QByteArray sentBy(const FRAME_PRO &request);
