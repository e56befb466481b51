// SPDX-License-Identifier: MIT
// A frame in one line of words.
#pragma once

#include <QByteArray>
#include <QString>

namespace dx4::cli {

/// "station 1, read request, D 0 (0xD000), 1 register"; "no frame" for less than 5 bytes.
///
/// @param firstRegister  of the request that a reply answers; -1: not known
QString frameWords(const QByteArray &frame, bool isRequest, int firstRegister = -1);

} // namespace dx4::cli
