// SPDX-License-Identifier: MIT
// Events of a journal as a table for other programs.
#pragma once

#include "journal/journal_reader.h"

class QIODevice;

namespace dx4::journal {

/// The first line, with the names of the columns.
QByteArray csvHeader();

/// An event as a line of comma-separated values, with times as "2026-03-01T14:05:09.250Z".
QByteArray csvLine(const Event &event);

/// Writes the events of a query, the oldest first and however many they are, in UTF-8.
///
/// @param error  out: why not; may be null
bool exportCsv(JournalReader &reader, EventQuery query, QIODevice &to, QString *error);

} // namespace dx4::journal
