// SPDX-License-Identifier: MIT
// The line that tells the host which request a reply answered and how much came.
#pragma once

#include "host_records.h"

#include <QByteArray>
#include <QString>

namespace dx4 {

/// Writes the line into `text`, whose memory is used again where it is large enough.
///
/// @param var       the request answered
/// @param received  bytes of the reply
void writeErrorText(QString &text, const VARIABLE &var, int received);

} // namespace dx4

/// The line for the head of driver.sendFrames; empty when there is none.
QString getErrorInfo(QByteArray reply);
