// SPDX-License-Identifier: MIT
// A record of the past as a file, and back.
#pragma once

#include "panel/past/past_record.h"

namespace dx4::panel {

/// The record as docs/panel.md describes it.
QByteArray jsonOf(const PastRecord &record);

/// Reads it back; what does not fit is refused with what is wrong.
///
/// @param error  out: what is wrong with it
std::optional<PastRecord> recordOf(const QByteArray &json, QString *error);

/// Writes the file as a whole or not at all.
///
/// @param error  out: why not
bool savePast(const PastRecord &record, const QString &file, QString *error);

/// @param error  out: which file and what is wrong with it
std::optional<PastRecord> loadPast(const QString &file, QString *error);

} // namespace dx4::panel
